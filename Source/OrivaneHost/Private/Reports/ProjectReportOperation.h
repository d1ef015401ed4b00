#pragma once

#include "OrivaneCore/ToolResult.h"
#include "Quellar/Tools/ToolArguments.h"

/** The tool that answers about the dependencies of the whole project. */
namespace FProjectReportOperation
{
inline constexpr const char* ToolName = "project_report"; // and key of its payload

/** A report by its word. */
struct FKind
{
	const char* Word;
	int32 NumAssets;   // that it takes
	bool bFindsFaults; // what it lists is better not there
};
/** Null for a word that is not a report's. */
const FKind* FindKind(const FString& Word);

FToolDeclaration GetDeclaration();
/** Game thread, the project is open. */
void Execute(const FJsonObject& Args, Orivane::FToolResult& Result);
}
