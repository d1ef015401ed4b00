#pragma once

#include "Quellar/Families/AssetFamily.h"

/** What sets one search command of the console apart from the others. */
struct FConsoleSearchTraits
{
	FAssetFamily::FConsoleCommand Command;
	TArray<FString> Families;
};

/** Reads a command's words; words it does not know, "summary=" among them, are ignored. */
FAssetSearchParams ReadSearchWords(const FConsoleSearchTraits& Traits, const TArray<FString>& Words);
