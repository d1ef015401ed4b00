#pragma once

#include "CoreObject/Reflection/DeveloperSettings.h"

/**
 * Project settings for Orivane/Quellar behaviors, section [/Script/Quellar.QuellarSettings] of Config/DefaultGame.ini.
 * Read through the class default object at every use, so an edit counts from the next search on.
 */
class UQuellarSettings : public UDeveloperSettings
{
public:
	UQuellarSettings();
	static UClass* StaticClass();

	/** Directories that asset searches leave out, relative segments. */
	TArray<FString> ExcludedDirectories;
	/** Leave out the plugins named below; other plugins stay in. */
	bool bExcludeEnginePlugins = true;
	/** Plugin names, compared without regard to case. */
	TArray<FString> ExcludedPluginNames;
	/** Extensions of searched text files: lower case, no dot. */
	TArray<FString> TextSearchExtensions;
	/** Not read by any operation yet; kept for reference queries. */
	bool bEnableHighSignalFiltering = true;
	/** Not read by any operation yet; kept for reference queries. */
	int32 DefaultMaxReferences = 200;
	/** Not read: the graph tool has its own argument defaults. */
	int32 DefaultMaxGraphNodes = 150;
	/** Not read: the graph tool has its own argument defaults. */
	int32 DefaultMaxFanoutPerNode = 50;
};
