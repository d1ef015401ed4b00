#pragma once

#include "Core/String.h"

/**
 * Whether the project folder holds a regular file whose relative path, cut at its first dot, equals Stem without regard to case.
 * Answers are always those of the file system as it is now: what was listed before is trusted only while its folder is unchanged.
 * Game thread.
 */
bool TextFileExists(const FString& Stem);
