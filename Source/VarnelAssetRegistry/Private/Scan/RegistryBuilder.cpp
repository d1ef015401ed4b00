#include "Scan/RegistryBuilder.h"

#include "Core/Text/Unicode.h"
#include "Core/Threads/Tasks.h"
#include "Image/TrigramIndex.h"
#include "Scan/ClassTable.h"

#include <algorithm>
#include <numeric>

namespace
{
constexpr FStringView BlueprintClass = "/Script/Engine.Blueprint";
constexpr std::size_t FoldChunkTexts = 4096;

/** Gives the texts of one zone of all sources new ids; every distinct text of a source is looked up once. */
template <class TAddText>
class TTextMap
{
public:
	TTextMap(const FRegistryInput& InInput, EZone InZone, TAddText InAddText)
		: Input(InInput)
		, Zone(InZone)
		, AddText(std::move(InAddText))
		, NewIds(Input.Sources.size())
	{
	}

	uint32 operator()(uint32 Source, uint32 OldId)
	{
		if (OldId == NoId)
			return NoId;
		std::vector<uint32>& Known = NewIds[Source];
		if (OldId >= Known.size())
			Known.resize(std::max<std::size_t>(OldId + std::size_t{1}, 2 * Known.size()), NoId);
		if (Known[OldId] == NoId)
			Known[OldId] = AddText(Input.Sources[Source].GetText(Zone, OldId));
		return Known[OldId];
	}

private:
	const FRegistryInput& Input;
	const EZone Zone;
	TAddText AddText;
	std::vector<std::vector<uint32>> NewIds;
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
	void AddDependencies();
	void AddReferencers();
	void AddRespelledPackages();
	bool IsRespelled(const FPackageDraft& Package, uint32 Row) const;
	void AddIndexedAssets();
	void AddUses();
	void AddGeneratedClass(uint32 Asset);
	void AddTexts();
	void FoldTexts();
	void AddTrigrams();

	FTextTable& Texts(EZone Zone) { return Zones[static_cast<std::size_t>(Zone)]; }
	const FTextTable& Texts(EZone Zone) const { return Zones[static_cast<std::size_t>(Zone)]; }
	auto MapTo(EZone Zone)
	{
		return TTextMap(Input, Zone, [&Table = Texts(Zone)](std::string_view Text) { return Table.Add(Text); });
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
	std::array<FTextTable, NumZones> Zones = {FTextTable(ESearchCase::IgnoreCase), FTextTable(ESearchCase::CaseSensitive),
		FTextTable(ESearchCase::IgnoreCase), FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive),
		FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive)};
};

TSharedPtr<const FRegistryImage> FRegistryBuilder::Build()
{
	AddPackages();
	// Each of these has columns and zones of its own.
	const std::array<void (FRegistryBuilder::*)(), 4> Steps = {&FRegistryBuilder::AddEntries, &FRegistryBuilder::AddAssets,
		&FRegistryBuilder::AddDependencies, &FRegistryBuilder::AddFiles};
	ParallelFor(
		static_cast<int32>(Steps.size()), 1,
		[&](int32 Begin, int32, int32) { (this->*Steps[static_cast<std::size_t>(Begin)])(); }, Input.NumThreads);
	AddIndexedAssets();
	AddUses();
	AddRespelledPackages();
	AddTexts();
	AddTrigrams();
	return FRegistryImage::Build(std::move(Draft), Input.Key);
}

void FRegistryBuilder::AddPackages()
{
	FTextTable& Nodes = Texts(EZone::Nodes);
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
	const std::vector<uint32> Places = AppendSorted(Folders, Texts(EZone::Folders));
	for (uint32& Folder : Draft.PackageFolders)
		Folder = Places[Folder];
}

