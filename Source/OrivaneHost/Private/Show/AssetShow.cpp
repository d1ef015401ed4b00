#include "Show/AssetShow.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Packages/Loader.h"
#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "CoreObject/Reflection/StructValue.h"
#include "Engine/Blueprint.h"
#include "Engine/DataTable.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"
#include "Show/FamilySections.h"
#include "Show/ObjectTree.h"

namespace
{
constexpr int32 MaxFaults = 5; // told

/** What follows the package's name in an object path. */
FString GetInnerPath(const FString& ObjectPath, FName PackageName)
{
	return ObjectPath.View().substr(std::min(ObjectPath.View().size(), PackageName.View().size() + 1));
}

/** "Asset" and "Sub" give "Asset:Sub", "Asset:Sub" and "Deeper" give "Asset:Sub.Deeper". */
FString JoinInner(const FString& Outer, FStringView Name)
{
	return Outer + (Outer.View().find(':') == FStringView::npos ? ":" : ".") + Name;
}

FJsonArray ListAncestors(const FTopLevelAssetPath& Class)
{
	TArray<FTopLevelAssetPath> Ancestors;
	GetProjectRegistry().GetAncestorClasses(Class, Ancestors);
	FJsonArray Paths;
	for (const FTopLevelAssetPath& Ancestor : Ancestors)
		Paths.Add(Ancestor.ToString());
	return Paths;
}

bool IsBlueprint(const FAssetData& Asset)
{
	TArray<FTopLevelAssetPath> Classes = {Asset.AssetClassPath};
	GetProjectRegistry().GetAncestorClasses(Asset.AssetClassPath, Classes);
	return Classes.Contains(UBlueprint::StaticClass()->GetStructPathName());
}

/** Storage for one value of a property. */
class FPropertyValue
{
public:
	explicit FPropertyValue(const FProperty& InProperty)
		: Property(InProperty)
		, Value(::operator new(static_cast<std::size_t>(InProperty.GetSize())))
	{
		Property.InitializeValue(Value);
	}
	~FPropertyValue()
	{
		Property.DestroyValue(Value);
		::operator delete(Value);
	}
	FPropertyValue(const FPropertyValue&) = delete;
	FPropertyValue& operator=(const FPropertyValue&) = delete;
	void* Get() const { return Value; }

private:
	const FProperty& Property;
	void* Value;
};
}

FAssetShow::FAssetShow(const FNamedAsset& Named, FShowPage& InPage)
	: Asset(Named.Asset)
	, AssetInnerPath(GetInnerPath(Named.Asset.GetObjectPathString(), Named.Asset.PackageName))
	, Page(InPage)
	, InnerPath(Named.SubPath.IsEmpty() ? AssetInnerPath : JoinInner(AssetInnerPath, Named.SubPath))
{
}

bool FAssetShow::Show(FString& OutError)
{
	Package = LoadPackage(Asset.PackageName);
	FindObject();
	ReadStored();
	if (!AreRowsThere(OutError))
		return false;
	if (!Object && !Stored.bListed && InnerPath != AssetInnerPath)
	{
		OutError = "The asset " + Asset.GetObjectPathString() + " has no object '" +
			(Page.Params.Object.IsEmpty() ? InnerPath : Page.Params.Object) + "'";
		return false;
	}
	ShowHead();
	ShowSections();
	RemarkFaults();
	return true;
}

bool FAssetShow::AreRowsThere(FString& OutError) const
{
	const TArray<FString>& Names = Page.Params.RowNames;
	if (Names.IsEmpty() || !Stored.FoundRows.IsEmpty() || !Page.Wants("rows"))
		return true;
	OutError = "The asset " + Asset.GetObjectPathString() + " has no row '" + Names[0] + "'";
	return false;
}

void FAssetShow::FindObject()
{
	AssetObject = Package ? Package->FindInside(AssetInnerPath) : nullptr;
	Object = AssetObject;
	if (Page.Params.Object.IsEmpty() && InnerPath == AssetInnerPath)
		return;
	Object = FindInside(Page.Params.Object.IsEmpty() ? InnerPath : Page.Params.Object);
	if (Object)
		InnerPath = GetInnerPath(Object->GetPathName(), Package->GetFName());
	else if (!Page.Params.Object.IsEmpty())
		InnerPath = JoinInner(AssetInnerPath, Page.Params.Object);
}

