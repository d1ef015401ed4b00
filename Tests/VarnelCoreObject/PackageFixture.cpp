#include "PackageFixture.h"

#include "Support/PackageText.h"

UClass* UTestNode::StaticClass()
{
	static UClass* const Class = TClassBuilder<UTestNode>("/Script/Test.Node", UObject::StaticClass())
									 .Member("Number", &UTestNode::Number)
									 .Member("Link", &UTestNode::Link)
									 .Member("Children", &UTestNode::Children)
									 .Build();
	return Class;
}

void UTestNode::PostLoad()
{
	static int32 NumPostLoads = 0;
	PostLoadPlace = ++NumPostLoads;
}

UClass* UTestBlueprint::StaticClass()
{
	static UClass* const Class = TClassBuilder<UTestBlueprint>("/Script/Engine.Blueprint", UObject::StaticClass()).Build();
	return Class;
}

void UTestBlueprint::MakeTypes(const FJsonRef&, FPropertyReader&)
{
	NewObject(UClass::StaticClass(), GetPackage(), FName(GetName() + "_C"));
}

bool UTestBlueprint::ReadCustomProperty(FStringView Key, const FJsonRef&, FPropertyReader&)
{
	return Key == "ParentClass" || Key == "NewVariables";
}

void UTestBlueprint::PostReadProperties(const FJsonRef& Properties, FPropertyReader& Reader)
{
	const FJsonRef Parent = Properties.Find("ParentClass");
	UClass* const ParentClass = Parent ? LoadObject<UClass>(Parent.Text()) : nullptr;
	if (!ParentClass)
		Reader.Report(Properties, EDiagnosticSeverity::Error, "no-parent", "the parent class cannot be had");
	auto* const Generated = static_cast<UClass*>(StaticFindObjectFast(nullptr, GetPackage(), FName(GetName() + "_C")));
	Generated->SetSuperStruct(ParentClass);
	Reader.AddDeclarations(*Generated, Properties.Find("NewVariables"), Parent);
}

bool ReadBody(IPackageReader& Reader, const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics)
{
	const TUniquePtr<IPackageBody> Body = Reader.OpenBody(FileName, Package, Diagnostics);
	if (!Body)
		return false;
	std::vector<UStruct*> Types;
	Body->DeclareTypes(Types);
	for (UStruct* const Type : LinkTypes(Types))
		Body->CompleteType(*Type);
	Body->FillObjects();
	return true;
}

void DeclareAlone(FPropertyReader& Reader, UStruct& Type, const FJsonRef& Declarations)
{
	Reader.AddDeclarations(Type, Declarations, Declarations);
	Reader.FinishDeclarations(Type);
}

FPackageFixture::FPackageFixture()
{
	UTestNode::StaticClass();
	UTestBlueprint::StaticClass();
}

FPackageFixture::FFile& FPackageFixture::AddBlueprint(
	const std::string& PackageName, const std::string& Parent, const std::string& Variables, const std::string& Others)
{
	return Add(PackageName,
		MakeObjectJson(
			GetShortName(PackageName), "Blueprint", R"("ParentClass":")" + Parent + R"(","NewVariables":[)" + Variables + "]") +
			Others);
}

std::string FPackageFixture::List(const UPackage* Package)
{
	TArray<UObject*> Objects;
	GetObjectsWithOuter(Package, Objects, true);
	std::string Out;
	for (const UObject* Object : Objects)
	{
		const std::string Path = Object->GetPathName().ToStdString();
		Out += (Out.empty() ? "" : "\n") + Path.substr(Path.find('.') + 1) + " " + *Object->GetClass()->GetName();
	}
	return Out;
}

int32 FPackageFixture::GetInt(const UObject* Object, const char* Property)
{
	const FProperty* const Found = Object ? Object->GetClass()->FindPropertyByName(Property) : nullptr;
	const auto* const Number = CastField<FNumericProperty>(Found);
	return Number ? static_cast<int32>(Number->GetSignedIntPropertyValue(Found->ContainerPtrToValuePtr<void>(Object))) : -1;
}
