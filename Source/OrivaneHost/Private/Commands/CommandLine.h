#pragma once

#include "Core/Base/Containers.h"
#include "Core/Json/Json.h"
#include "Project/Project.h"
#include "Terminal/Terminal.h"

#include <chrono>
#include <variant>

struct FCallArguments
{
	FProjectOptions Project;
	FString Tool;				  // "-": standard input has calls, one a line
	FString ArgumentsJson = "{}"; // "-": standard input has them
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

enum class ESearchForm : uint8
{
	Text,
	Json,	   // the payload
	JsonLines, // an asset a line
	Names,	   // with a zero byte behind each
};

struct FSearchArguments
{
	FProjectOptions Project;
	TSharedPtr<FJsonObject> Tool = MakeShared<FJsonObject>(); // arguments of the tool, as far as they were given
	ESearchForm Form = ESearchForm::Text;
	bool bQuiet = false; // words on standard error only when something is wrong
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

enum class EGraphFormat : uint8
{
	Tree,
	Json,
	Dot,
	Mermaid,
	Html,
};

struct FGraphArguments
{
	FProjectOptions Project;
	TSharedPtr<FJsonObject> Tool = MakeShared<FJsonObject>();
	EGraphFormat Format = EGraphFormat::Tree;
	FString OutputFile; // "": standard output
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FPathsArguments
{
	FProjectOptions Project;
	TSharedPtr<FJsonObject> Tool = MakeShared<FJsonObject>();
	bool bJson = false;
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FReportArguments
{
	FProjectOptions Project;
	TSharedPtr<FJsonObject> Tool = MakeShared<FJsonObject>();
	TOptional<EGraphFormat> Format; // none: a list for people
	FString OutputFile;				// "": standard output
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FShowArguments
{
	FProjectOptions Project;
	TSharedPtr<FJsonObject> Tool = MakeShared<FJsonObject>();
	bool bJson = false;
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FConsoleArguments
{
	FProjectOptions Project;
	TArray<FString> Lines; // to run instead of asking for some
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FInfoArguments
{
	FProjectOptions Project;
	bool bJson = false;
	bool bSettings = false;
	bool bDumpRegistry = false;
};

enum class ECheckFormat : uint8
{
	Text,
	Json,
	GitHub, // commands of a workflow, which become annotations
};

struct FCheckArguments
{
	FProjectOptions Project;
	ECheckFormat Format = ECheckFormat::Text;
	bool bQuiet = false;
	bool bWarningsAsErrors = false;
};

struct FMcpArguments
{
	FProjectOptions Project;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
	std::chrono::milliseconds Deadline = std::chrono::seconds(50);
	int64 MaxAnswerBytes = 2 * 1024 * 1024;
	bool bPathSearch = true;
};

using FCommand = std::variant<FCallArguments, FSearchArguments, FGraphArguments, FPathsArguments, FShowArguments,
	FReportArguments, FConsoleArguments, FInfoArguments, FCheckArguments, FMcpArguments>;

/**
 * Parses the program's arguments. Empty where there is nothing to run: OutExitCode is then the program's, and help or an error
 * with the nearest word has been printed.
 */
TOptional<FCommand> ParseCommandLine(int NumArguments, const char* const* Arguments, int& OutExitCode);
