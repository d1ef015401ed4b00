#pragma once

#include "Quellar/Hits/AssetSearchTypes.h"

/** What sets one search command of the console apart from the others. */
struct FConsoleSearchTraits
{
	const char* Name;
	const char* File; // below Saved/Quellar
	const char* Help;
	TArray<FString> Families;
	TArray<FString> ExtraWords = {"kinds="}; // words besides those that all understand
};

/** Reads a command's words; words it does not know, "summary=" among them, are ignored. */
FAssetSearchParams ReadSearchWords(const FConsoleSearchTraits& Traits, const TArray<FString>& Words);
