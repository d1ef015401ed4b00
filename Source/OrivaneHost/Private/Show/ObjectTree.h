#pragma once

#include "CoreObject/Objects/Object.h"
#include "Show/ShowPage.h"

#include <unordered_set>

/** "Root.WatchForPlayer" for what lies inside the asset, the path inside the package for what does not. */
FString GetShownPath(const UObject& Object, const UObject& Asset);

/**
 * The objects of a package as a tree below one of them: what an object refers to, property by property, then what lies inside it
 * and is not referred to. Each object is there once, where it is met first, so that rings end. Classes and structures are not
 * among them. Game thread; the package is loaded.
 */
class FObjectTree
{
public:
	FObjectTree(const UObject& InAsset, FShowPage& InPage) : Asset(InAsset), Page(InPage) {}

	/** Nodes below Root: {"object", "class", "as": property, "values", "children"}. */
	FJsonArray Write(const UObject& Root);
	/** What was written so far. */
	std::unordered_set<const UObject*> TakeShown() { return std::move(Shown); }

private:
	struct FBranch
	{
		const UObject* Object;
		FString Property; // "" for what merely lies inside
	};

	/** Both: what was not met yet. */
	std::vector<FBranch> CollectReferred(const UObject& Parent);
	std::vector<FBranch> CollectInside(const UObject& Parent);
	FJsonArray WriteBelow(const UObject& Parent, int32 Depth);
	void WriteBranches(const std::vector<FBranch>& Branches, int32 Depth, FJsonArray& Out);
	FJsonValue WriteValues(const UObject& Object);

	const UObject& Asset;
	FShowPage& Page;
	std::unordered_set<const UObject*> Met;
	std::unordered_set<const UObject*> Shown;
};
