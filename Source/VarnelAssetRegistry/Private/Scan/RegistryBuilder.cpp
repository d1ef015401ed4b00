#include "Scan/RegistryBuilder.h"

#include "Core/Text/Unicode.h"
#include "Core/Threads/Tasks.h"
#include "Image/TrigramIndex.h"
#include "Scan/ClassTable.h"
#include "Scan/DerivedColumns.h"
#include "Scan/TextMap.h"
#include "Scan/TextZones.h"

namespace
{
constexpr FStringView BlueprintClass = "/Script/Engine.Blueprint";

/** New ids of what assets mention. */
struct FAssetMaps
{
	FTextMap Names;
	FTextMap TagKeys;
	FTextMap TagValues;
	FTextMap Classes;
};

class FRegistryBuilder
{
public:
	explicit FRegistryBuilder(const FRegistryInput& InInput) : Input(InInput) {}
	TSharedPtr<const FRegistryImage> Build();

private:
	void AddPackages();
	void AddFiles();
	void AddAssets();
	void AddEntries();
	void AddFaults();
	void AddDependencies();
	void AddRespelledPackages();
	bool IsRespelled(const FPackageDraft& Package, uint32 Row) const;
	uint32 AddClass(std::string_view Path);
	void AddAsset(uint32 Package, uint32 OldAsset, FAssetMaps& Maps);
	void AddGeneratedClass(uint32 Asset);
	void AddTrigrams();

	FTextMap MapTo(EZone Zone)
	{
		return {Input, Zone, [&Table = Texts[Zone]](std::string_view Text) { return Table.Add(Text); }};
	}
	FRowRange RecordRange(const FPackageDraft& Package, TColumnSpan<uint32> FRegistryTables::*First) const
	{
		return FRegistryTables::RangeOf(Input.Sources[Package.Source].*First, Package.Record);
	}

	const FRegistryInput& Input;
	FRegistryDraft Draft;
	FClassTable Classes;
	bool bClassRespelled = false; // some file writes a class in other case than it has here
	bool bNodeRespelled = false;
	FTextZones Texts;
};

TSharedPtr<const FRegistryImage> FRegistryBuilder::Build()
{
	AddPackages();
	// Each of these has columns and zones of its own.
	ParallelInvoke({[this] { AddEntries(); }, [this] { AddAssets(); }, [this] { AddDependencies(); }, [this] { AddFiles(); },
					   [this] { AddFaults(); }},
		Input.NumThreads);
	DerivedColumns::AddIndexedAssets(Draft, Texts[EZone::Classes].Find(BlueprintClass));
	DerivedColumns::AddUses(Draft, Texts[EZone::Entries].Num());
	AddRespelledPackages();
	Texts.MoveTo(Draft);
	AddTrigrams();
	return FRegistryImage::Build(std::move(Draft), Input.Key);
}

void FRegistryBuilder::AddPackages()
{
	FTextTable& Nodes = Texts[EZone::Nodes];
	std::size_t NumBytes = 0;
	for (const FPackageDraft& Package : Input.Packages)
		NumBytes += Package.LongName.size() + 1;
	Nodes.Reserve(Input.Packages.size(), NumBytes);
	FTextTable Folders(ESearchCase::CaseSensitive);
	for (const FPackageDraft& Package : Input.Packages)
	{
		Nodes.AddNew(Package.LongName);
		Draft.PackageFolders.push_back(Folders.Add(Package.LongName.substr(0, Package.LongName.rfind('/'))));
	}
	const std::vector<uint32> Places = AppendSorted(Folders, Texts[EZone::Folders]);
	for (uint32& Folder : Draft.PackageFolders)
		Folder = Places[Folder];
}

void FRegistryBuilder::AddFiles()
{
	const FListedFiles& Files = *Input.Files;
	FTextTable& Names = Texts[EZone::Files];
	std::vector<uint32> PackageOf(Files.Num(), NoId);
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
		PackageOf[Input.Packages[Package].File] = Package;
	Draft.PackageFiles.resize(Input.Packages.size());
	uint32 File = 0;
	for (const FListedFiles::FRoot& Root : Files.GetRoots())
	{
		Draft.RootNames.push_back(Names.Add(Root.Name));
		Draft.RootFolders.push_back(Names.Add(Root.StoredFolder));
		Draft.FirstRootFiles.push_back(static_cast<uint32>(Draft.FilePackages.size()));
		for (const uint32 End = Root.FirstFile + static_cast<uint32>(Root.Tree.Num()); File < End; ++File)
		{
			if (PackageOf[File] == NoId)
				continue;
			Draft.PackageFiles[PackageOf[File]] = static_cast<uint32>(Draft.FilePackages.size());
			Draft.FilePackages.push_back(PackageOf[File]);
			Draft.FileStamps.push_back(Files.GetStamp(File));
			Draft.FileExtensions.push_back(Names.Add(Files.GetExtension(File)));
			Draft.FileSources.push_back(Files.GetSource(File));
		}
	}
	Draft.FirstRootFiles.push_back(static_cast<uint32>(Draft.FilePackages.size()));
}

void FRegistryBuilder::AddAssets()
{
	FAssetMaps Maps = {MapTo(EZone::Names), MapTo(EZone::TagKeys), MapTo(EZone::TagValues),
		FTextMap(Input, EZone::Classes, [this](std::string_view Path) { return AddClass(Path); })};
	Classes.AddDeclared(Input.ClassParents);
	Draft.FirstAssets = {0};
	Draft.FirstTags = {0};
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		const FRowRange Assets = RecordRange(Input.Packages[Package], &FRegistryTables::FirstAssets);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
			AddAsset(Package, Asset, Maps);
		Draft.FirstAssets.push_back(static_cast<uint32>(Draft.AssetNames.size()));
	}
	Classes.Finish(Draft, Texts[EZone::Classes]);
}

