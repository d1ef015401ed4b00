#pragma once

#include "Core/Json/Json.h"

/** Names of the tools, as agents call them. */
namespace ToolNames
{
inline constexpr const char* AssetSearch = "asset_search";
inline constexpr const char* AssetGraph = "explore_asset_graph";
inline constexpr const char* AssetPathSearch = "asset_path_search";
}

/** Type of an argument's value. */
enum class EToolArgument : uint8
{
	Text,
	Flag,
	Integer,
	TextList,
};

/** How an argument is given at a shell; without names it is not. */
struct FShellOption
{
	const char* Names = "";		  // "-f,--family"; without dashes: by its place, such as "TERM"
	const char* Placeholder = ""; // of its value in help texts
	const char* Help = "";		  // the default is added where there is one
	FJsonValue FlagValue;		  // set: an option without a value that means this one
	const char* OffNames = "";	  // of a flag whose value the shell takes for granted: the option that means the other one
	const char* OffHelp = "";
	int32 Least = INT32_MIN; // of an integer; what is below is wrong use
};

/** What a value at the console names, for its completion. */
enum class EConsoleValue : uint8
{
	Text,
	Folder,	 // of assets: "/Game/UI/"
	Package, // or the folders on the way to it
};

/** How an argument is given at the console, as KEY=VALUE; without a key it is not. */
struct FConsoleWord
{
	const char* Key = "";	// with its '='
	TArray<FString> Values; // known ones; empty: the argument's choices
	EConsoleValue Names = EConsoleValue::Text;
	bool bExtra = false; // only commands that list it understand it, see FAssetFamily::FConsoleCommand
};

/**
 * One argument of a tool. All that anybody needs to know of it is in its row: the schema that agents see, the reader, the options
 * at a shell, the words of the console and the advice how to narrow a call are made from it.
 */
struct FToolArgument
{
	const char* Key;
	EToolArgument Type = EToolArgument::Text;
	const char* Help = ""; // for agents
	bool bRequired = false;
	int32 MinLength = 0;	   // of a text, in the schema
	TArray<FString> Choices;   // known words of a text, or of the elements of a list; empty: any
	int32 Minimum = INT32_MIN; // an integer below it counts as it
	int32 Maximum = INT32_MAX; // and one above as this
	int32 Narrowing = 0;	   // place among the arguments that make an answer smaller, the most useful first; 0: not one of them
	FShellOption Shell;
	FConsoleWord Console;
	FJsonValue Default; // null for a required argument; lists are empty
};

/** A tool's arguments, in the order in which they are listed. */
struct FToolDeclaration
{
	const char* Name;
	TArray<FToolArgument> Arguments;
};

/** Name of the console command that explores; searches have one for each family. */
inline constexpr const char* AssetGraphConsoleCommand = "Orivane.ExploreAssetGraph";

/** Every tool of the module, in the order in which they are listed; made once. Any thread. */
const TArray<FToolDeclaration>& GetToolDeclarations();
/** Null for a name that is not a tool's. */
const FToolDeclaration* FindToolDeclaration(const FString& Name);
