#include "LinkPicker.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace
{
// A hub is what everybody uses: base materials, shared enumerations, the game's own base classes.
constexpr EAssetClass HubClasses[] = {EAssetClass::Material, EAssetClass::UserDefinedEnum, EAssetClass::Texture2D,
	EAssetClass::Blueprint, EAssetClass::MaterialFunction, EAssetClass::UserDefinedStruct, EAssetClass::DataAsset,
	EAssetClass::SoundWave};

constexpr uint32 PackagesPerHub = 100;
constexpr uint32 LargestHubOf65536 = 3600; // about 5 % of all packages refer to the largest hub, as some draws are lost
constexpr uint32 NeighbourOf256 = 90;	   // links that stay within a feature
constexpr uint32 BackwardOneIn = 16;	   // of the earlier neighbours of the same class, these are kept; some close a cycle

struct FDerivingClass
{
	EAssetClass Class;
	uint32 DerivedOf256;
};

constexpr FDerivingClass DerivingClasses[] = {
	{EAssetClass::Blueprint, 100},
	{EAssetClass::WidgetBlueprint, 50},
	{EAssetClass::AnimBlueprint, 40},
	{EAssetClass::BlackboardData, 70},
	{EAssetClass::MaterialInstanceConstant, 60},
};
}

FPowerLaw::FPowerLaw(uint32 RatioOf256)
{
	uint64 Weight = 1 << 12;
	for (uint32 Octave = 0; Octave < 32; ++Octave)
	{
		WeightBefore[Octave + 1] = static_cast<uint32>(WeightBefore[Octave] + Weight);
		Weight = Weight * RatioOf256 / 256;
	}
}

uint32 FPowerLaw::Pick(FRandom& Random, uint32 Num) const
{
	const uint32 NumOctaves = std::bit_width(Num);
	const uint32 Mark = Random.Below(WeightBefore[NumOctaves]);
	const auto After = std::upper_bound(WeightBefore, WeightBefore + NumOctaves, Mark);
	const uint32 First = 1u << (After - WeightBefore - 1); // of the octave, counted from 1
	return First - 1 + Random.Below(std::min(First, Num - First + 1));
}

uint64 FPowerLaw::TotalOf256(uint32 Num) const
{
	return static_cast<uint64>(WeightBefore[std::bit_width(Num)]) * 256 / WeightBefore[1];
}

FLinkPicker::FLinkPicker(const FProjectPlan& InPlan) : Plan(InPlan), Popularity(305), HubPopularity(282)
{
	ChooseHubs();
	ScaleLinks();
}

std::optional<uint32> FLinkPicker::PickOfClass(FRandom& Random, EAssetClass Class, uint32 User) const
{
	const FRange Packages = Plan.PackagesOf(Class);
	const uint32 First = std::max(Packages.Begin, User + 1);
	if (First >= Packages.End)
		return std::nullopt;
	return Packages.End - 1 - Popularity.Pick(Random, Packages.End - First);
}

std::optional<uint32> FLinkPicker::PickFurther(FRandom& Random, uint32 User) const
{
	if (Random.Below(65536) < HubShareOf65536)
	{
		const uint32 Hub = Hubs[HubPopularity.Pick(Random, static_cast<uint32>(Hubs.size()))];
		if (Hub > User)
			return Hub;
	}
	if (Random.Chance(NeighbourOf256))
	{
		if (const auto Neighbour = PickNeighbour(Random, User))
			return Neighbour;
	}
	const auto Uses = RowOf(Plan.ClassOf(User)).Uses;
	if (Uses.empty())
		return std::nullopt;
	return PickOfClass(Random, Random.Pick(Uses), User);
}

std::optional<uint32> FLinkPicker::ParentOf(uint32 Package) const
{
	const EAssetClass Class = Plan.ClassOf(Package);
	const auto Row = std::find_if(std::begin(DerivingClasses), std::end(DerivingClasses),
		[Class](const FDerivingClass& Deriving) { return Deriving.Class == Class; });
	if (Row == std::end(DerivingClasses))
		return std::nullopt;
	FRandom Random = Plan.MakeRandom(EPurpose::Parent, Package);
	if (!Random.Chance(Row->DerivedOf256))
		return std::nullopt;
	return PickOfClass(Random, Class, Package);
}

uint32 FLinkPicker::RootOf(uint32 Package) const
{
	while (const auto Parent = ParentOf(Package))
		Package = *Parent;
	return Package;
}

uint32 FLinkPicker::PickNumLinks(FRandom& Random, EAssetClass Class) const
{
	return Random.HeavyTailed(MeanLinksOf256[static_cast<uint32>(Class)]);
}

void FLinkPicker::ChooseHubs()
{
	const uint32 NumHubs = Plan.NumPackages() / PackagesPerHub + 1;
	for (uint32 Round = 0; Round < NumHubs && Hubs.size() < NumHubs; ++Round)
	{
		for (const EAssetClass Class : HubClasses)
		{
			const FRange Packages = Plan.PackagesOf(Class);
			if (Round < Packages.Num())
				Hubs.push_back(Packages.End - 1 - Round);
		}
	}
	const uint32 Dependencies = Plan.GetOptions().Dependencies;
	if (Hubs.empty() || Dependencies == 0)
		return;
	const uint64 AllHubsOf65536 = LargestHubOf65536 * HubPopularity.TotalOf256(static_cast<uint32>(Hubs.size())) / 256;
	HubShareOf65536 = static_cast<uint32>(std::min<uint64>(AllHubsOf65536 / Dependencies, 32768));
}

void FLinkPicker::ScaleLinks()
{
	uint64 Natural = 0; // links of the whole project by the classes' own means
	for (uint32 Class = 0; Class < NumAssetClasses; ++Class)
		Natural += static_cast<uint64>(Plan.PackagesOf(static_cast<EAssetClass>(Class)).Num()) *
			RowOf(static_cast<EAssetClass>(Class)).MeanLinks;
	const uint64 Wanted = static_cast<uint64>(Plan.NumPackages()) * Plan.GetOptions().Dependencies;
	for (uint32 Class = 0; Class < NumAssetClasses && Natural != 0; ++Class)
		MeanLinksOf256[Class] = static_cast<uint32>(RowOf(static_cast<EAssetClass>(Class)).MeanLinks * 256 * Wanted / Natural);
}

std::optional<uint32> FLinkPicker::PickNeighbour(FRandom& Random, uint32 User) const
{
	const auto Neighbours = Plan.PackagesIn(Plan.FolderOf(User).Neighbours);
	const uint32 Neighbour = Random.Pick(Neighbours);
	const bool bBackward = Neighbour < User && Plan.ClassOf(Neighbour) == Plan.ClassOf(User) && Random.OneIn(BackwardOneIn);
	if (Neighbour > User || bBackward)
		return Neighbour;
	return std::nullopt;
}
