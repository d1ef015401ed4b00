#pragma once

#include "AssetClasses.h"
#include "Random.h"

#include <string>
#include <vector>

/** The top folders of a project and its plugins. */
enum class EArea : uint8
{
	Characters,
	Environment,
	Props,
	Weapons,
	Vehicles,
	AI,
	UI,
	Audio,
	Effects,
	Data,
	Maps,
	Materials,
	Quests,
	Core,
	MovedPlugin, // a plugin's content that was moved into the project, below a folder named Plugins
	WaterPlugin,
	CraftingPlugin,
	Count,
	Anywhere = Count
};

/** A folder that is about one thing, such as /Game/Characters/Wolf, and how much content it gets. */
struct FFeature
{
	std::string LongPath;	  // "/Game/Characters/Wolf"
	std::string DiskPath;	  // "Content/Characters/Wolf", relative to the project
	std::string_view Subject; // the word that its assets' names share
	uint32 Weight = 0;
	uint32 Depth = 0;			// folders in LongPath
	bool bSortedByKind = false; // its assets lie in Meshes, Textures, ...
};

/** The features of a project, those of one area side by side. */
class FFeatureTree
{
public:
	/** Grows a tree with about one feature for 70 assets, at least one an area. */
	FFeatureTree(uint32 NumAssets, uint64 Seed);

	const std::vector<FFeature>& GetFeatures() const { return Features; }

	/** The feature of one more asset, by weight; mostly in Area where one is given. */
	uint32 Pick(FRandom& Random, EArea Area) const;

private:
	void GrowArea(EArea Area, uint32 NumFeatures, FRandom& Random);
	void AddChild(uint32 Parent, FRandom& Random);
	uint32 PickWithin(FRandom& Random, FRange Range) const;

	std::vector<FFeature> Features;
	std::vector<uint32> WeightBefore; // sum of the weights of all features before, one entry more than features
	FRange Areas[static_cast<uint32>(EArea::Count)];
};
