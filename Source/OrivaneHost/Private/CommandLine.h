#pragma once

#include "Core/Containers.h"
#include "Project.h"
#include "Terminal.h"

#include <chrono>
#include <variant>

struct FCallArguments
{
	FProjectOptions Project;
	FString Tool;
	FString ArgumentsJson = "{}"; // "-": standard input
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FSearchArguments
{
	FProjectOptions Project;
	FString Term;
	bool bExact = false;
	bool bCaseSensitive = false;
	TArray<FString> Families;
	TArray<FString> Kinds;
	FString PathContains;
	TOptional<int32> MaxHitsPerKind;
	TOptional<int32> MaxTotalHits;
	TOptional<int32> MaxHitsPerAssetType;
	bool bJson = false;
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
	FString Asset;
	FString Relation = "Dependencies";
	int32 Depth = 1;
	int32 MaxNodes = 150;
	int32 MaxFanout = 50;
	bool bAllKinds = false;
	EGraphFormat Format = EGraphFormat::Tree;
	FString OutputFile; // "", "-": standard output
	EColor Color = EColor::Auto;
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
};

struct FPathsArguments
{
	FProjectOptions Project;
	FString Term;
	bool bExact = false;
	bool bCaseSensitive = false;
	FString View = "directories"; // "files", "both"
	FString PathContains;
	TArray<FString> Classes;
	TOptional<int32> MaxFiles;
	TOptional<int32> MaxDirectories;
	TOptional<int32> MaxFilesPerDirectory;
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

struct FCheckArguments
{
	FProjectOptions Project;
	bool bJson = false;
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

using FCommand = std::variant<FCallArguments, FSearchArguments, FGraphArguments, FPathsArguments, FConsoleArguments,
	FInfoArguments, FCheckArguments, FMcpArguments>;

/**
 * Parses the program's arguments. Empty where there is nothing to run: OutExitCode is then the program's, and help or an error
 * with the nearest word has been printed.
 */
TOptional<FCommand> ParseCommandLine(int NumArguments, const char* const* Arguments, int& OutExitCode);
