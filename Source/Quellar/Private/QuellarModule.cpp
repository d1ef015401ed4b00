#include "Quellar/QuellarModule.h"

#include "Console/ExploreAssetGraphCommand.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/Families/BlueprintFindUtils.h"
#include "Quellar/Families/SearchMemory.h"
#include "Quellar/Families/TextSearch.h"
#include "Quellar/Tools/ToolArguments.h"

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
	Executor->RegisterTool(ToolNames::AssetSearch, AssetSearchEntry);
	AssetGraphEntry = MakeShared<FAssetGraphTool>();
	Executor->RegisterTool(ToolNames::AssetGraph, AssetGraphEntry);
}

void FQuellarModule::ShutdownModule()
{
	const TSharedPtr<Orivane::IToolExecutor> Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (!Executor)
		return;
	Executor->UnregisterTool(ToolNames::AssetSearch);
	Executor->UnregisterTool(ToolNames::AssetGraph);
	Executor->UnregisterTool(ToolNames::AssetPathSearch);
	// Calls that wait keep their entries; those under way are completed here, and the threads behind them end.
	for (const TSharedPtr<FToolEntry>& Entry : {AssetSearchEntry, AssetGraphEntry, AssetPathSearchEntry})
	{
		if (Entry)
			Entry->Close();
	}
	FBlueprintFindUtils::Get().Abandon();
	SearchMemory::Forget();
	AssetSearchEntry.reset();
	AssetGraphEntry.reset();
	AssetPathSearchEntry.reset();
}
