#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/Map.h"
#include "Core/Program/Diagnostics.h"

/** One line of a settings file. */
struct FConfigLine
{
	enum class EOperation : uint8
	{
		Set,	// Key=Value
		Append, // +Key=Value
		Remove, // -Key=Value
		Clear,	// !Key=ClearArray
	};
	EOperation Operation = EOperation::Set;
	FString Key;
	FString Value; // trimmed; one pair of surrounding double quotes is taken off
	int32 Line = 0;
	int32 ValueColumn = 0;
};

/**
 * A settings file: sections of lines, in file order. A section may appear more than once; its lines are joined.
 * Section and key names compare without regard to case. Lines starting with ";" or "#" and blank lines are passed over.
 */
class FConfigFile
{
public:
	/** Never fails: a line that is none is reported and skipped. FileName is only what diagnostics name. */
	static FConfigFile Parse(FStringView Text, const FString& FileName, FDiagnosticSink* Diagnostics);

	/** The lines of a section, or null. */
	const TMap<FString, TArray<FConfigLine>>& GetSections() const { return Sections; }
	/** Applies a section's lines for one array key to its defaults: the first mention replaces them, Set and Append add, Remove
	 * removes, Clear empties. */
	static TArray<FString> ApplyToArray(const TArray<FConfigLine>& Lines, const FString& Key, TArray<FString> Defaults);
	/** The last Set of a key, or null. */
	static const FConfigLine* FindValue(const TArray<FConfigLine>& Lines, const FString& Key);

private:
	TMap<FString, TArray<FConfigLine>> Sections;
};
