#pragma once

#include "AssetRegistry/AssetRegistry.h"

#include <mutex>

/** Panel that shows search results in an editor. The headless engine has none. */
class IFindInBlueprintsPanel;

/** Keeps the index of what Blueprints list about themselves. All functions may be called from any thread. */
class FFindInBlueprintSearchManager
{
public:
	static FFindInBlueprintSearchManager& Get();

	/** The index as it is now; empty while the module "AssetRegistry" is not loaded. */
	FBlueprintIndexView GetIndex() const;

	/**
	 * Indexes the files that have changed since the registry's cache was written, with everything else that a scan of the
	 * registry finds out (see FAssetRegistry::Scan). Returns when done; false when it was cancelled or Options.Stop was
	 * requested: the registry then keeps what it held. One run at a time: a second one waits.
	 */
	bool CacheAllUnindexed(FAssetRegistry& Registry, FRegistryScanOptions Options, FRegistryScanReport& OutReport);
	bool IsUnindexedCacheInProgress() const;
	/** Makes the run under way end soon; harmless without one. Panel is the one that asks, if any. */
	void CancelCacheAll(IFindInBlueprintsPanel* Panel);

private:
	std::mutex RunLock;		 // held by the run under way
	mutable std::mutex Lock; // guards Run
	TOptional<std::stop_source> Run;
};
