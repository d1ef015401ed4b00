#include "Packages/VassetBody.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Packages/Loader.h"
#include "CoreObject/Packages/StoredObjects.h"
#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "Objects/ObjectLoading.h"
#include "Objects/ObjectTable.h"
#include "Objects/PathText.h"
#include "Packages/VassetHeader.h"

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
	bool bMadeTypes = false;
	bool bFilled = false;
};

class FVassetBody final : public IPackageBody
{
public:
	FVassetBody(const FJsonDocument& Document, const FString& InFileName, UPackage& InPackage, FDiagnosticSink* Diagnostics);
	/** Lists the objects and creates those that can be; false where the list is none. */
	bool Open();
	void DeclareTypes(std::vector<UStruct*>& OutTypes) override;
	void CompleteType(UStruct& Type) override { PropertyReader.FinishDeclarations(Type); }
	void FillObjects() override;

private:
	void List(const FJsonRef& Json);
	bool IsUsable(const FListedObject& Item);
	void CreateKnown();
	void CreateOthers();
	void RestoreOrder();
	void MakeTypes();
	void Create(FListedObject& Item, UClass& Class, UObject& Outer);
	bool IsUsableClass(const FListedObject& Item, const UClass& Class);
	UObject* FindOuter(const FListedObject& Item) const;
	UClass* FindOrLoadClass(const FListedObject& Item) const;
	EObjectKind KindOf(const UClass& Class) const;
	FJsonRef PropertiesOf(const FListedObject& Item) const;
	void Fill(EObjectKind Kind);

	const FString FileName;
	FJsonFaults Faults;
	UPackage& Package;
	FPropertyReader PropertyReader;
	const UClass* const BlueprintClass;			   // null in a program without the engine's classes
	std::vector<FListedObject> Listed;			   // outers before what they hold, otherwise in file order
	std::unordered_set<const UObject*> LateOuters; // objects that got children out of order
};

FVassetBody::FVassetBody(
	const FJsonDocument& Document, const FString& InFileName, UPackage& InPackage, FDiagnosticSink* Diagnostics)
	: FileName(InFileName)
	, Faults(Document, FileName, Diagnostics)
	, Package(InPackage)
	, PropertyReader(&InPackage, Document, FileName, Diagnostics)
	, BlueprintClass(FindClass("/Script/Engine.Blueprint"))
{
}

bool FVassetBody::Open()
{
	// Reading the header may have stopped at the body, so what is around it is looked at again; a fault reported twice counts
	// once.
	Faults.ReportRepeatedKeys();
	const FJsonRef Objects = Faults.TakeMembers(Faults.GetDocument().Root(), VassetKeys::All).back();
	if (!Objects)
		return true;
	if (!Faults.IsArray(Objects))
		return false;
	Listed.reserve(static_cast<std::size_t>(Objects.Num()));
	for (const FJsonRef Object : Objects)
		List(Object);
	std::stable_sort(
		Listed.begin(), Listed.end(), [](const FListedObject& A, const FListedObject& B) { return A.Depth < B.Depth; });

	CreateKnown();
	MakeTypes();
	Fill(EObjectKind::Enum);
	return true;
}

void FVassetBody::DeclareTypes(std::vector<UStruct*>& OutTypes)
{
	Fill(EObjectKind::Struct);
	Fill(EObjectKind::Blueprint);
	const std::vector<UStruct*> Declared = PropertyReader.TakeDeclaredTypes();
	OutTypes.insert(OutTypes.end(), Declared.begin(), Declared.end());
	// Structures of a class that declares nothing are types too.
	for (const FListedObject& Item : Listed)
	{
		if (Item.Object && Item.Kind == EObjectKind::Struct)
			OutTypes.push_back(static_cast<UStruct*>(Item.Object));
	}
}

void FVassetBody::FillObjects()
{
	CreateOthers();
	RestoreOrder();
	MakeTypes();
	Fill(EObjectKind::Enum);
	std::vector<UStruct*> LateTypes; // inside objects of classes that had to be made or loaded; nothing else refers to them
	DeclareTypes(LateTypes);
	for (UStruct* const Type : LinkTypes(LateTypes))
		CompleteType(*Type);
	Fill(EObjectKind::Other);
	PropertyReader.ReportMissingObjects();
	for (const FListedObject& Item : Listed)
	{
		if (Item.Object)
			Item.Object->PostLoad();
	}
}

void FVassetBody::List(const FJsonRef& Json)
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

bool FVassetBody::IsUsable(const FListedObject& Item)
{
	if (!PathText::IsInnerPath(Item.Path))
		Faults.Error(Item.PathOffset, "bad-path",
			FJsonFaults::Quote(Item.Path) + " is not a path inside a package such as 'Asset:Sub.Deeper'");
	else if (Item.Depth > Json::MaxPackageDepth)
		Faults.Error(Item.PathOffset, "bad-path",
			"objects may lie at most " + FString::FromInt(Json::MaxPackageDepth) + " levels inside one another");
	else if (!PathText::IsTopLevelPath(Item.ClassPath))
		Faults.Error(Item.ClassOffset, "bad-class",
			FJsonFaults::Quote(Item.ClassPath) + " is not a class path such as '/Script/Engine.DataTable'");
	else
		return true;
	return false;
}

