#include "PackageFixture.h"

#include "Core/Text/Unicode.h"

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

FPackageFiles::FPackageFiles()
{
	UTestNode::StaticClass();
	UTestBlueprint::StaticClass();
	SetLoadDiagnostics(&Faults);
	SetPackageLocator(
		[this](FName Name) -> TOptional<FPackageFile>
		{
			auto Found = Files.find(Name.ToString().ToStdString());
			if (Found == Files.end()) // spelled otherwise, perhaps
				Found = std::find_if(
					Files.begin(), Files.end(), [Name](const auto& File) { return FName(FStringView(File.first)) == Name; });
			if (Found == Files.end())
				return std::nullopt;
			FFile& File = Found->second;
			const auto Read = [&File](std::string& Buffer, uint64 MaxBytes, std::size_t)
			{
				++File.NumReads;
				Buffer = File.Text;
				return File.Text.size() > MaxBytes ? EFileRead::TooLarge : File.Outcome;
			};
			return FPackageFile{
				FString(Found->first + ".vasset"), &GetVassetPackageSource(), Read, FName(FStringView(Found->first))};
		});
}

FPackageFiles::~FPackageFiles()
{
	UnloadAllLoadedPackages();
	SetPackageLocator(nullptr);
	SetLoadDiagnostics(nullptr);
}

FPackageFiles::FFile& FPackageFiles::Add(const std::string& PackageName, const std::string& Objects)
{
	FFile& File = Files[PackageName];
	File.Text = R"({"varnel_package":1,"assets":[],"dependencies":[],"blueprint_index":[],"objects":[)" + Objects + "]}";
	return File;
}

FPackageFiles::FFile& FPackageFiles::AddBlueprint(
	const std::string& PackageName, const std::string& Parent, const std::string& Variables, const std::string& Others)
{
	const std::string Name = PackageName.substr(PackageName.rfind('/') + 1);
	return Add(PackageName,
		R"({"path":")" + Name + R"(","class":"/Script/Engine.Blueprint","properties":{"ParentClass":")" + Parent +
			R"(","NewVariables":[)" + Variables + "]}}" + Others);
}

std::string FPackageFiles::List(const UPackage* Package)
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

int32 FPackageFiles::GetInt(const UObject* Object, const char* Property)
{
	const FProperty* const Found = Object ? Object->GetClass()->FindPropertyByName(Property) : nullptr;
	const auto* const Number = CastField<FNumericProperty>(Found);
	return Number ? static_cast<int32>(Number->GetSignedIntPropertyValue(Found->ContainerPtrToValuePtr<void>(Object))) : -1;
}
