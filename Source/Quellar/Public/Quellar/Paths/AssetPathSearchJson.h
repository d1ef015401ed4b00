#pragma once

#include "Core/Json/Json.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"

/** The payload of the path search. Any thread. */
namespace OrivaneToolUtils
{
/**
 * {"summary": {"total_hits", "total_directories", "truncated", "detail_mode"}, "directories"?: [{"path", "count", "files"}],
 * "files"?: []}. Files below their directory are written relative to it.
 */
TSharedPtr<FJsonObject> MakeAssetPathSearchJson(const FAssetPathSearchResult& Result, EAssetPathDetailMode DetailMode);
/** The same as compact text, which replaces Out. Kept for callers. */
void WriteAssetPathSearchJson(const FAssetPathSearchResult& Result, FString& Out, EAssetPathDetailMode DetailMode);
}