/** Creates the objects whose classes are never loaded. Those of other classes wait, though one may be in memory by chance. */
void FVassetBody::CreateKnown()
{
	for (FListedObject& Item : Listed)
	{
		UClass* const Class = PathText::IsScriptPath(Item.ClassPath) ? FindClass(Item.ClassPath) : nullptr;
		UObject* const Outer = Class ? FindOuter(Item) : nullptr;
		if (Outer)
			Create(Item, *Class, *Outer);
	}
}

/** Creates the objects whose classes were made or have to be loaded. */
void FVassetBody::CreateOthers()
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
void FVassetBody::RestoreOrder()
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

void FVassetBody::Create(FListedObject& Item, UClass& Class, UObject& Outer)
{
	Item.bTried = true;
	if (!IsUsableClass(Item, Class))
		return;
	const FName Name(PathText::LastSegment(Item.Path));
	if (StaticFindObjectFast(nullptr, &Outer, Name))
		return Faults.Error(Item.PathOffset, "repeated-path",
			"the package has an object " + FJsonFaults::Quote(Item.Path) + " already, so this one is left out");
	ObjectLoading::NoteReferenceToPackage(Class.GetPackage()->GetFName());
	Item.Object = NewObject(&Class, &Outer, Name);
	Item.Kind = KindOf(Class);
}

bool FVassetBody::IsUsableClass(const FListedObject& Item, const UClass& Class)
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

UObject* FVassetBody::FindOuter(const FListedObject& Item) const
{
	const FStringView Outer = PathText::OuterOf(Item.Path);
	return Outer.empty() ? &Package : Package.FindInside(Outer);
}

UClass* FVassetBody::FindOrLoadClass(const FListedObject& Item) const
{
	if (UClass* const Known = FindClass(Item.ClassPath))
		return Known;
	const bool bHasOtherFile =
		!PathText::IsScriptPath(Item.ClassPath) && !Unicode::EqualsFolded(PathText::PackageOf(Item.ClassPath), Package.GetName());
	return bHasOtherFile ? LoadObject<UClass>(Item.ClassPath) : nullptr;
}

EObjectKind FVassetBody::KindOf(const UClass& Class) const
{
	if (Class.IsChildOf(UEnum::StaticClass()))
		return EObjectKind::Enum;
	if (Class.IsChildOf(UStruct::StaticClass()))
		return EObjectKind::Struct;
	return BlueprintClass && Class.IsChildOf(BlueprintClass) ? EObjectKind::Blueprint : EObjectKind::Other;
}

FJsonRef FVassetBody::PropertiesOf(const FListedObject& Item) const
{
	static const FJsonDocument NoProperties = []
	{
		FJsonDocument Empty;
		Empty.Parse("{}");
		return Empty;
	}();
	return Item.Properties ? Item.Properties : NoProperties.Root();
}

/** Of all objects that were not asked yet. */
void FVassetBody::MakeTypes()
{
	for (FListedObject& Item : Listed)
	{
		if (Item.Object && Item.Kind == EObjectKind::Blueprint && !Item.bMadeTypes)
			Item.Object->MakeTypes(PropertiesOf(Item), PropertyReader);
		Item.bMadeTypes = Item.Object != nullptr;
	}
}

/** Reads the properties of all objects of a kind that were not read yet. */
void FVassetBody::Fill(EObjectKind Kind)
{
	for (FListedObject& Item : Listed)
	{
		if (!Item.Object || Item.Kind != Kind || Item.bFilled)
			continue;
		Item.bFilled = true;
		PropertyReader.ReadProperties(*Item.Object->GetClass(), Item.Object, PropertiesOf(Item), Item.Object);
	}
}
}

TUniquePtr<IPackageBody> OpenVassetBody(
	const FJsonDocument& Document, const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics)
{
	auto Body = MakeUnique<FVassetBody>(Document, FileName, Package, Diagnostics);
	return Body->Open() ? std::move(Body) : nullptr;
}

bool VisitVassetObjects(const FJsonDocument& Document, const FString& FileName, UPackage* Package, FDiagnosticSink* Diagnostics,
	const FStoredObjectVisit& Visit)
{
	FJsonFaults Faults(Document, FileName, Diagnostics);
	const FJsonRef Objects = Document.Root().Find(VassetKeys::Objects);
	if (Objects && !Faults.IsArray(Objects))
		return false;
	FPropertyReader Reader(Package, Document, FileName, Diagnostics);
	for (const FJsonRef Json : Objects)
	{
		const auto [Path, Class, Properties] =
			std::array{Json.Find(ObjectKeys[0]), Json.Find(ObjectKeys[1]), Json.Find(ObjectKeys[2])};
		const FJsonRef Stored = Properties.IsObject() ? Properties : FJsonRef();
		if (Path.IsString() && !Visit({Path.Text(), Class.Text(), Class ? Class : Json, Stored}, Reader))
			break;
	}
	return true;
}
