#include "Declarations/ScriptDeclarations.h"

#include "Declarations/BlueprintClasses.h"
#include "Objects/PathText.h"

#include <unordered_map>

namespace
{
constexpr std::array<std::string_view, 4> ModuleKeys{"varnel_script", "classes", "structs", "enums"};
constexpr std::array<std::string_view, 3> StructKeys{"name", "super", "properties"};
constexpr std::array<std::string_view, 2> EnumKeys{"name", "entries"};

FString PathIn(const FScriptFile& File, std::string_view Name)
{
	return File.Package.GetName() + "." + Name;
}

/** A name that type texts such as "array<struct</Script/Module.Name>>" can mention. */
bool IsDeclarableName(std::string_view Name)
{
	return PathText::IsObjectName(Name) && Name.find_first_of("<>, ") == std::string_view::npos;
}

int32 CountParents(const UStruct& Type)
{
	int32 NumParents = 0;
	for (const UStruct* Parent = Type.GetSuperStruct(); Parent; Parent = Parent->GetSuperStruct())
		++NumParents;
	return NumParents;
}

/** Packages and classes are made by the program alone. */
bool CanHaveDeclaredChildren(const UStruct& Parent)
{
	return !Parent.IsChildOf(UPackage::StaticClass()) && !Parent.IsChildOf(UClass::StaticClass());
}
}

void FScriptDeclarations::Collect(FScriptFile& File)
{
	File.Faults.ReportRepeatedKeys();
	const auto [Version, Classes, Structs, Enums] = File.Faults.TakeMembers(File.Document.Root(), ModuleKeys);
	CollectStructs(File, Classes, true);
	CollectStructs(File, Structs, false);
	CollectEnums(File, Enums);
}

void FScriptDeclarations::CollectStructs(FScriptFile& File, const FJsonRef& Json, bool bAreClasses)
{
	if (!File.Faults.IsArray(Json))
		return;
	for (const FJsonRef Element : Json)
	{
		if (!File.Faults.IsObject(Element))
			continue;
		const auto [Name, Super, Properties] = File.Faults.TakeMembers(Element, StructKeys);
		std::string_view StructName;
		if (!TakeName(File, Element, Name, StructName))
			continue;
		Places.Add(PathIn(File, StructName), static_cast<int32>(Declarations.size()));
		FDeclaration& Declaration = Declarations.emplace_back();
		Declaration.File = &File;
		Declaration.Name = StructName;
		Declaration.NameOffset = Name.Offset();
		Declaration.bIsClass = bAreClasses;
		Declaration.Super = Super;
		if (File.Faults.IsArray(Properties))
			Declaration.Properties = Properties;
	}
}

void FScriptDeclarations::CollectEnums(FScriptFile& File, const FJsonRef& Json)
{
	if (!File.Faults.IsArray(Json))
		return;
	for (const FJsonRef Element : Json)
	{
		if (!File.Faults.IsObject(Element))
			continue;
		const auto [Name, Entries] = File.Faults.TakeMembers(Element, EnumKeys);
		std::string_view EnumName;
		if (!TakeName(File, Element, Name, EnumName))
			continue;
		Places.Add(PathIn(File, EnumName), INDEX_NONE);
		auto* const Enum = static_cast<UEnum*>(NewObject(UEnum::StaticClass(), &File.Package, FName(EnumName)));
		Made.Add(Enum);
		if (File.Faults.IsArray(Entries))
			Enum->SetEntries(File.Reader.ReadEnumEntries(Entries, EnumName));
		else if (!Entries)
			File.Faults.Error(Element.Offset(), "missing-entries", "the enumeration has no 'entries'");
	}
}

bool FScriptDeclarations::TakeName(FScriptFile& File, const FJsonRef& Owner, const FJsonRef& Json, std::string_view& Out)
{
	if (!File.Faults.RequireText(Owner, Json, "name", Out))
		return false;
	const FString Quoted = FJsonFaults::Quote(Out);
	if (!IsDeclarableName(Out))
		File.Faults.Error(Json.Offset(), "bad-name", Quoted + " is not a valid name for a class, structure or enumeration");
	else if (Places.Contains(PathIn(File, Out)))
		File.Faults.Error(Json.Offset(), "repeated-name", "the module declares " + Quoted + " already, so this one is left out");
	else if (StaticFindObjectFast(nullptr, &File.Package, FName(Out)))
		File.Faults.Error(Json.Offset(), "native-name", Quoted + " is built in and cannot be declared again");
	else
		return true;
	return false;
}

void FScriptDeclarations::Make()
{
	for (FDeclaration& Declaration : Declarations)
		Settle(Declaration);
	for (const FDeclaration* Declaration : Settled)
		Declaration->File->Reader.AddDeclarations(*Declaration->Struct, Declaration->Properties, Declaration->Super);
	Finish();
}

/** Makes a declaration after the parents that it waits for. */
void FScriptDeclarations::Settle(FDeclaration& First)
{
	std::vector<FDeclaration*> Line;
	FDeclaration* Next = &First;
	for (; Next && Next->State == FDeclaration::EState::Open; Next = FindDeclaredParent(*Next))
	{
		Next->State = FDeclaration::EState::Waiting;
		Line.push_back(Next);
	}
	if (Next && Next->State == FDeclaration::EState::Waiting)
		CutRing({std::find(Line.begin(), Line.end(), Next), Line.end()});
	for (auto Waiting = Line.rbegin(); Waiting != Line.rend(); ++Waiting)
	{
		if ((*Waiting)->State == FDeclaration::EState::Waiting)
			MakeStruct(**Waiting);
	}
}