/** By its path, as a whole, from the package or from the asset on; by its name where it alone has that. No name is made of what a
 * caller gives. */
const UObject* FAssetShow::FindInside(const FString& Text) const
{
	if (!Package)
		return nullptr;
	const FString Inner = Text.StartsWith(Asset.PackageName.ToString() + ".") ? GetInnerPath(Text, Asset.PackageName) : Text;
	const FString BelowAsset = JoinInner(AssetInnerPath, Inner);
	TArray<UObject*> All;
	GetObjectsWithOuter(Package, All, true);
	TArray<const UObject*> Named;
	for (const UObject* Each : All)
	{
		const FString Path = GetInnerPath(Each->GetPathName(), Package->GetFName());
		if (Path == BelowAsset || Path == Inner)
			return Each;
		if (Unicode::EqualsFolded(Each->GetFName().View(), Inner))
			Named.Add(Each);
	}
	return Named.Num() == 1 ? Named[0] : nullptr;
}

void FAssetShow::ShowHead()
{
	Page.Set("asset", Asset.GetObjectPathString());
	Page.Set("class", Asset.AssetClassPath.ToString());
	Page.Set("class_parents", ListAncestors(Asset.AssetClassPath));
	Page.Set("file", FProject::GetPackageFileName(Asset.PackageName));
	ShowBlueprintParents();
	if (InnerPath != AssetInnerPath)
		Page.Set("object", InnerPath);
	if (InnerPath != AssetInnerPath && Object)
		Page.Set("object_class", Object->GetClass()->GetPathName());
}

void FAssetShow::ShowBlueprintParents()
{
	if (!IsBlueprint(Asset))
		return;
	FString Generated;
	if (!Asset.GetTagValue(FBlueprintTags::GeneratedClassPath, Generated))
		Generated = Asset.GetObjectPathString() + "_C";
	const FJsonArray Ancestors = ListAncestors(FTopLevelAssetPath(FSoftObjectPath(Generated.View()).ToString().View()));
	if (Ancestors.IsEmpty())
		return;
	Page.Set("parent", Ancestors[0]);
	Page.Set("parents", Ancestors);
}

void FAssetShow::ShowTags()
{
	auto Tags = MakeShared<FJsonObject>();
	const TArray<std::pair<FString, FString>> All = Asset.GetTags();
	for (const auto& [Key, Value] : All)
	{
		const FJsonValue Text = Page.Values.WriteText(Value);
		if (!Page.Take(Text, Key))
			break;
		Tags->SetField(Key, Text);
	}
	Page.NoteCut(All.Num() - Tags->Num(), "tag");
	Page.Payload->SetObjectField("tags", Tags);
}

void FAssetShow::ReadStored()
{
	VisitStoredObjects(Asset.PackageName, &Faults,
		[this](const FStoredObject& Listed, FPropertyReader& Reader)
		{
			if (!Stored.bListed && Unicode::EqualsFolded(Listed.Path, InnerPath))
				TakeStored(Listed, Reader);
			else if (!Package || !Package->FindInside(Listed.Path))
				Unmade.push_back({FString(Listed.Path), FString(Listed.Class)});
			return !IsStopRequested();
		});
}

void FAssetShow::TakeStored(const FStoredObject& Listed, FPropertyReader& Reader)
{
	Stored.bListed = true;
	for (const FJsonRef Member : Listed.Properties)
		Stored.Keys.insert(Unicode::Fold(Member.Key()));
	if (!Object)
		return ReadRaw(Listed, Reader);
	CheckValues(Listed.Properties, Reader);
	if (const FJsonRef Rows = Listed.Properties.Find("Rows"); Page.Wants("rows") && Object->IsA<UDataTable>())
		ReadRows(Rows, Reader);
}

void FAssetShow::ReadRaw(const FStoredObject& Listed, FPropertyReader& Reader)
{
	const bool bKnown = FindClass(Listed.Class) != nullptr;
	Reader.Report(Listed.ClassPlace, EDiagnosticSeverity::Warning, "unknown-class",
		FString("class ") + Listed.Class + (bKnown ? " cannot be given to this object" : " is not known") +
			", so the object is shown as the file has it");
	for (const FJsonRef Member : Listed.Properties)
	{
		auto Property = MakeShared<FJsonObject>();
		Property->SetStringField("name", FString(Member.Key()));
		Property->SetField("value", Page.Values.WriteStored(Member));
		if (IsStopRequested() || !Page.Take(Property))
			break;
		Stored.RawProperties.Add(Property);
	}
	Page.NoteCut(Listed.Properties.Num() - Stored.RawProperties.Num(), "property");
}

