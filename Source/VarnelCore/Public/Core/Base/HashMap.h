#pragma once

#include "Core/Base/Types.h"

#include <functional>
#include <string_view>
#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

/** Unordered map and set for lookups whose order is never visible; TMap and TSet are for what people and answers see. */
template <class TKey, class TValue, class THash = std::hash<TKey>, class TEqual = std::equal_to<TKey>>
using THashMap = tsl::robin_map<TKey, TValue, THash, TEqual>;

template <class TKey, class THash = std::hash<TKey>, class TEqual = std::equal_to<TKey>>
using THashSet = tsl::robin_set<TKey, THash, TEqual>;
