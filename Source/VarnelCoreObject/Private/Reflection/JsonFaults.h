#pragma once

#include "Core/Json/JsonDocument.h"
#include "Core/Program/Diagnostics.h"

#include <algorithm>
#include <array>

/**
 * Reads members of one JSON project file and reports what is wrong with them, with their places. Silent when none listens. The
 * first faults of a file are told, then one line says that there are more: places are found by counting lines, and a long list
 * helps nobody.
 */
class FJsonFaults
{
public:
	FJsonFaults(const FJsonDocument& InDocument, const FString& InFileName, FDiagnosticSink* InSink)
		: Document(InDocument)
		, FileName(InFileName)
		, Sink(InSink)
	{
	}

	/** Reports are received, and the limit has not been reached yet. */
	bool IsHeard() const { return Sink && NumReported <= MaxReports; }
	const FJsonDocument& GetDocument() const { return Document; }
	const FString& GetFileName() const { return FileName; }

	void Error(uint32 Offset, FString Rule, FString Text)
	{
		Report(Offset, EDiagnosticSeverity::Error, std::move(Rule), std::move(Text));
	}
	void Warn(uint32 Offset, FString Rule, FString Text)
	{
		Report(Offset, EDiagnosticSeverity::Warning, std::move(Rule), std::move(Text));
	}
	/** The document's own error. */
	void ReportSyntax();
	void ReportRepair();
	void ReportRepeatedKeys();

	/** The root's format version is the number 1. */
	bool HasVersion(const FJsonRef& Root, std::string_view Key, FString Rule);
	/** The members of an object by key, empty where absent and the last where repeated. Other keys are warned of. */
	template <std::size_t N>
	std::array<FJsonRef, N> TakeMembers(const FJsonRef& Object, const std::array<std::string_view, N>& Keys);
	/** A text that must be there. Rule "missing-KEY" where it is not. */
	bool RequireText(const FJsonRef& Owner, const FJsonRef& Value, std::string_view Key, std::string_view& Out);
	/** True also for a value that is absent, which leaves Out alone. */
	bool AcceptText(const FJsonRef& Value, std::string_view& Out);
	bool AcceptBool(const FJsonRef& Value, bool& Out);
	/** The value is there and of that type. One that is absent is not a fault. */
	bool IsArray(const FJsonRef& Value);
	bool IsObject(const FJsonRef& Value);

	/** A text of the file inside a message: in quotes, cut when it is long. */
	static FString Quote(std::string_view Text);

private:
	static constexpr int32 MaxReports = 100; // for each reading of a file

	void Report(uint32 Offset, EDiagnosticSeverity Severity, FString Rule, FString Text);
	bool FailType(const FJsonRef& Value, const char* Wanted);
	void WarnOfUnknownKey(const FJsonRef& Member);

	const FJsonDocument& Document;
	const FString& FileName;
	FDiagnosticSink* Sink;
	int32 NumReported = 0;
};

template <std::size_t N>
std::array<FJsonRef, N> FJsonFaults::TakeMembers(const FJsonRef& Object, const std::array<std::string_view, N>& Keys)
{
	std::array<FJsonRef, N> Members;
	for (const FJsonRef Member : Object)
	{
		const auto Known = std::find(Keys.begin(), Keys.end(), Member.Key());
		if (Known != Keys.end())
			Members[static_cast<std::size_t>(Known - Keys.begin())] = Member;
		else
			WarnOfUnknownKey(Member);
	}
	return Members;
}
