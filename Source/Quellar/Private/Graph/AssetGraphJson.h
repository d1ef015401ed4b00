#pragma once

#include "Core/Json/Json.h"
#include "Quellar/Graph/AssetGraphService.h"

/** The document that the tool answers with. */
TSharedPtr<FJsonObject> MakeAssetGraphJson(const FExploreAssetGraphResult& Result);

/** The document of the console command, as text: the same content with other keys, a pair of objects for both directions, and a
 * list of relations for leaves too. */
FString WriteAssetGraphConsoleJson(const FExploreAssetGraphResult& Result);
