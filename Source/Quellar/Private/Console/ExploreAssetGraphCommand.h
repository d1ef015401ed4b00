#pragma once

#include "Quellar/Graph/AssetGraphService.h"

/** Reads the words of Orivane.ExploreAssetGraph; words it does not know are ignored. */
FExploreAssetGraphParams ReadExploreAssetGraphWords(const TArray<FString>& Words);
/** Makes Orivane.ExploreAssetGraph known to the console. Again: replaces it. */
void RegisterExploreAssetGraphCommand();
