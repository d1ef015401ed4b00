#include "FeatureTree.h"
#include "Vocabulary.h"

#include <algorithm>

namespace
{
constexpr uint32 AssetsPerFeature = 70;
constexpr uint32 MostDepth = 7; // a folder for a kind may come below
constexpr uint32 MeanWeight = 12;
constexpr uint32 MostWeight = 250;
constexpr uint32 SortedFrom = 14;		// weight from which a feature has a folder for each kind
constexpr uint32 InPreferredArea = 192; // of 256

struct FAreaRow
{
	std::string_view LongPath;
	std::string_view DiskPath;
	std::string_view Subject;
	uint32 PerThousand; // share of the features
};

constexpr FAreaRow AreaRows[] = {
	{"/Game/Characters", "Content/Characters", "Character", 170},
	{"/Game/Environment", "Content/Environment", "Environment", 230},
	{"/Game/Props", "Content/Props", "Prop", 110},
	{"/Game/Weapons", "Content/Weapons", "Weapon", 70},
	{"/Game/Vehicles", "Content/Vehicles", "Vehicle", 40},
	{"/Game/AI", "Content/AI", "Agent", 30},
	{"/Game/UI", "Content/UI", "Menu", 60},
	{"/Game/Audio", "Content/Audio", "Ambience", 50},
	{"/Game/Effects", "Content/Effects", "Effect", 50},
	{"/Game/Data", "Content/Data", "Shared", 20},
	{"/Game/Maps", "Content/Maps", "Level", 40},
	{"/Game/Materials", "Content/Materials", "Surface", 25},
	{"/Game/Quests", "Content/Quests", "Quest", 45},
	{"/Game/Core", "Content/Core", "Game", 15},
	{"/Game/Plugins/Water", "Content/Plugins/Water", "Lake", 5},
	{"/Water/Shores", "Plugins/Water/Content/Shores", "Shore", 15},
	{"/CraftingKit/Stations", "Plugins/Gameplay/CraftingKit/Content/Stations", "Station", 25},
};

static_assert(std::size(AreaRows) == static_cast<uint32>(EArea::Count));
}

FFeatureTree::FFeatureTree(uint32 NumAssets, uint64 Seed)
{
	FRandom Random(Seed);
	const uint32 NumFeatures = NumAssets / AssetsPerFeature;
	for (uint32 Area = 0; Area < std::size(AreaRows); ++Area)
		GrowArea(static_cast<EArea>(Area), std::max(1u, NumFeatures * AreaRows[Area].PerThousand / 1000), Random);

	WeightBefore.reserve(Features.size() + 1);
	WeightBefore.push_back(0);
	for (const FFeature& Feature : Features)
		WeightBefore.push_back(WeightBefore.back() + Feature.Weight);
}

uint32 FFeatureTree::Pick(FRandom& Random, EArea Area) const
{
	if (Area != EArea::Anywhere && Random.Chance(InPreferredArea))
		return PickWithin(Random, Areas[static_cast<uint32>(Area)]);
	return PickWithin(Random, {0, static_cast<uint32>(Features.size())});
}

void FFeatureTree::GrowArea(EArea Area, uint32 NumFeatures, FRandom& Random)
{
	const FAreaRow& Row = AreaRows[static_cast<uint32>(Area)];
	const uint32 First = static_cast<uint32>(Features.size());
	const uint32 Depth = static_cast<uint32>(std::count(Row.LongPath.begin(), Row.LongPath.end(), '/'));
	Features.push_back({std::string(Row.LongPath), std::string(Row.DiskPath), Row.Subject, MeanWeight, Depth, false});

	// Each joins a folder from before it, mostly an early one: a few folders get many below them, and few lie deep.
	while (Features.size() < First + NumFeatures)
	{
		const uint32 NumBefore = static_cast<uint32>(Features.size()) - First;
		const uint32 Bound = Random.OneIn(5) ? NumBefore : Random.Below(NumBefore) + 1;
		AddChild(First + Random.Below(Bound), Random);
	}
	Areas[static_cast<uint32>(Area)] = {First, static_cast<uint32>(Features.size())};
}

void FFeatureTree::AddChild(uint32 Parent, FRandom& Random)
{
	if (Features[Parent].Depth >= MostDepth)
		return;

	FFeature Child;
	Child.Subject = Random.Pick(Vocabulary::Subjects);
	std::string Name;
	if (Random.Chance(80))
		Name += Random.Pick(Vocabulary::Adjectives);
	Name += Child.Subject;

	// The number of features grows with the project, the number of words does not.
	Child.LongPath = Features[Parent].LongPath + "/" + Name;
	const bool bTaken = std::any_of(
		Features.begin() + Parent, Features.end(), [&Child](const FFeature& Other) { return Other.LongPath == Child.LongPath; });
	if (bTaken)
		return;

	Child.DiskPath = Features[Parent].DiskPath + "/" + Name;
	Child.Depth = Features[Parent].Depth + 1;
	Child.Weight = std::min(1 + Random.HeavyTailed(MeanWeight * 256), MostWeight);
	Child.bSortedByKind = Child.Weight >= SortedFrom;
	Features.push_back(std::move(Child));
}

uint32 FFeatureTree::PickWithin(FRandom& Random, FRange Range) const
{
	const uint32 Before = WeightBefore[Range.Begin];
	const uint32 Mark = Before + Random.Below(WeightBefore[Range.End] - Before);
	const auto After = std::upper_bound(WeightBefore.begin() + Range.Begin, WeightBefore.begin() + Range.End, Mark);
	return static_cast<uint32>(After - WeightBefore.begin()) - 1;
}
