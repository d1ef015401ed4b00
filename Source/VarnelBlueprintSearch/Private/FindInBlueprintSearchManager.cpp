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

FFindInBlueprintSearchManager::FIndexingRun::FIndexingRun(std::stop_token Outer)
	: RunGuard(Get().RunLock)
	, PassOn(std::move(Outer), [this] { Source.request_stop(); })
{
	const std::lock_guard Guard(Get().Lock);
	Get().Run = Source;
}

FFindInBlueprintSearchManager::FIndexingRun::~FIndexingRun()
{
	const std::lock_guard Guard(Get().Lock);
	Get().Run.reset();
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