/** Structures lose their parents; classes, which need one, are left out. */
void FScriptDeclarations::CutRing(const std::vector<FDeclaration*>& Members)
{
	TArray<FString> Names;
	for (const FDeclaration* Member : Members)
		Names.Add(PathIn(*Member->File, Member->Name));
	const FString Ring = DescribeRing(Names);
	for (FDeclaration* const Member : Members)
	{
		const char* const Outcome = Member->bIsClass ? ", so it is left out: " : ", so it has no parent: ";
		Member->File->Faults.Error(Member->Super.Offset(), "parent-cycle",
			FJsonFaults::Quote(Member->Name) + " is among its own parents" + Outcome + Ring);
		if (Member->bIsClass)
			Member->State = FDeclaration::EState::Settled;
		else
			Member->Super = FJsonRef();
	}
}

void FScriptDeclarations::MakeStruct(FDeclaration& Declaration)
{
	Declaration.State = FDeclaration::EState::Settled;
	UStruct* Parent = nullptr;
	if (!FindParent(Declaration, Parent))
		return;
	const FDeclaration* const Declared = FindDeclaredParent(Declaration);
	if (Parent)
		Declaration.NumParents = 1 + (Declared ? Declared->NumParents : CountParents(*Parent));
	if (Declaration.NumParents > MaxStructDepth)
		return Declaration.File->Faults.Error(Declaration.Super.Offset(), "too-deep",
			FJsonFaults::Quote(Declaration.Name) + " has more than " + FString::FromInt(MaxStructDepth) +
				" parents, so it is left out");
	UClass* const Kind = Declaration.bIsClass ? UClass::StaticClass() : UScriptStruct::StaticClass();
	Declaration.Struct = static_cast<UStruct*>(NewObject(Kind, &Declaration.File->Package, FName(Declaration.Name)));
	Declaration.Struct->SetSuperStruct(Parent);
	Settled.push_back(&Declaration);
	Made.Add(Declaration.Struct);
}

/** False, and a fault, where a declaration cannot be made for want of a parent. Structures need none. */
bool FScriptDeclarations::FindParent(const FDeclaration& Declaration, UStruct*& Out)
{
	FJsonFaults& Faults = Declaration.File->Faults;
	const FJsonRef& Super = Declaration.Super;
	const bool bIsNamed = Super && !Super.IsNull();
	if (!bIsNamed && !Declaration.bIsClass)
		return true;
	const auto Fail = [&Faults, &Declaration](uint32 Offset, const char* Rule, const FString& Why)
	{
		Faults.Error(Offset, Rule, Why + ", so " + FJsonFaults::Quote(Declaration.Name) + " is left out");
		return false;
	};
	if (!bIsNamed)
		return Fail(Declaration.NameOffset, "missing-super", "the class names no parent in 'super'");
	std::string_view Path;
	if (!Faults.AcceptText(Super, Path))
		return false;
	const FDeclaration* const Declared = FindDeclaredParent(Declaration);
	if (Declared)
		Out = Declared->Struct;
	else if (PathText::IsTopLevelPath(Path))
		Out = static_cast<UStruct*>(
			StaticFindObject(Declaration.bIsClass ? UClass::StaticClass() : UScriptStruct::StaticClass(), Path));
	if (!Out)
		return Fail(Super.Offset(), "unknown-parent",
			"the parent " + FJsonFaults::Quote(Path) + (Declared ? " is left out" : " is neither built in nor declared"));
	return CanHaveDeclaredChildren(*Out) ||
		Fail(Super.Offset(), "bad-parent", "nothing can be derived from " + FJsonFaults::Quote(Path));
}

/** Null where the parent is none of the declarations, or of the other kind. */
FScriptDeclarations::FDeclaration* FScriptDeclarations::FindDeclaredParent(const FDeclaration& Declaration)
{
	if (!Declaration.Super || !Declaration.Super.IsString())
		return nullptr;
	const int32* const Place = Places.Find(FString(Declaration.Super.Text()));
	if (!Place || *Place == INDEX_NONE)
		return nullptr;
	FDeclaration& Found = Declarations[static_cast<std::size_t>(*Place)];
	return Found.bIsClass == Declaration.bIsClass ? &Found : nullptr;
}

/** Gives the declared classes and structures their layout and their defaults. */
void FScriptDeclarations::Finish()
{
	std::vector<UStruct*> Types;
	std::unordered_map<const UStruct*, FScriptFile*> Files;
	for (const FDeclaration* Declaration : Settled)
	{
		Types.push_back(Declaration->Struct);
		Files.emplace(Declaration->Struct, Declaration->File);
	}
	const UClass* const BlueprintClass = FindClass("/Script/Engine.Blueprint"); // null in a program without the engine's classes
	for (UStruct* const Type : LinkTypes(Types))
	{
		const auto File = Files.find(Type);
		if (File != Files.end())
			File->second->Reader.FinishDeclarations(*Type);
		if (BlueprintClass && Type->IsChildOf(BlueprintClass))
			BlueprintClasses::AddDeclared(Type->GetStructPathName().ToString());
	}
}
