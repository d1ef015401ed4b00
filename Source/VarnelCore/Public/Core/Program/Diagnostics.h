#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

#include <mutex>
#include <set>
#include <string>

/** An error costs what it concerns, a warning nothing. */
enum class EDiagnosticSeverity : uint8
{
	Warning,
	Error,
};

/** One fault of a project file, for people. Printed as `file:line:column: severity: text [rule]`. */
struct FDiagnostic
{
	FString File;	  // relative to the project folder where possible
	int32 Line = 0;	  // from 1; 0 when the whole file is meant
	int32 Column = 0; // from 1, in code points; 0 when the whole line is meant
	EDiagnosticSeverity Severity = EDiagnosticSeverity::Error;
	FString Text; // what is wrong and what to do, one sentence, no full stop
	FString Rule; // short stable word such as "json-syntax", for filters

	FString ToString() const;
};

/** "A -> B -> A" from the members of a ring in their order; of a long one the first eight. */
FString DescribeRing(const TArray<FString>& Members);

/** Collects diagnostics from any thread. What is told twice, since a file was read twice, counts once. */
class FDiagnosticSink
{
public:
	void Add(FDiagnostic Diagnostic);
	/** Sorted by file (ignoring case), line, column, text; so the order never depends on threads. */
	TArray<FDiagnostic> GetSorted() const;
	int32 NumErrors() const;
	int32 NumWarnings() const;

private:
	mutable std::mutex Lock;
	TArray<FDiagnostic> Diagnostics;
	std::set<std::string> Seen; // printed forms
};
