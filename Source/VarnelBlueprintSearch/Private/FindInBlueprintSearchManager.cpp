#include "BlueprintSearch/FindInBlueprintSearchManager.h"

FFindInBlueprintSearchManager& FFindInBlueprintSearchManager::Get()
{
	static FFindInBlueprintSearchManager Manager;
	return Manager;
}

FBlueprintIndexView FFindInBlueprintSearchManager::GetIndex() const
{
	auto* const Module = static_cast<FAssetRegistryModule*>(FModuleManager::Get().GetModule("AssetRegistry"));
	return Module ? Module->Get().GetBlueprintIndex() : FBlueprintIndexView();
}

bool FFindInBlueprintSearchManager::CacheAllUnindexed(
	FAssetRegistry& Registry, FRegistryScanOptions Options, FRegistryScanReport& OutReport)
{
	const std::lock_guard RunGuard(RunLock);
	std::stop_source Source;
	const std::stop_callback PassOn(Options.Stop, [&Source] { Source.request_stop(); });
	Options.Stop = Source.get_token();
	{
		const std::lock_guard Guard(Lock);
		Run = Source;
	}
	const bool bDone = Registry.Scan(Options, OutReport);
	const std::lock_guard Guard(Lock);
	Run.reset();
	return bDone;
}

bool FFindInBlueprintSearchManager::IsUnindexedCacheInProgress() const
{
	const std::lock_guard Guard(Lock);
	return Run.has_value();
}

void FFindInBlueprintSearchManager::CancelCacheAll(IFindInBlueprintsPanel*)
{
	const std::lock_guard Guard(Lock);
	if (Run)
		Run->request_stop();
}
