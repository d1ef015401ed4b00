#pragma once

#include "Quellar/Hits/AssetSearchTypes.h"

enum class EConsoleSearchForm : uint8
{
	Summary,  // one line's worth an asset; no command asks for it, kept for callers
	Detailed, // assets with their hits, below their asset types
};

/** The document that the console's search commands write: indented JSON with a line break at the end.
 * Docs/ConsoleSearchDocument.md describes it. */
FString WriteConsoleSearchDocument(const FAssetSearchResult& Result, EConsoleSearchForm Form);
