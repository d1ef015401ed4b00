#pragma once

#include "AssetRegistry/AssetData.h"
#include "CoreObject/Object.h"

enum class ELoad : uint8
{
	Never,
	IfMissing,
};

/**
 * The object of an asset: found in its package when that is in memory and complete, else, with ELoad::IfMissing, after loading
 * the package. Null when it is not to be had. Game thread.
 */
UObject* ResolveAssetObject(const FAssetData& Asset, ELoad Load);
