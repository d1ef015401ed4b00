#pragma once

#include "AssetRegistry/AssetData.h"

#include <span>
#include <vector>

struct FRegistrySnapshot;

/**
 * The search entries that Blueprint packages list about themselves; nothing is loaded. A view of one state of the registry, which
 * it keeps: copies are cheap and stay valid across a rescan. Any thread. An empty view has no Blueprints, entries or texts.
 *
 * Every distinct text is there once, folded beside its own spelling, so that a search finds texts (FindTexts) and then only looks
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

	FBlueprintIndexView() = default;
	explicit FBlueprintIndexView(TSharedPtr<const FRegistrySnapshot> InSnapshot) : Snapshot(std::move(InSnapshot)) {}

	/** Blueprints that have entries, registry-filtered ones included, in registry order. */
	int32 NumBlueprints() const;
	FAssetData GetBlueprint(int32 Blueprint) const;
	bool IsRegistryFiltered(int32 Blueprint) const;
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
	std::span<const uint32> GetUses(uint32 Text) const;

private:
	TSharedPtr<const FRegistrySnapshot> Snapshot;
};