/** Reads every value once more, for what is wrong with it. */
void FAssetShow::CheckValues(const FJsonRef& Properties, FPropertyReader& Reader)
{
	for (const FJsonRef Member : Properties)
	{
		if (IsStopRequested())
			return;
		const FProperty* const Property = Object->GetClass()->FindPropertyByName(FName(Member.Key()));
		if (Property && Property->IsComplete())
			Property->ReadValue(FPropertyValue(*Property).Get(), Member, Reader);
	}
	Reader.ReportMissingObjects();
}

bool FAssetShow::WantsRow(FStringView Name)
{
	const TArray<FString>& Names = Page.Params.RowNames;
	if (Names.IsEmpty())
		return Stored.Rows.Num() < Page.Params.MaxRows;
	const bool bWanted = Names.ContainsByPredicate([&](const FString& Each) { return Unicode::EqualsFolded(Each, Name); });
	if (bWanted)
		Stored.FoundRows.Add(FString(Name));
	return bWanted;
}

void FAssetShow::ReadRows(const FJsonRef& Rows, FPropertyReader& Reader)
{
	if (!Rows.IsObject())
		return;
	Reader.SetWorstSeverity(EDiagnosticSeverity::Warning); // nothing of the program uses cells
	Stored.NumRows = Rows.Num();
	for (const FJsonRef Cells : Rows)
	{
		if (IsStopRequested())
			return;
		if (!WantsRow(Cells.Key()) || Stored.NumRowsWithoutRoom > 0)
			continue;
		auto Row = MakeShared<FJsonObject>();
		Row->SetField("name", Page.Values.WriteText(Cells.Key()));
		Row->SetField("cells", MakeCells(Cells, Reader));
		if (Page.Take(Row))
			Stored.Rows.Add(Row);
		else
			++Stored.NumRowsWithoutRoom;
	}
}

/** All columns, with their defaults where the row does not state them; as the file has them where the row structure is missing.
 */
FJsonValue FAssetShow::MakeCells(const FJsonRef& Cells, FPropertyReader& Reader)
{
	const UScriptStruct* const Struct = static_cast<const UDataTable*>(Object)->RowStruct;
	if (!Struct || !Struct->IsLinked())
		return Page.Values.WriteStored(Cells);
	const FStructValue Row(*Struct);
	Reader.ReadProperties(*Struct, Row.Get(), Cells, nullptr);
	return Page.Values.WriteMembers(*Struct, Row.Get());
}

void FAssetShow::ShowSections()
{
	const auto ShowOf = [this](const char* Section, void (*Set)(const UObject&, FShowPage&))
	{
		if (Object && Page.Wants(Section))
			Set(*Object, Page);
	};
	if (Page.Wants("references")) // small, and of use for every asset: before what may have no room
		Page.Set("references", FamilySections::MakeReferences(Asset.PackageName));
	if (Page.Wants("tags") && !Asset.GetTags().IsEmpty())
		ShowTags();
	if (Page.Wants("properties"))
		ShowProperties();
	if (Page.Wants("rows"))
		ShowRows();
	ShowOf("entries", &FamilySections::SetEntries);
	ShowOf("fields", &FamilySections::SetFields);
	ShowOf("keys", &FamilySections::SetKeys);
	ShowOf("parameters", &FamilySections::SetParameters);
	ShowOf("variables", &FamilySections::SetVariables);
	if (Page.Wants("index") && InnerPath == AssetInnerPath)
		FamilySections::SetIndex(Asset, Page);
	if (Object && (Page.Wants("tree") || Page.Wants("objects")))
		ShowTree();
	if (Page.Wants("objects") && InnerPath == AssetInnerPath)
		ShowObjects();
	if (Page.Values.GetNumCut() > 0)
		Page.Remark(FShowPage::Count(Page.Values.GetNumCut(), "long value") + " cut", "max_bytes",
			FString::FromInt(Page.Params.MaxBytes));
}

