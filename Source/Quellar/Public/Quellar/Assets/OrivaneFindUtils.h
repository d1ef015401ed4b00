#pragma once

#include "Core/Text/String.h"

/** The one rule that decides which paths searches leave out. */
class FOrivaneFindUtils
{
public:
	/**
	 * True when the path of an asset or file is to be left out: a segment or leading or trailing part equals an excluded
	 * directory, or it lies in a plugin that is excluded by name. Case and the kind of slash do not matter. An empty path never
	 * is. Reads the current settings. Game thread.
	 */
	static bool ShouldExcludeFilePath(const FString& Path);
	/** Rises whenever the settings have changed so that the answers may be others. Game thread. */
	static uint64 GetRulesNumber();
};
