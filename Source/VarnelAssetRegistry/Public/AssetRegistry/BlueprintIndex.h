#pragma once

#include "AssetRegistry/AssetData.h"

#include <span>
#include <vector>

struct FRegistrySnapshot;

/**
 * The search entries that Blueprint packages list about themselves; nothing is loaded. A view of one state of the registry, which
 * it keeps: copies are cheap and stay valid across a rescan. Any thread. An empty view has no Blueprints, entries or texts.
 *
 * A text is there once, or twice once files have changed, so that a search finds texts (FindTexts) and then only looks
 * up the entries that use them (GetUses).
 */
class FBlueprintIndexView
{
public:
	struct FEntry
	{
		int32 Category = INDEX_NONE; // indices of texts
		int32 Text = INDEX_NONE;
		int32 Comment = INDEX_NONE; // INDEX_NONE without a comment
		int32 Depth = 0;			// 0 directly below the Blueprint; the parent is the nearest entry before with a smaller depth
	};
	/** Entries from Begin up to but not including End. */
	struct FEntryRange
	{
		int32 Begin = 0;
		int32 End = 0;
	};

	/** Entries that use a text: every number counts from First. */
	struct FUses
	{
		std::span<const uint32> Numbers;
		uint32 First = 0;
	};

	FBlueprintIndexView() = default;
	explicit FBlueprintIndexView(TSharedPtr<const FRegistrySnapshot> InSnapshot) : Snapshot(std::move(InSnapshot)) {}

	/** Blueprints that have entries, hidden ones included, numbered in the order of their entries. */
	int32 NumBlueprints() const;
	FAssetData GetBlueprint(int32 Blueprint) const;
	/** Not to be found: registry-filtered, or of a file that has changed since. */
	bool IsHidden(int32 Blueprint) const;
	/** Numbers of Blueprints are in registry order; once files have changed, GetOrder is what ascends in it. */
	bool IsInRegistryOrder() const;
	uint64 GetOrder(int32 Blueprint) const;
	/** In file order, parents before children. */
	FEntryRange GetEntries(int32 Blueprint) const;
	FEntry GetEntry(int32 Entry) const;
	/** The Blueprint that an entry listed by GetUses belongs to. */
	int32 FindBlueprint(uint32 Entry) const;
	int32 NumEntries() const;

	int32 NumTexts() const;
	FStringView GetText(int32 Text) const;
	/** Indices, ascending, of the texts that contain Value without regard to case; of all for an empty one. */
	std::vector<uint32> FindTexts(FStringView Value) const;
	/** Entries of Blueprints that have the text as their text or comment, ascending, each once. Valid as long as the view. */
	FUses GetUses(uint32 Text) const;

private:
	TSharedPtr<const FRegistrySnapshot> Snapshot;
};
