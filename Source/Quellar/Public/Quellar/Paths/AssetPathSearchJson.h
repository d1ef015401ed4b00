#pragma once

#include "Quellar/Paths/AssetPathSearchTypes.h"

namespace OrivaneToolUtils
{
/**
 * Replaces Out with {"summary": {"total_hits", "total_directories", "truncated", "detail_mode"}, "directories"?: [{"path",
 * "count", "files"}], "files"?: []}. Files below their directory are written relative to it.
 */
void WriteAssetPathSearchJson(const FAssetPathSearchResult& Result, FString& Out, EAssetPathDetailMode DetailMode);
}
