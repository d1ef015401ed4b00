#include "VassetBody.h"

#include "Core/Unicode.h"
#include "CoreObject/Class.h"
#include "CoreObject/Loader.h"
#include "CoreObject/PropertyReader.h"
#include "LoadedPackages.h"
#include "ObjectTable.h"
#include "PathText.h"
#include "VassetHeader.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace
{
constexpr std::array<std::string_view, 3> ObjectKeys{"path", "class", "properties"};

/** What an object is to the others of its package: earlier kinds are complete before later ones are read. */
enum class EObjectKind : uint8
{
	Enum,
	Struct,
	Blueprint, // makes a class
	Other,
};

/** One element of the body's list. */
struct FListedObject
{
	std::string_view Path;
	std::string_view ClassPath;
	uint32 PathOffset = 0;
	uint32 ClassOffset = 0;
	FJsonRef Properties; // may be empty
	int32 Depth = 0;
	UObject* Object = nullptr;
	EObjectKind Kind = EObjectKind::Other; // of Object
	bool bTried = false;				   // to create it; without success where Object is null
	bool bFilled = false;
};

class FBodyReading
{
public:
	FBodyReading(FJsonFaults& InFaults, UPackage& InPackage);
	void Read(const FJsonRef& Objects);

private:
	void List(const FJsonRef& Json);
	bool IsUsable(const FListedObject& Item);
	void CreateKnown();
	void CreateOthers();
	void RestoreOrder();
	void Create(FListedObject& Item, UClass& Class, UObject& Outer);
	bool IsUsableClass(const FListedObject& Item, const UClass& Class);
	UObject* FindOuter(const FListedObject& Item) const;
	UClass* FindOrLoadClass(const FListedObject& Item) const;
	EObjectKind KindOf(const UClass& Class) const;
	void Fill(EObjectKind Kind);

	FJsonFaults& Faults;
	UPackage& Package;
	FPropertyReader PropertyReader;
	const UClass* const BlueprintClass;			   // null in a program without the engine's classes
	std::vector<FListedObject> Listed;			   // outers before what they hold, otherwise in file order
	std::unordered_set<const UObject*> LateOuters; // objects that got children out of order
};

FBodyReading::FBodyReading(FJsonFaults& InFaults, UPackage& InPackage)
	: Faults(InFaults)
	, Package(InPackage)
	, PropertyReader(&InPackage, InFaults.GetDocument(), InFaults.GetFileName(), InFaults.GetSink())
	, BlueprintClass(FindClass("/Script/Engine.Blueprint"))
{
}

void FBodyReading::Read(const FJsonRef& Objects)
{
	Listed.reserve(static_cast<std::size_t>(Objects.Num()));
	for (const FJsonRef Object : Objects)
		List(Object);
	std::stable_sort(
		Listed.begin(), Listed.end(), [](const FListedObject& A, const FListedObject& B) { return A.Depth < B.Depth; });

	CreateKnown();
	for (const EObjectKind Kind : {EObjectKind::Enum, EObjectKind::Struct, EObjectKind::Blueprint})
		Fill(Kind);
	CreateOthers();
	RestoreOrder();
	for (const EObjectKind Kind : {EObjectKind::Enum, EObjectKind::Struct, EObjectKind::Blueprint, EObjectKind::Other})
		Fill(Kind);
	PropertyReader.ReportMissingObjects();
	for (const FListedObject& Item : Listed)
	{
		if (Item.Object)
			Item.Object->PostLoad();
	}
}

void FBodyReading::List(const FJsonRef& Json)
{
	if (!Faults.IsObject(Json))
		return;
	const auto [Path, Class, Properties] = Faults.TakeMembers(Json, ObjectKeys);
	FListedObject Item;
	if (!Faults.RequireText(Json, Path, "path", Item.Path) || !Faults.RequireText(Json, Class, "class", Item.ClassPath))
		return;
	Item.PathOffset = Path.Offset();
	Item.ClassOffset = Class.Offset();
	Item.Depth = PathText::CountSegments(Item.Path);
	if (!IsUsable(Item))
		return;
	if (Faults.IsObject(Properties))
		Item.Properties = Properties;
	Listed.push_back(Item);
}

bool FBodyReading::IsUsable(const FListedObject& Item)
{
	if (!PathText::IsInnerPath(Item.Path))
		Faults.Error(Item.PathOffset, "bad-path",
			FJsonFaults::Quote(Item.Path) + " is no path inside a package such as 'Asset:Sub.Deeper'");
	else if (Item.Depth > Json::MaxPackageDepth)
		Faults.Error(Item.PathOffset, "bad-path",
			"objects may lie at most " + FString::FromInt(Json::MaxPackageDepth) + " levels inside one another");
	else if (!PathText::IsTopLevelPath(Item.ClassPath))
		Faults.Error(Item.ClassOffset, "bad-class",
			FJsonFaults::Quote(Item.ClassPath) + " is no class path such as '/Script/Engine.DataTable'");
	else
		return true;
	return false;
}

/** Creates the objects whose classes are in memory. */
void FBodyReading::CreateKnown()
{
	for (FListedObject& Item : Listed)
	{
		UClass* const Class = FindClass(Item.ClassPath);
		UObject* const Outer = Class ? FindOuter(Item) : nullptr;
		if (Outer)
			Create(Item, *Class, *Outer);
	}
}

/** Creates the objects whose classes had to be made or loaded first. */
void FBodyReading::CreateOthers()
{
	for (FListedObject& Item : Listed)
	{
		if (Item.bTried)
			continue;
		UObject* const Outer = FindOuter(Item);
		UClass* const Class = Outer ? FindOrLoadClass(Item) : nullptr;
		if (Class)
		{
			Create(Item, *Class, *Outer);
			LateOuters.insert(Outer);
		}
		else if (Outer)
			Faults.Warn(Item.ClassOffset, "unknown-class",
				"class " + FJsonFaults::Quote(Item.ClassPath) + " is not known, so the object and those below it are left out");
		else
			Faults.Error(Item.PathOffset, "missing-outer",
				"there is no object " + FJsonFaults::Quote(PathText::OuterOf(Item.Path)) +
					" to hold this one, so it is left out");
	}
}

/** Siblings are listed in file order, though some were created later than others. */
void FBodyReading::RestoreOrder()
{
	std::unordered_map<UObject*, std::vector<UObject*>> Children;
	for (const FListedObject& Item : Listed)
	{
		if (Item.Object && LateOuters.contains(Item.Object->GetOuter()))
			Children[Item.Object->GetOuter()].push_back(Item.Object);
	}
	for (const auto& [Outer, InOrder] : Children)
		FObjectTable::MoveToEnd(*Outer, InOrder);
}

void FBodyReading::Create(FListedObject& Item, UClass& Class, UObject& Outer)
{
	Item.bTried = true;
	if (!IsUsableClass(Item, Class))
		return;
	const FName Name(PathText::LastSegment(Item.Path));
	if (StaticFindObjectFast(nullptr, &Outer, Name))
		return Faults.Error(Item.PathOffset, "repeated-path",
			"the package has an object " + FJsonFaults::Quote(Item.Path) + " already, so this one is left out");
	NoteReferenceToPackage(Class.GetPackage()->GetFName());
	Item.Object = NewObject(&Class, &Outer, Name);
	Item.Kind = KindOf(Class);
}

bool FBodyReading::IsUsableClass(const FListedObject& Item, const UClass& Class)
{
	const auto Fail = [this, &Item](const char* Rule, const char* Why)
	{
		Faults.Error(Item.ClassOffset, Rule,
			"class " + FJsonFaults::Quote(Item.ClassPath) + Why + ", so the object and those below it are left out");
		return false;
	};
	if (Class.IsAbstract())
		return Fail("abstract-class", " is abstract");
	if (Class.IsChildOf(UPackage::StaticClass()) || Class.IsChildOf(UClass::StaticClass()))
		return Fail("bad-class", " is none that a package can list objects of");
	if (!Class.IsLinked())
		return Fail("unknown-class", " is still being loaded");
	return true;
}

UObject* FBodyReading::FindOuter(const FListedObject& Item) const
{
	const FStringView Outer = PathText::OuterOf(Item.Path);
	return Outer.empty() ? &Package : Package.FindInside(Outer);
}

UClass* FBodyReading::FindOrLoadClass(const FListedObject& Item) const
{
	if (UClass* const Known = FindClass(Item.ClassPath))
		return Known;
	const bool bHasOtherFile =
		!PathText::IsScriptPath(Item.ClassPath) && !Unicode::EqualsFolded(PathText::PackageOf(Item.ClassPath), Package.GetName());
	return bHasOtherFile ? LoadObject<UClass>(Item.ClassPath) : nullptr;
}

EObjectKind FBodyReading::KindOf(const UClass& Class) const
{
	if (Class.IsChildOf(UEnum::StaticClass()))
		return EObjectKind::Enum;
	if (Class.IsChildOf(UStruct::StaticClass()))
		return EObjectKind::Struct;
	return BlueprintClass && Class.IsChildOf(BlueprintClass) ? EObjectKind::Blueprint : EObjectKind::Other;
}

/** Reads the properties of all objects of a kind that were not read yet. */
void FBodyReading::Fill(EObjectKind Kind)
{
	static const FJsonDocument NoProperties = []
	{
		FJsonDocument Empty;
		Empty.Parse("{}");
		return Empty;
	}();
	for (FListedObject& Item : Listed)
	{
		if (!Item.Object || Item.Kind != Kind || Item.bFilled)
			continue;
		Item.bFilled = true;
		const FJsonRef Properties = Item.Properties ? Item.Properties : NoProperties.Root();
		PropertyReader.ReadProperties(*Item.Object->GetClass(), Item.Object, Properties, Item.Object);
	}
}
}

bool ReadVassetBody(const FJsonRef& Root, FJsonFaults& Faults, UPackage& Package)
{
	// Reading the header may have stopped at the body, so what stands around it is looked at again; a fault told twice counts
	// once.
	Faults.ReportRepeatedKeys();
	const FJsonRef Objects = Faults.TakeMembers(Root, VassetKeys::All).back();
	if (!Objects)
		return true;
	if (!Faults.IsArray(Objects))
		return false;
	FBodyReading(Faults, Package).Read(Objects);
	return true;
}