uint32 FRegistryBuilder::AddClass(std::string_view Path)
{
	const uint32 Class = Classes.Add(Path);
	bClassRespelled |= Classes.Get(Class) != Path;
	return Class;
}

/** OldAsset is its row in the package's source. */
void FRegistryBuilder::AddAsset(uint32 Package, uint32 OldAsset, FAssetMaps& Maps)
{
	const uint32 Source = Input.Packages[Package].Source;
	const FRegistryTables& From = Input.Sources[Source];
	const auto Asset = static_cast<uint32>(Draft.AssetNames.size());
	Draft.AssetPackages.push_back(Package);
	Draft.AssetNames.push_back(Maps.Names(Source, From.AssetNames[OldAsset]));
	Draft.AssetClasses.push_back(Maps.Classes(Source, From.AssetClasses[OldAsset]));
	Draft.AssetOuters.push_back(Maps.Names(Source, From.AssetOuters[OldAsset]));
	Draft.AssetFlags.push_back(From.AssetFlags[OldAsset]);
	if (Draft.AssetNames.back() != NoId || Draft.AssetOuters.back() != NoId)
		Draft.OwnNamedAssets.push_back(Asset);
	const FRowRange Tags = FRegistryTables::RangeOf(From.FirstTags, OldAsset);
	for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
	{
		Draft.TagKeys.push_back(Maps.TagKeys(Source, From.TagKeys[Tag]));
		Draft.TagValues.push_back(Maps.TagValues(Source, From.TagValues[Tag]));
	}
	Draft.FirstTags.push_back(static_cast<uint32>(Draft.TagKeys.size()));
	AddGeneratedClass(Asset);
}

void FRegistryBuilder::AddGeneratedClass(uint32 Asset)
{
	const auto FindTag = [this, Asset](std::string_view Key) -> std::string_view
	{
		for (uint32 Tag = Draft.FirstTags[Asset]; Tag < Draft.FirstTags[Asset + 1]; ++Tag)
		{
			if (Unicode::EqualsFolded(Texts[EZone::TagKeys].Get(Draft.TagKeys[Tag]), Key))
				return Texts[EZone::TagValues].Get(Draft.TagValues[Tag]);
		}
		return {};
	};
	if (const std::string_view Generated = FindTag(FBlueprintTags::GeneratedClassPath); !Generated.empty())
		Classes.AddGenerated(Generated, FindTag(FBlueprintTags::ParentClassPath), FindTag(FBlueprintTags::NativeParentClassPath));
}

void FRegistryBuilder::AddEntries()
{
	auto MapText = MapTo(EZone::Entries);
	Draft.FirstEntries = {0};
	for (const FPackageDraft& Package : Input.Packages)
	{
		const FRegistryTables& From = Input.Sources[Package.Source];
		const FRowRange Entries = RecordRange(Package, &FRegistryTables::FirstEntries);
		for (uint32 Entry = Entries.Begin; Entry < Entries.End; ++Entry)
		{
			Draft.EntryCategories.push_back(MapText(Package.Source, From.EntryCategories[Entry]));
			Draft.EntryTexts.push_back(MapText(Package.Source, From.EntryTexts[Entry]));
			Draft.EntryComments.push_back(MapText(Package.Source, From.EntryComments[Entry]));
			Draft.EntryDepths.push_back(From.EntryDepths[Entry]);
		}
		Draft.FirstEntries.push_back(static_cast<uint32>(Draft.EntryTexts.size()));
	}
}

