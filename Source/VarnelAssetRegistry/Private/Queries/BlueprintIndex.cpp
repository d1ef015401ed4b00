#include "AssetRegistry/BlueprintIndex.h"

#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Image/TextRun.h"
#include "Image/TrigramIndex.h"
#include "Queries/RegistryOverlay.h"

#include <algorithm>
#include <numeric>

namespace
{
uint32 ToRow(int32 Index)
{
	return static_cast<uint32>(Index);
}

/** NoId and INDEX_NONE are the same bits. */
int32 ToIndex(uint32 Id)
{
	return static_cast<int32>(Id);
}

/** Appends the ids of those texts that contain the finder's value, which is Length bytes long. */
void FindInTexts(
	const FRegistryTables& Tables, const FTextFinder& Finder, std::size_t Length, FRowRange Texts, std::vector<uint32>& Out)
{
	const FTextRun Run(Tables, true, EZone::Entries, Texts);
	uint32 Text = 0;
	for (std::size_t At = 0; At < Run.Bytes.size() && (At = Finder.Find(Run.Bytes, At)) != std::string_view::npos;)
	{
		Text = Run.FindText(At, Text);
		const bool bInside = At + Length < Run.GetStart(Text + 1); // not across a zero byte
		if (bInside)
			Out.push_back(Texts.Begin + Text);
		At = bInside ? Run.GetStart(++Text) : At + 1;
	}
}

/** Ids, ascending, of the texts that contain a folded value. */
std::vector<uint32> FindFolded(const FRegistryTables& Tables, std::string_view Value)
{
	std::vector<uint32> Found;
	if (Value.empty())
	{
		Found.resize(Tables.NumTexts(EZone::Entries));
		std::iota(Found.begin(), Found.end(), 0);
		return Found;
	}
	const FTextFinder Finder(Value, ESearchCase::CaseSensitive);
	for (const FRowRange Texts : TrigramIndex::FindRuns(Tables.EntryTrigrams, TrigramIndex::GetEntryTexts(Tables), Value))
		FindInTexts(Tables, Finder, Value.size(), Texts, Found);
	return Found;
}

/** A number of the view in the part that it belongs to; those of what was added follow the base's own. */
struct FPlace
{
	const FRegistryPart& Part;
	uint32 Row;
	bool bAdded;

	const FRegistryTables& GetTables() const { return Part.Image->GetTables(); }
};

FPlace FindPlace(const FRegistrySnapshot& Snapshot, uint32 Number, uint32 NumOfBase)
{
	return Number < NumOfBase ? FPlace{*Snapshot.Base, Number, false} : FPlace{*Snapshot.Overlay->Part, Number - NumOfBase, true};
}

uint32 CountBlueprints(const FRegistryPart& Part)
{
	return static_cast<uint32>(Part.Image->GetTables().IndexedAssets.size());
}

uint32 CountEntries(const FRegistryPart& Part)
{
	return static_cast<uint32>(Part.Image->GetTables().EntryTexts.size());
}

uint32 CountTexts(const FRegistryPart& Part)
{
	return Part.Image->GetTables().NumTexts(EZone::Entries);
}

/** Over both parts. */
template <class TCount>
int32 CountAll(const FRegistrySnapshot* Snapshot, TCount Count)
{
	if (!Snapshot)
		return 0;
	return ToIndex(Count(*Snapshot->Base) + (Snapshot->Overlay ? Count(*Snapshot->Overlay->Part) : 0));
}

FPlace FindBlueprintPlace(const FRegistrySnapshot& Snapshot, int32 Blueprint)
{
	return FindPlace(Snapshot, ToRow(Blueprint), CountBlueprints(*Snapshot.Base));
}

FPlace FindTextPlace(const FRegistrySnapshot& Snapshot, uint32 Text)
{
	return FindPlace(Snapshot, Text, CountTexts(*Snapshot.Base));
}
}

int32 FBlueprintIndexView::NumBlueprints() const
{
	return CountAll(Snapshot.get(), CountBlueprints);
}

FAssetData FBlueprintIndexView::GetBlueprint(int32 Blueprint) const
{
	const FPlace Place = FindBlueprintPlace(*Snapshot, Blueprint);
	return Place.Part.MakeAssetData(Place.GetTables().IndexedAssets[Place.Row]);
}

bool FBlueprintIndexView::IsHidden(int32 Blueprint) const
{
	const FPlace Place = FindBlueprintPlace(*Snapshot, Blueprint);
	const uint32 Asset = Place.GetTables().IndexedAssets[Place.Row];
	const bool bReplaced =
		Snapshot->Overlay && !Place.bAdded && Snapshot->Overlay->IsHidden(Place.GetTables().AssetPackages[Asset]);
	return bReplaced || Place.Part.Image->IsFiltered(Asset);
}

