#pragma once

#include "Mcp/McpToolHost.h"

/** What clients read about the tools. */
namespace McpTools
{
/** The "tools" of a tools/list answer. */
FJsonArray MakeList(const TArray<FMcpTool>& Tools);
/** What an agent should know before it picks a tool, below 2 KB; names the tool to begin with. */
FString MakeInstructions(const TArray<FMcpTool>& Tools, bool bFollowsFiles = true);
/** Null for a name that is not listed; case matters. */
const FMcpTool* Find(const TArray<FMcpTool>& Tools, FStringView Name);
/** "asset_search, explore_asset_graph" */
FString ListNames(const TArray<FMcpTool>& Tools);

/** Whether one of the arguments that the tool requires is missing. */
bool LacksRequiredArgument(const FMcpTool& Tool, const FJsonValue& Arguments);
/** "asset_search takes a JSON object with: term (required), mode, path_contains" */
FString DescribeArguments(const FMcpTool& Tool);
/** The arguments of the tool that make its answer smaller: "path_contains, max_total_hits"; may be empty. */
FString ListNarrowingArguments(const FMcpTool& Tool);
}
