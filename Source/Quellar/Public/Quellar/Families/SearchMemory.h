#pragma once

#include "Core/Base/Types.h"

/** What searches keep for later ones: the texts of assets, and what is known of text files. Game thread. */
namespace SearchMemory
{
constexpr int64 DefaultLimit = int64{256} * 1024 * 1024; // bytes

/** For all of it together, bytes; 0 keeps nothing. What is kept already stays until its assets or files change. */
void SetLimit(int64 MaxBytes);
/** What it takes now. */
int64 GetBytes();
/** Up to the limit; negative where that was set below what is kept. */
int64 GetBytesLeft();
/** Lets go of what is kept of assets, as when a project is closed. Not while a search runs. */
void Forget();
}