bool FBlueprintIndexView::IsInRegistryOrder() const
{
	return !Snapshot || !Snapshot->Overlay;
}

uint64 FBlueprintIndexView::GetOrder(int32 Blueprint) const
{
	const FPlace Place = FindBlueprintPlace(*Snapshot, Blueprint);
	const uint32 Package = Place.GetTables().AssetPackages[Place.GetTables().IndexedAssets[Place.Row]];
	return Place.bAdded ? uint64{Snapshot->Overlay->Places[Package]} << 32 | Package : uint64{Package} << 32 | UINT32_MAX;
}

FBlueprintIndexView::FEntryRange FBlueprintIndexView::GetEntries(int32 Blueprint) const
{
	const FPlace Place = FindBlueprintPlace(*Snapshot, Blueprint);
	const FRegistryTables& Tables = Place.GetTables();
	const FRowRange Entries =
		FRegistryTables::RangeOf(Tables.FirstEntries, Tables.AssetPackages[Tables.IndexedAssets[Place.Row]]);
	const uint32 NumBefore = Place.bAdded ? CountEntries(*Snapshot->Base) : 0;
	return {ToIndex(Entries.Begin + NumBefore), ToIndex(Entries.End + NumBefore)};
}

FBlueprintIndexView::FEntry FBlueprintIndexView::GetEntry(int32 Entry) const
{
	const FPlace Place = FindPlace(*Snapshot, ToRow(Entry), CountEntries(*Snapshot->Base));
	const FRegistryTables& Tables = Place.GetTables();
	const uint32 NumTextsBefore = Place.bAdded ? CountTexts(*Snapshot->Base) : 0;
	const uint32 Comment = Tables.EntryComments[Place.Row];
	return {.Category = ToIndex(Tables.EntryCategories[Place.Row] + NumTextsBefore),
		.Text = ToIndex(Tables.EntryTexts[Place.Row] + NumTextsBefore),
		.Comment = ToIndex(Comment == NoId ? NoId : Comment + NumTextsBefore),
		.Depth = Tables.EntryDepths[Place.Row]};
}

int32 FBlueprintIndexView::FindBlueprint(uint32 Entry) const
{
	const FPlace Place = FindPlace(*Snapshot, Entry, CountEntries(*Snapshot->Base));
	const FRegistryTables& Tables = Place.GetTables();
	const auto StartsBehind = [&Tables](uint32 Number, uint32 Asset)
	{ return Number < Tables.FirstEntries[Tables.AssetPackages[Asset]]; };
	const auto Above = std::upper_bound(Tables.IndexedAssets.begin(), Tables.IndexedAssets.end(), Place.Row, StartsBehind);
	const int32 OfPart = std::max(static_cast<int32>(Above - Tables.IndexedAssets.begin()) - 1, 0);
	return OfPart + (Place.bAdded ? ToIndex(CountBlueprints(*Snapshot->Base)) : 0);
}

int32 FBlueprintIndexView::NumEntries() const
{
	return CountAll(Snapshot.get(), CountEntries);
}

std::vector<uint32> FBlueprintIndexView::FindTexts(FStringView Value) const
{
	if (!Snapshot)
		return {};
	const std::string Folded = Unicode::Fold(Value);
	std::vector<uint32> Found = FindFolded(Snapshot->Base->Image->GetTables(), Folded);
	if (!Snapshot->Overlay)
		return Found;
	const uint32 NumBefore = CountTexts(*Snapshot->Base);
	for (const uint32 Text : FindFolded(Snapshot->Overlay->Part->Image->GetTables(), Folded))
		Found.push_back(NumBefore + Text);
	return Found;
}

FBlueprintIndexView::FUses FBlueprintIndexView::GetUses(uint32 Text) const
{
	const FPlace Place = FindTextPlace(*Snapshot, Text);
	const FRegistryTables& Tables = Place.GetTables();
	const FRowRange Uses = FRegistryTables::RangeOf(Tables.FirstUses, Place.Row);
	const uint32 NumBefore = Place.bAdded ? CountEntries(*Snapshot->Base) : 0;
	return {Tables.Uses.subspan(Uses.Begin, Uses.Num()), NumBefore};
}

int32 FBlueprintIndexView::NumTexts() const
{
	return CountAll(Snapshot.get(), CountTexts);
}

FStringView FBlueprintIndexView::GetText(int32 Text) const
{
	const FPlace Place = FindTextPlace(*Snapshot, ToRow(Text));
	return Place.GetTables().GetText(EZone::Entries, Place.Row);
}
