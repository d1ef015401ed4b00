#pragma once

#include "Core/String.h"

class FProperty;

/** Short type text of a column, such as "string", "int", "TArray"; "unknown" for null, the field class's name for kinds without a
 * short text. */
FString GetPropertyTypeName(const FProperty* Property);
