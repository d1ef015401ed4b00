#pragma once

#include "Core/Program/Log.h"
#include "OrivaneCore/ToolResult.h"

DECLARE_LOG_CATEGORY(LogAssetPathSearchOperation);

/** Body of the tool "asset_path_search", which the host that serves agents binds to an entry. */
class FAssetPathSearchOperation
{
public:
	/**
	 * Reads the arguments ("term" is required; unusable values keep their defaults), searches, and hands messages and the payload
	 * "asset_path_search" to Result. Game thread.
	 */
	static void Execute(const FJsonObject& Args, Orivane::FToolResult& Result);
};
