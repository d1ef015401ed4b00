#include "Tools/PathSearchTool.h"

#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/Tools/AssetPathSearchOperation.h"
#include "Quellar/Tools/ToolArguments.h"
#include "Quellar/Tools/ToolEntry.h"

namespace
{
class FPathSearchTool final : public FToolEntry
{
public:
	FPathSearchTool()
		: FToolEntry("Find assets by a part of their path or name, grouped by folder, with exact counts. Nothing is loaded. Use "
					 "for: finding where an asset is, listing the assets of a folder or of a class.",
			  R"({"operation_type": "search","data_type": "asset"})")
	{
	}

protected:
	void RunOperation(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete) override
	{
		FAssetPathSearchOperation::Execute(Args, Result);
		OnComplete.ExecuteIfBound(Result);
	}
};
}

void RegisterPathSearchTool()
{
	FOrivaneToolkitModule::GetToolExecutor()->RegisterTool(ToolNames::AssetPathSearch, MakeShared<FPathSearchTool>());
}
