#pragma once

#include "Terminal/Terminal.h"

// What the commands about named assets share.

/** On standard error, after an asset that does not exist: packages of the assets that have the name of the one that was asked
 * for. */
void PrintSuggestions(const FString& AskedFor);

/** Colours are for terminals, not for files. */
bool UsesColor(EColor Color, const FString& OutputFile);
/** To a file; to standard output for "" and "-". False after saying why. */
bool WriteOutput(const char* Command, const FString& Text, const FString& OutputFile);
