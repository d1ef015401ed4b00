#pragma once

#include "Core/Text/String.h"

/**
 * The user's folder of one kind: what the environment variable says where it is absolute, else the folder below the home folder.
 * "" when neither is known; without a trailing slash.
 */
FString GetUserFolder(const char* Variable, const char* BelowHome);
