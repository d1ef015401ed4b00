#pragma once

#include "Core/Text/String.h"

/** Where the page's data go, a JSON object. */
inline constexpr FStringView GraphPagePlaceholder = "GRAPH_DATA";

/** Text of GraphPage.html. */
FStringView GetGraphPage();
