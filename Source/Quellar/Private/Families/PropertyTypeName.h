#pragma once

#include "Core/Text/String.h"

class FProperty;

/** Short type text of a column, such as "string", "int", "TArray"; "unknown" for null, what GetFieldClassName gives for kinds
 * without a short text. */
FString GetPropertyTypeName(const FProperty* Property);
/** Name of the property's field class, such as "IntProperty"; for a type that nothing declares, the type as its declaration
 * spells it. */
FString GetFieldClassName(const FProperty& Property);
