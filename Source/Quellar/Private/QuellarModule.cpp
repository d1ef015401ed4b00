#include "Quellar/QuellarModule.h"

#include "Console/ExploreAssetGraphCommand.h"
#include "Families/TextFamily.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/BlueprintFindUtils.h"

void FQuellarModule::StartupModule()
{
	FAssetOperationBase::SetTextFileRule(&IsSearchableTextFile);
	RegisterTools();
	RegisterExploreAssetGraphCommand();
}

void FQuellarModule::RegisterTools()
{
	const TSharedPtr<Orivane::IToolExecutor> Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (!Executor)
		return;
	AssetSearchEntry = MakeShared<FAssetSearchTool>();
	Executor->RegisterTool("asset_search", AssetSearchEntry);
	AssetGraphEntry = MakeShared<FAssetGraphTool>();
	Executor->RegisterTool("explore_asset_graph", AssetGraphEntry);
}

void FQuellarModule::ShutdownModule()
{
	const TSharedPtr<Orivane::IToolExecutor> Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (!Executor)
		return;
	Executor->UnregisterTool("asset_search");
	Executor->UnregisterTool("explore_asset_graph");
	Executor->UnregisterTool("asset_path_search");
	// Calls that wait keep their entries; those under way are completed here, and the threads behind them end.
	for (const TSharedPtr<FToolEntry>& Entry : {AssetSearchEntry, AssetGraphEntry, AssetPathSearchEntry})
	{
		if (Entry)
			Entry->Close();
	}
	FBlueprintFindUtils::Get().Abandon();
	AssetSearchEntry.reset();
	AssetGraphEntry.reset();
	AssetPathSearchEntry.reset();
}
