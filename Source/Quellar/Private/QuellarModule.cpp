#include "Quellar/QuellarModule.h"

#include "Console/ExploreAssetGraphCommand.h"
#include "Families/TextFamily.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/BlueprintFindUtils.h"
#include "Quellar/ToolEntry.h"

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
