#include "IndexMatches.h"

#include <algorithm>
#include <bit>

namespace
{
// Shares of the work, for people who wait.
constexpr float TextsDone = 0.2f;
constexpr float EntriesDone = 0.6f;
// With more matches than one in so many entries, marking entries costs less than sorting their numbers.
constexpr std::size_t EntriesPerSortedMatch = 64;
constexpr std::size_t WordBits = 64;
constexpr int32 NearbyBlueprints = 8;
constexpr std::size_t BlueprintsPerLook = 1024; // between two looks at the stop request

std::vector<uint32> SortUses(const FBlueprintIndexView& Index, const std::vector<uint32>& Texts, FSearchProgress& Progress)
{
	std::vector<uint32> Entries;
	for (const uint32 Text : Texts)
	{
		if (Progress.bStop)
			return {};
		const std::span<const uint32> Uses = Index.GetUses(Text);
		Entries.insert(Entries.end(), Uses.begin(), Uses.end());
	}
	std::sort(Entries.begin(), Entries.end());
	Entries.erase(std::unique(Entries.begin(), Entries.end()), Entries.end());
	return Entries;
}

std::vector<uint32> MarkUses(const FBlueprintIndexView& Index, const std::vector<uint32>& Texts, FSearchProgress& Progress)
{
	std::vector<uint64> Marks(static_cast<std::size_t>(Index.NumEntries()) / WordBits + 1);
	std::size_t NumDone = 0;
	for (const uint32 Text : Texts)
	{
		if (Progress.bStop)
			return {};
		for (const uint32 Entry : Index.GetUses(Text))
			Marks[Entry / WordBits] |= uint64{1} << Entry % WordBits;
		Progress.Done = TextsDone + (EntriesDone - TextsDone) * static_cast<float>(++NumDone) / static_cast<float>(Texts.size());
	}
	std::vector<uint32> Entries;
	for (std::size_t Word = 0; Word < Marks.size(); ++Word)
	{
		for (uint64 Rest = Marks[Word]; Rest != 0; Rest &= Rest - 1)
			Entries.push_back(static_cast<uint32>(Word * WordBits + static_cast<std::size_t>(std::countr_zero(Rest))));
	}
	return Entries;
}

std::vector<uint32> GatherEntries(const FBlueprintIndexView& Index, const std::vector<uint32>& Texts, FSearchProgress& Progress)
{
	std::size_t NumUses = 0;
	for (const uint32 Text : Texts)
		NumUses += Index.GetUses(Text).size();
	return NumUses > static_cast<std::size_t>(Index.NumEntries()) / EntriesPerSortedMatch ? MarkUses(Index, Texts, Progress)
																						  : SortUses(Index, Texts, Progress);
}

/** The Blueprint of an entry that follows those of an earlier one: mostly a near one. */
int32 FindNextBlueprint(const FBlueprintIndexView& Index, int32 Earlier, uint32 Entry)
{
	const int32 End = std::min(Index.NumBlueprints(), Earlier + 1 + NearbyBlueprints);
	for (int32 Blueprint = Earlier + 1; Blueprint < End; ++Blueprint)
	{
		if (static_cast<int32>(Entry) < Index.GetEntries(Blueprint).End)
			return Blueprint;
	}
	return Index.FindBlueprint(Entry);
}

void GroupByBlueprint(FIndexMatches& Matches, FSearchProgress& Progress)
{
	std::vector<uint32> Found;
	Found.swap(Matches.Entries);
	int32 Blueprint = INDEX_NONE;
	for (std::size_t At = 0; At < Found.size();)
	{
		if (Matches.Blueprints.size() % BlueprintsPerLook == 0 && Progress.bStop)
			return;
		Blueprint = FindNextBlueprint(Matches.Index, Blueprint, Found[At]);
		const auto End = static_cast<uint32>(Matches.Index.GetEntries(Blueprint).End);
		const std::size_t Begin = At++;
		while (At < Found.size() && Found[At] < End)
			++At;
		if (Matches.Index.IsRegistryFiltered(Blueprint))
			continue;
		Matches.Blueprints.push_back(Blueprint);
		Matches.FirstEntries.push_back(Matches.Entries.size());
		Matches.Entries.insert(Matches.Entries.end(), Found.begin() + static_cast<std::ptrdiff_t>(Begin),
			Found.begin() + static_cast<std::ptrdiff_t>(At));
	}
	Matches.FirstEntries.push_back(Matches.Entries.size());
}
}

void FIndexMatches::MakeResults()
{
	Results = std::make_unique<FImaginaryFiBData[]>(Blueprints.size());
	for (std::size_t Place = 0; Place < Blueprints.size(); ++Place)
	{
		Results[Place].Owner = this;
		Results[Place].Place = Place;
	}
}

TSharedPtr<FIndexMatches> FindIndexMatches(const FBlueprintIndexView& Index, FStringView Value, FSearchProgress& Progress)
{
	const auto Matches = MakeShared<FIndexMatches>();
	Matches->Index = Index;
	const std::vector<uint32> Texts = Index.FindTexts(Value);
	Progress.Done = TextsDone;
	Matches->Entries = GatherEntries(Index, Texts, Progress);
	Progress.Done = EntriesDone;
	GroupByBlueprint(*Matches, Progress);
	if (Progress.bStop)
		return nullptr;
	Matches->MakeResults();
	return Matches;
}
