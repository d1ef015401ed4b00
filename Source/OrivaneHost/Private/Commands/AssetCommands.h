#pragma once

#include "Terminal/Terminal.h"

// What commands that print or draw share.

/** Colours are for terminals, not for files. */
bool UsesColor(EColor Color, const FString& OutputFile);
/** To a file; to standard output for "" and "-". False after saying why. */
bool WriteOutput(const char* Command, const FString& Text, const FString& OutputFile);
