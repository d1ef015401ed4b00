#include "AssetRegistry/BlueprintIndex.h"

#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Image/TextRun.h"
#include "Image/TrigramIndex.h"
#include "Queries/RegistrySnapshot.h"

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
}

int32 FBlueprintIndexView::NumBlueprints() const
{
	return Snapshot ? static_cast<int32>(Snapshot->Image->GetTables().IndexedAssets.size()) : 0;
}

FAssetData FBlueprintIndexView::GetBlueprint(int32 Blueprint) const
{
	return Snapshot->MakeAssetData(Snapshot->Image->GetTables().IndexedAssets[ToRow(Blueprint)]);
}

bool FBlueprintIndexView::IsRegistryFiltered(int32 Blueprint) const
{
	return Snapshot->Image->IsFiltered(Snapshot->Image->GetTables().IndexedAssets[ToRow(Blueprint)]);
}

FBlueprintIndexView::FEntryRange FBlueprintIndexView::GetEntries(int32 Blueprint) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	const uint32 Package = Tables.AssetPackages[Tables.IndexedAssets[ToRow(Blueprint)]];
	const FRowRange Entries = FRegistryTables::RangeOf(Tables.FirstEntries, Package);
	return {ToIndex(Entries.Begin), ToIndex(Entries.End)};
}

FBlueprintIndexView::FEntry FBlueprintIndexView::GetEntry(int32 Entry) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	const uint32 Row = ToRow(Entry);
	return {.Category = ToIndex(Tables.EntryCategories[Row]),
		.Text = ToIndex(Tables.EntryTexts[Row]),
		.Comment = ToIndex(Tables.EntryComments[Row]),
		.Depth = Tables.EntryDepths[Row]};
}

int32 FBlueprintIndexView::FindBlueprint(uint32 Entry) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	const auto StartsBehind = [&Tables](uint32 Number, uint32 Asset)
	{ return Number < Tables.FirstEntries[Tables.AssetPackages[Asset]]; };
	const auto Above = std::upper_bound(Tables.IndexedAssets.begin(), Tables.IndexedAssets.end(), Entry, StartsBehind);
	return std::max(static_cast<int32>(Above - Tables.IndexedAssets.begin()) - 1, 0);
}

int32 FBlueprintIndexView::NumEntries() const
{
	return Snapshot ? static_cast<int32>(Snapshot->Image->GetTables().EntryTexts.size()) : 0;
}

std::vector<uint32> FBlueprintIndexView::FindTexts(FStringView Value) const
{
	return Snapshot ? FindFolded(Snapshot->Image->GetTables(), Unicode::Fold(Value)) : std::vector<uint32>();
}

std::span<const uint32> FBlueprintIndexView::GetUses(uint32 Text) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	const FRowRange Uses = FRegistryTables::RangeOf(Tables.FirstUses, Text);
	return Tables.Uses.subspan(Uses.Begin, Uses.Num());
}

int32 FBlueprintIndexView::NumTexts() const
{
	return Snapshot ? ToIndex(Snapshot->Image->GetTables().NumTexts(EZone::Entries)) : 0;
}

FStringView FBlueprintIndexView::GetText(int32 Text) const
{
	return Snapshot->Image->GetTables().GetText(EZone::Entries, ToRow(Text));
}
