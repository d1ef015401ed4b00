#pragma once

#include "ProjectPlan.h"

#include <optional>

/** Ranks drawn so that a few come very often: rank r comes about (r + 1)^-a as often as rank 0. */
class FPowerLaw
{
public:
	/** RatioOf256: what the ranks of one octave (1, 2, 4, ... ranks) get together in relation to the octave before. */
	explicit FPowerLaw(uint32 RatioOf256);

	/** A rank below Num; Num must not be 0. */
	uint32 Pick(FRandom& Random, uint32 Num) const;

	/** What Num ranks are drawn together for each time that rank 0 is drawn, times 256. */
	uint64 TotalOf256(uint32 Num) const;

private:
	uint32 WeightBefore[33] = {}; // sum over the octaves before
};

/** Draws which package a package refers to, and how many it links to. Stateless, so all threads share it. */
class FLinkPicker
{
public:
	explicit FLinkPicker(const FProjectPlan& InPlan);

	/** A package of the class that may be used by User: popular ones mostly, never an earlier one. Nothing if there is none. */
	std::optional<uint32> PickOfClass(FRandom& Random, EAssetClass Class, uint32 User) const;

	/** A package for a link that no property stands for: a hub, a neighbour, or one of the classes that User's class uses. */
	std::optional<uint32> PickFurther(FRandom& Random, uint32 User) const;

	/** The package of its own class that Package derives from; nothing for those that derive from a native class or none. */
	std::optional<uint32> ParentOf(uint32 Package) const;

	/** The topmost package that Package derives from, perhaps itself. */
	uint32 RootOf(uint32 Package) const;

	/** How many links a package has, unless its references are more. */
	uint32 PickNumLinks(FRandom& Random, EAssetClass Class) const;

private:
	void ChooseHubs();
	void ScaleLinks();
	std::optional<uint32> PickNeighbour(FRandom& Random, uint32 User) const;

	const FProjectPlan& Plan;
	FPowerLaw Popularity;
	FPowerLaw HubPopularity;
	std::vector<uint32> Hubs; // most popular first
	uint32 HubShareOf65536 = 0;
	uint32 MeanLinksOf256[NumAssetClasses] = {};
};
