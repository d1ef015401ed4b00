#pragma once

#include "CoreObject/Reflection/DeveloperSettings.h"

/** Settings that the toolkit's modules share, section [/Script/OrivaneToolkit.OrivaneSettings]. Read from the class default
 * object. */
class UOrivaneSettings : public UDeveloperSettings
{
public:
	UOrivaneSettings();
	static UClass* StaticClass();

	/** 0: names from the registry only. 1: materials are loaded and their parents and parameters read. Other values: no results.
	 */
	uint8 MaterialSearchMode = 0;
	/** 0: names from the registry only. 1: particle systems that are in memory are read in depth. Other values: no results. */
	uint8 NiagaraSearchMode = 0;
};