void FAssetShow::ShowProperties()
{
	if (!Object)
		return Page.Payload->SetArrayField("properties", Stored.RawProperties);
	const UObject* const Defaults = Object->GetClass()->GetDefaultObject();
	std::vector<std::pair<const FProperty*, bool>> Listed; // and whether it has its default
	int32 NumDefaults = 0;
	for (const FProperty* Property : PropertiesOf(*Object->GetClass()))
	{
		if (IsStopRequested())
			return;
		const bool bDefault = IsDefaultValue(*Property, Object, Defaults);
		const bool bStored = Stored.Keys.contains(Unicode::Fold(Property->GetFName().View()));
		if (!bDefault || bStored || Page.Params.bIncludeDefaults)
			Listed.push_back({Property, bDefault});
		else
			++NumDefaults;
	}
	Page.SetList("properties", "property", static_cast<int32>(Listed.size()),
		[&](int32 Index) -> FJsonValue
		{
			const auto& [Property, bDefault] = Listed[static_cast<std::size_t>(Index)];
			auto Json = MakeShared<FJsonObject>();
			Json->SetStringField("name", Property->GetAuthoredName());
			Json->SetField("type", Page.Values.WriteText(Property->GetTypeText()));
			Json->SetField("value", Page.Values.Write(*Property, Property->ContainerPtrToValuePtr<void>(Object)));
			if (bDefault)
				Json->SetBoolField("default", true);
			return Json;
		});
	if (NumDefaults > 0)
		Page.Remark(FShowPage::Count(NumDefaults, "more property") + " not stored, so with the defaults of the class",
			"include_defaults", "true");
}

void FAssetShow::ShowRows()
{
	if (!Object || !Object->IsA<UDataTable>())
		return;
	Page.Set("num_rows", Stored.NumRows);
	Page.Payload->SetArrayField("rows", Stored.Rows);
	if (Stored.NumRowsWithoutRoom > 0)
		Page.Remark("more rows left out for lack of room", "max_bytes", FString::FromInt(Page.Params.MaxBytes));
	else if (Page.Params.RowNames.IsEmpty() && Stored.Rows.Num() < Stored.NumRows)
		Page.Remark(
			FShowPage::Count(Stored.NumRows - Stored.Rows.Num(), "more row"), "max_rows", FString::FromInt(Page.Params.MaxRows));
	for (const FString& Name : Page.Params.RowNames)
		if (!Stored.FoundRows.Contains(Name))
			Page.Remark("the table has no row '" + Name + "'");
}

void FAssetShow::ShowTree()
{
	FObjectTree Tree(*(AssetObject ? AssetObject : Object), Page);
	FJsonArray Nodes = Tree.Write(*Object);
	if (Page.Wants("tree") && !Nodes.IsEmpty())
		Page.Payload->SetArrayField("tree", std::move(Nodes));
	InTree = Tree.TakeShown();
	InTree.insert(Object);
}

/** The rest of the package: what neither is the asset nor stands in its tree, and what no object could be made of. */
void FAssetShow::ShowObjects()
{
	std::vector<FUnmade> Rest;
	TArray<UObject*> All;
	if (Package)
		GetObjectsWithOuter(Package, All, true);
	for (const UObject* Each : All)
	{
		if (!Each->IsA<UStruct>() && !InTree.contains(Each))
			Rest.push_back({GetInnerPath(Each->GetPathName(), Package->GetFName()), Each->GetClass()->GetPathName()});
	}
	const std::size_t NumMade = Rest.size();
	Rest.insert(Rest.end(), Unmade.begin(), Unmade.end());
	if (Rest.empty())
		return;
	Page.SetList("objects", "object", static_cast<int32>(Rest.size()),
		[&](int32 Index) -> FJsonValue
		{
			const auto Place = static_cast<std::size_t>(Index);
			auto Json = MakeShared<FJsonObject>();
			Json->SetField("object", Page.Values.WriteText(Rest[Place].Path));
			Json->SetField("class", Page.Values.WriteText(Rest[Place].Class));
			if (Place >= NumMade)
				Json->SetBoolField("only_in_file", true);
			return Json;
		});
}

void FAssetShow::RemarkFaults()
{
	const TArray<FDiagnostic> Sorted = Faults.GetSorted();
	for (int32 Index = 0; Index < std::min(Sorted.Num(), MaxFaults); ++Index)
		Page.Remark(Sorted[Index].ToString());
	if (Sorted.Num() > MaxFaults)
		Page.Remark(FShowPage::Count(Sorted.Num() - MaxFaults, "more fault") + " of this file");
	if (!Object && Sorted.IsEmpty())
		Page.Remark("the file has no object " + InnerPath + ", so only what the registry knows is shown");
}
