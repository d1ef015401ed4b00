#pragma once

#include "Core/Text/String.h"

/**
 * The family-sized group of a result's asset class: the three Blueprint classes are "Blueprint", "TextFile" is "Text", a class
 * that shares its group with no other is its own. Compared exactly, unlike family names: the classes are our own spellings.
 */
FString GetAssetTypeGroup(const FString& AssetClass);