void FRegistryBuilder::AddFiles()
{
	const FListedFiles& Files = *Input.Files;
	FTextTable& Names = Texts(EZone::Files);
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
	auto MapName = MapTo(EZone::Names);
	auto MapKey = MapTo(EZone::TagKeys);
	auto MapValue = MapTo(EZone::TagValues);
	TTextMap MapClass(Input, EZone::Classes,
		[this](std::string_view Path)
		{
			const uint32 Class = Classes.Add(Path);
			bClassRespelled |= Classes.Get(Class) != Path;
			return Class;
		});
	Classes.AddDeclared(Input.ClassParents);
	Draft.FirstAssets = {0};
	Draft.FirstTags = {0};
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		const uint32 Source = Input.Packages[Package].Source;
		const FRegistryTables& From = Input.Sources[Source];
		const FRowRange Assets = RecordRange(Input.Packages[Package], &FRegistryTables::FirstAssets);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
		{
			Draft.AssetPackages.push_back(Package);
			Draft.AssetNames.push_back(MapName(Source, From.AssetNames[Asset]));
			Draft.AssetClasses.push_back(MapClass(Source, From.AssetClasses[Asset]));
			Draft.AssetOuters.push_back(MapName(Source, From.AssetOuters[Asset]));
			Draft.AssetFlags.push_back(From.AssetFlags[Asset]);
			if (Draft.AssetNames.back() != NoId || Draft.AssetOuters.back() != NoId)
				Draft.OwnNamedAssets.push_back(static_cast<uint32>(Draft.AssetNames.size() - 1));
			const FRowRange Tags = FRegistryTables::RangeOf(From.FirstTags, Asset);
			for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
			{
				Draft.TagKeys.push_back(MapKey(Source, From.TagKeys[Tag]));
				Draft.TagValues.push_back(MapValue(Source, From.TagValues[Tag]));
			}
			Draft.FirstTags.push_back(static_cast<uint32>(Draft.TagKeys.size()));
			AddGeneratedClass(static_cast<uint32>(Draft.AssetNames.size() - 1));
		}
		Draft.FirstAssets.push_back(static_cast<uint32>(Draft.AssetNames.size()));
	}
	Classes.Finish(Draft, Texts(EZone::Classes));
}