void FRegistryBuilder::AddFaults()
{
	auto MapText = MapTo(EZone::Faults);
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		const uint32 Source = Input.Packages[Package].Source;
		const FRegistryTables& From = Input.Sources[Source];
		const FRowRange Faults = From.FindFaults(Input.Packages[Package].Record);
		for (uint32 Fault = Faults.Begin; Fault < Faults.End; ++Fault)
		{
			Draft.FaultPackages.push_back(Package);
			Draft.FaultLines.push_back(From.FaultLines[Fault]);
			Draft.FaultColumns.push_back(From.FaultColumns[Fault]);
			Draft.FaultSeverities.push_back(From.FaultSeverities[Fault]);
			Draft.FaultTexts.push_back(MapText(Source, From.FaultTexts[Fault]));
			Draft.FaultRules.push_back(MapText(Source, From.FaultRules[Fault]));
		}
	}
}

void FRegistryBuilder::AddDependencies()
{
	FTextTable& Nodes = Texts[EZone::Nodes];
	FTextTable Others(ESearchCase::IgnoreCase); // names without a file
	const uint32 NumPackages = Nodes.Num();
	FTextMap MapNode(Input, EZone::Nodes,
		[&](std::string_view Name)
		{
			const uint32 Package = Nodes.Find(Name);
			const uint32 Other = Package == NoId ? Others.Add(Name) : NoId;
			bNodeRespelled |= (Package == NoId ? Others.Get(Other) : Nodes.Get(Package)) != Name;
			return Package == NoId ? NumPackages + Other : Package;
		});
	Draft.FirstDependencies = {0};
	for (const FPackageDraft& Package : Input.Packages)
	{
		const FRegistryTables& From = Input.Sources[Package.Source];
		const FRowRange Dependencies = RecordRange(Package, &FRegistryTables::FirstDependencies);
		for (uint32 Dependency = Dependencies.Begin; Dependency < Dependencies.End; ++Dependency)
		{
			Draft.DependencyTargets.push_back(MapNode(Package.Source, From.DependencyTargets[Dependency]));
			Draft.DependencyFlags.push_back(From.DependencyFlags[Dependency]);
		}
		Draft.FirstDependencies.push_back(static_cast<uint32>(Draft.DependencyTargets.size()));
	}
	const std::vector<uint32> Places = AppendSorted(Others, Nodes);
	for (uint32& Target : Draft.DependencyTargets)
		Target = Target < NumPackages ? Target : Places[Target - NumPackages];
	Draft.FirstDependencies.resize(std::size_t{Nodes.Num()} + 1, Draft.FirstDependencies.back());
	DerivedColumns::AddReferencers(Draft);
}

void FRegistryBuilder::AddRespelledPackages()
{
	if (!bClassRespelled && !bNodeRespelled)
		return;
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		if (IsRespelled(Input.Packages[Package], Package))
			Draft.RespelledPackages.push_back(Package);
	}
}

bool FRegistryBuilder::IsRespelled(const FPackageDraft& Package, uint32 Row) const
{
	const FRegistryTables& From = Input.Sources[Package.Source];
	const auto Differs = [&From](EZone Zone, uint32 OldId, const FTextTable& Table, uint32 NewId)
	{ return From.GetText(Zone, OldId) != Table.Get(NewId); };
	const uint32 Dependency = RecordRange(Package, &FRegistryTables::FirstDependencies).Begin;
	for (uint32 New = Draft.FirstDependencies[Row], Old = Dependency; New < Draft.FirstDependencies[Row + 1]; ++New, ++Old)
	{
		if (Differs(EZone::Nodes, From.DependencyTargets[Old], Texts[EZone::Nodes], Draft.DependencyTargets[New]))
			return true;
	}
	const uint32 Asset = RecordRange(Package, &FRegistryTables::FirstAssets).Begin;
	for (uint32 New = Draft.FirstAssets[Row], Old = Asset; New < Draft.FirstAssets[Row + 1]; ++New, ++Old)
	{
		if (Differs(EZone::Classes, From.AssetClasses[Old], Texts[EZone::Classes], Draft.AssetClasses[New]))
			return true;
	}
	return false;
}

void FRegistryBuilder::AddTrigrams()
{
	const FRegistryTables Tables = Draft.View();
	ParallelInvoke({[&] { Draft.NameTrigrams = TrigramIndex::Build(Tables, TrigramIndex::GetPackageNames(Tables)); },
					   [&] { Draft.EntryTrigrams = TrigramIndex::Build(Tables, TrigramIndex::GetEntryTexts(Tables)); }},
		Input.NumThreads);
}
}

TSharedPtr<const FRegistryImage> BuildRegistry(const FRegistryInput& Input)
{
	return FRegistryBuilder(Input).Build();
}
