#pragma once

#include "OrivaneToolkit/AssetOperationBase.h"

void SetTextFileRule(FIsTextFile Rule);
/** What is kept of folders is that of the project's folder as it was opened first. */
void ForgetTextFileFolders();
/**
 * Whether the project holds a text file whose path relative to the project, cut at its first dot, equals Stem without regard to
 * case, whichever of several folders that differ in case it lies in. No link is followed. Answers are always those of the file
 * system as it is now: what was listed before is trusted only while its folder is unchanged. Game thread.
 */
bool TextFileExists(const FString& Stem);
/** Between these two, which may be nested, TextFileExists looks at each folder once: its answers are those of one moment. */
void BeginLookingOnce();
void EndLookingOnce();
