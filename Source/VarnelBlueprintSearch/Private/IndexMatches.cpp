#include "IndexMatches.h"

#include <algorithm>
#include <bit>

namespace
{
// Shares of the work, for people who wait.
constexpr float TextsDone = 0.2f;
constexpr float EntriesDone = 0.6f;
// With more matches than one in so many entries, marking entries costs less than sorting their numbers.
constexpr std::size_t EntriesPerSortedMatch = 1024;
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
		const auto [Numbers, First] = Index.GetUses(Text);
		for (const uint32 Number : Numbers)
			Entries.push_back(First + Number);
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
		const auto [Numbers, First] = Index.GetUses(Text);
		for (const uint32 Number : Numbers)
			Marks[(First + Number) / WordBits] |= uint64{1} << (First + Number) % WordBits;
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
		NumUses += Index.GetUses(Text).Numbers.size();
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

/** Entries of one Blueprint among those found. */
struct FGroup
{
	int32 Blueprint;
	std::size_t Begin;
	std::size_t End;
};

std::vector<FGroup> GroupByBlueprint(
	const FBlueprintIndexView& Index, const std::vector<uint32>& Found, const FSearchProgress& Progress)
{
	std::vector<FGroup> Groups;
	int32 Blueprint = INDEX_NONE;
	for (std::size_t At = 0; At < Found.size();)
	{
		if (Groups.size() % BlueprintsPerLook == 0 && Progress.bStop)
			return {};
		Blueprint = FindNextBlueprint(Index, Blueprint, Found[At]);
		const auto End = static_cast<uint32>(Index.GetEntries(Blueprint).End);
		const std::size_t Begin = At++;
		while (At < Found.size() && Found[At] < End)
			++At;
		if (!Index.IsHidden(Blueprint))
			Groups.push_back({Blueprint, Begin, At});
	}
	return Groups;
}

/** Takes the entries in registry order of their Blueprints. */
void TakeEntries(FIndexMatches& Matches, const std::vector<uint32>& Found, std::vector<FGroup> Groups)
{
	const auto ComesBefore = [&Matches](const FGroup& A, const FGroup& B)
	{ return Matches.Index.GetOrder(A.Blueprint) < Matches.Index.GetOrder(B.Blueprint); };
	if (!Matches.Index.IsInRegistryOrder())
		std::sort(Groups.begin(), Groups.end(), ComesBefore);
	for (const FGroup& Group : Groups)
	{
		Matches.Blueprints.push_back(Group.Blueprint);
		Matches.FirstEntries.push_back(Matches.Entries.size());
		Matches.Entries.insert(Matches.Entries.end(), Found.begin() + static_cast<std::ptrdiff_t>(Group.Begin),
			Found.begin() + static_cast<std::ptrdiff_t>(Group.End));
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
	const std::vector<uint32> Found = GatherEntries(Index, Texts, Progress);
	Progress.Done = EntriesDone;
	TakeEntries(*Matches, Found, GroupByBlueprint(Index, Found, Progress));
	if (Progress.bStop)
		return nullptr;
	Matches->MakeResults();
	return Matches;
}
