#pragma once

#include "Core/Base/Delegate.h"
#include "OrivaneCore/ToolResult.h"

/** Body of the tool "asset_search". */
class FAssetSearchOperation
{
public:
	/**
	 * Reads the arguments ("term" is required; unusable values keep their defaults), searches, and hands messages and the payload
	 * "content" to Result, which must live until OnComplete has run. OnComplete runs once. Game thread.
	 */
	static void ExecuteAsync(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete);
	/** False where the arguments ask for text files alone. Any thread. */
	static bool NeedsPackages(const FJsonObject& Args);
};
