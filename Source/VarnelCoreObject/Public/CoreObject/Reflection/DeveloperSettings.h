#pragma once

#include "Core/Program/Config.h"
#include "CoreObject/Reflection/Class.h"

/** Base of settings that live in the project's configuration, section [/Script/<Module>.<Class>]. Values are read from the class
 * default object. */
class UDeveloperSettings : public UObject
{
public:
	static UClass* StaticClass();
	/** Where an editor's settings pages show the class. Kept for callers. */
	const FString& GetCategoryName() const { return CategoryName; }
	const FString& GetSectionName() const { return SectionName; }

protected:
	FString CategoryName;
	FString SectionName;
};

/** A class of the program's own that holds settings of the project. */
bool IsSettingsClass(const UClass& Class);

/**
 * Puts every settings class in memory back to its constructor's values, then applies the file's sections over them. Unknown
 * sections below /Script/, unknown keys and values of the wrong type are reported and skipped. Game thread.
 */
void LoadDeveloperSettings(const FConfigFile& File, const FString& FileName, FDiagnosticSink* Diagnostics);
