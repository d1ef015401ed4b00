#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "BehaviorTree": the blackboard, and every node, service and decorator by name, description and class. Loads trees, and
 * what they refer to. */
void SearchBehaviorTrees(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
