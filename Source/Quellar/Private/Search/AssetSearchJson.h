#pragma once

#include "Core/Json/Json.h"
#include "Quellar/Hits/AssetSearchTypes.h"

/**
 * Payload of the tool "asset_search": {"assets": [{"asset", "class", "truncated", "hits": [{"kind", "name", "container", "count",
 * "anchor"?}]}], "truncated"}. Paths, hit names and containers are cut at their first dot, whatever they hold.
 */
TSharedPtr<FJsonObject> MakeAssetSearchJson(const FAssetSearchResult& Result);
