#pragma once

#include "AssetRegistry/AssetRegistry.h"

#include <functional>
#include <mutex>
#include <stop_token>

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
	 * A scan of the registry under way, which brings the index up to date (see FAssetRegistry::Scan): callers that ask the
	 * manager can cancel it. One at a time: the second one waits in its constructor.
	 */
	class FIndexingRun
	{
	public:
		/** A stop of Outer stops the run too. */
		explicit FIndexingRun(std::stop_token Outer);
		~FIndexingRun();
		FIndexingRun(const FIndexingRun&) = delete;
		FIndexingRun& operator=(const FIndexingRun&) = delete;
		/** For FRegistryScanOptions::Stop. */
		std::stop_token GetStopToken() const { return Source.get_token(); }

	private:
		const std::lock_guard<std::mutex> RunGuard;
		std::stop_source Source;
		const std::stop_callback<std::function<void()>> PassOn;
	};

	bool IsUnindexedCacheInProgress() const;
	/** Makes the run under way end soon; harmless without one. Panel is the one that asks, if any. */
	void CancelCacheAll(IFindInBlueprintsPanel* Panel);

private:
	std::mutex RunLock;		 // held by the run under way
	mutable std::mutex Lock; // guards Run
	TOptional<std::stop_source> Run;
};
