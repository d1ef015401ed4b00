#include "Quellar/QuellarModule.h"

#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/BlueprintFindUtils.h"
#include "ToolEntry.h"

void FQuellarModule::StartupModule()
{
	const TSharedPtr<Orivane::IToolExecutor> Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (!Executor)
		return;
	AssetSearchEntry = MakeShared<FAssetSearchTool>();
	Executor->RegisterTool("asset_search", AssetSearchEntry);
}

void FQuellarModule::ShutdownModule()
{
	FBlueprintFindUtils::Get().Abandon();
	const TSharedPtr<Orivane::IToolExecutor> Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (!Executor)
		return;
	Executor->UnregisterTool("asset_search");
	Executor->UnregisterTool("explore_asset_graph");
	Executor->UnregisterTool("asset_path_search");
	AssetSearchEntry.reset();
	AssetGraphEntry.reset();
	AssetPathSearchEntry.reset();
}