void FRegistryBuilder::AddGeneratedClass(uint32 Asset)
{
	const auto FindTag = [this, Asset](std::string_view Key) -> std::string_view
	{
		for (uint32 Tag = Draft.FirstTags[Asset]; Tag < Draft.FirstTags[Asset + 1]; ++Tag)
		{
			if (Unicode::EqualsFolded(Texts(EZone::TagKeys).Get(Draft.TagKeys[Tag]), Key))
				return Texts(EZone::TagValues).Get(Draft.TagValues[Tag]);
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

void FRegistryBuilder::AddDependencies()
{
	FTextTable& Nodes = Texts(EZone::Nodes);
	FTextTable Others(ESearchCase::IgnoreCase); // names without a file
	const uint32 NumPackages = Nodes.Num();
	TTextMap MapNode(Input, EZone::Nodes,
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
	AddReferencers();
}

/** The graph turned round: walking the packages in registry order leaves the referencers of each in registry order. */
void FRegistryBuilder::AddReferencers()
{
	std::vector<uint32>& First = Draft.FirstReferencers;
	First.assign(Draft.FirstDependencies.size(), 0);
	for (const uint32 Target : Draft.DependencyTargets)
		++First[Target + std::size_t{1}];
	std::partial_sum(First.begin(), First.end(), First.begin());
	std::vector<uint32> Next = First;
	Draft.ReferencerSources.resize(Draft.DependencyTargets.size());
	Draft.ReferencerFlags.resize(Draft.DependencyTargets.size());
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		for (uint32 Dependency = Draft.FirstDependencies[Package]; Dependency < Draft.FirstDependencies[Package + 1];
			 ++Dependency)
		{
			const uint32 Place = Next[Draft.DependencyTargets[Dependency]]++;
			Draft.ReferencerSources[Place] = Package;
			Draft.ReferencerFlags[Place] = Draft.DependencyFlags[Dependency];
		}
	}
}

void FRegistryBuilder::AddIndexedAssets()
{
	std::vector<bool> IsBlueprint(Draft.ClassParents.size());
	const uint32 Topmost = Texts(EZone::Classes).Find(BlueprintClass);
	for (uint32 Class = 0; Class < IsBlueprint.size(); ++Class)
	{
		uint32 At = Class;
		while (At != NoId && At != Topmost)
			At = Draft.ClassParents[At];
		IsBlueprint[Class] = At != NoId;
	}
	for (uint32 Package = 0; Package < Input.Packages.size(); ++Package)
	{
		if (Draft.FirstEntries[Package] == Draft.FirstEntries[Package + 1])
			continue;
		uint32 Asset = Draft.FirstAssets[Package];
		while (Asset < Draft.FirstAssets[Package + 1] && !IsBlueprint[Draft.AssetClasses[Asset]])
			++Asset;
		if (Asset < Draft.FirstAssets[Package + 1])
			Draft.IndexedAssets.push_back(Asset);
	}
}

/** Entries by text: walking them in order leaves each text's in order. Those of packages without a Blueprint mean nothing. */
void FRegistryBuilder::AddUses()
{
	const auto ForEachUse = [this](const auto& Visit)
	{
		for (const uint32 Asset : Draft.IndexedAssets)
		{
			const FRowRange Entries = FRegistryTables::RangeOf(Draft.FirstEntries, Draft.AssetPackages[Asset]);
			for (uint32 Entry = Entries.Begin; Entry < Entries.End; ++Entry)
			{
				Visit(Draft.EntryTexts[Entry], Entry);
				if (Draft.EntryComments[Entry] != NoId && Draft.EntryComments[Entry] != Draft.EntryTexts[Entry])
					Visit(Draft.EntryComments[Entry], Entry);
			}
		}
	};
	std::vector<uint32>& First = Draft.FirstUses;
	First.assign(std::size_t{Texts(EZone::Entries).Num()} + 1, 0);
	ForEachUse([&First](uint32 Text, uint32) { ++First[Text + std::size_t{1}]; });
	std::partial_sum(First.begin(), First.end(), First.begin());
	std::vector<uint32> Next = First;
	Draft.Uses.resize(First.back());
	ForEachUse([&](uint32 Text, uint32 Entry) { Draft.Uses[Next[Text]++] = Entry; });
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
		if (Differs(EZone::Nodes, From.DependencyTargets[Old], Texts(EZone::Nodes), Draft.DependencyTargets[New]))
			return true;
	}
	const uint32 Asset = RecordRange(Package, &FRegistryTables::FirstAssets).Begin;
	for (uint32 New = Draft.FirstAssets[Row], Old = Asset; New < Draft.FirstAssets[Row + 1]; ++New, ++Old)
	{
		if (Differs(EZone::Classes, From.AssetClasses[Old], Texts(EZone::Classes), Draft.AssetClasses[New]))
			return true;
	}
	return false;
}

void FRegistryBuilder::AddTexts()
{
	std::size_t NumTexts = 0;
	std::size_t NumBytes = 0;
	for (const FTextTable& Zone : Zones)
	{
		NumTexts += Zone.Num();
		NumBytes += Zone.GetBytes().size();
	}
	Draft.TextStarts.reserve(NumTexts + 1);
	Draft.TextBytes.reserve(NumBytes);
	for (std::size_t Zone = 0; Zone < NumZones; ++Zone)
	{
		Draft.ZoneStarts[Zone] = static_cast<uint32>(Draft.TextStarts.size());
		const std::vector<uint64> Starts = Zones[Zone].TakeStarts();
		const std::vector<char> Bytes = Zones[Zone].TakeBytes();
		for (std::size_t Text = 0; Text + 1 < Starts.size(); ++Text)
			Draft.TextStarts.push_back(Draft.TextBytes.size() + Starts[Text]);
		Draft.TextBytes.insert(Draft.TextBytes.end(), Bytes.begin(), Bytes.end());
	}
	Draft.ZoneStarts[NumZones] = static_cast<uint32>(Draft.TextStarts.size());
	Draft.TextStarts.push_back(Draft.TextBytes.size());
	FoldTexts();
}

void FRegistryBuilder::AddTrigrams()
{
	const FRegistryTables Tables = Draft.View();
	ParallelFor(
		2, 1,
		[&](int32 Begin, int32, int32)
		{
			if (Begin == 0)
				Draft.NameTrigrams = TrigramIndex::Build(Tables, TrigramIndex::GetPackageNames(Tables));
			else
				Draft.EntryTrigrams = TrigramIndex::Build(Tables, TrigramIndex::GetEntryTexts(Tables));
		},
		Input.NumThreads);
}

/** Texts of ASCII are folded many at a time; only where others change their length do the folded ones need starts of their own.
 */
void FRegistryBuilder::FoldTexts()
{
	const std::string_view Bytes(Draft.TextBytes.data(), Draft.TextBytes.size());
	const std::size_t NumTexts = Draft.TextStarts.size() - 1;
	std::string Folded;
	Folded.reserve(Bytes.size());
	std::vector<uint64> Starts;
	Starts.reserve(NumTexts + 1);
	for (std::size_t Begin = 0; Begin < NumTexts; Begin += FoldChunkTexts)
	{
		const std::size_t End = std::min(NumTexts, Begin + FoldChunkTexts);
		const std::string_view Chunk = Bytes.substr(Draft.TextStarts[Begin], Draft.TextStarts[End] - Draft.TextStarts[Begin]);
		const bool bAscii = Unicode::IsAscii(Chunk);
		const std::size_t ChunkStart = Folded.size();
		if (bAscii)
			Unicode::AppendFolded(Folded, Chunk);
		for (std::size_t Text = Begin; Text < End; ++Text)
		{
			const uint64 Start = Draft.TextStarts[Text] - Draft.TextStarts[Begin];
			Starts.push_back(bAscii ? ChunkStart + Start : Folded.size());
			if (!bAscii)
				Unicode::AppendFolded(Folded, Chunk.substr(Start, Draft.TextStarts[Text + 1] - Draft.TextStarts[Text]));
		}
	}
	Starts.push_back(Folded.size());
	Draft.FoldedBytes.assign(Folded.begin(), Folded.end());
	if (Starts != Draft.TextStarts)
		Draft.FoldedStarts = std::move(Starts);
}
}

TSharedPtr<const FRegistryImage> BuildRegistry(const FRegistryInput& Input)
{
	return FRegistryBuilder(Input).Build();
}
