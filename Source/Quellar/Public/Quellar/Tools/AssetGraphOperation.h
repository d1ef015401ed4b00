#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"

/** Body of the tool explore_asset_graph. Game thread. */
class FAssetGraphOperation
{
public:
	/**
	 * Reads the arguments, explores, and writes messages and the payload "content" (the document of MakeAssetGraphJson).
	 * Arguments: asset_path (required), relation ("Dependencies", "Referencers" or "Both" in any case; any other word means
	 * dependencies), depth (1 or 2, clamped), max_nodes, max_fanout_per_node, high_signal_only. What is missing or of another
	 * type keeps its default. Without an asset_path, or for an asset that does not exist, there are errors and no payload.
	 */
	static void Execute(const FJsonObject& Args, Orivane::FToolResult& Result);
};
