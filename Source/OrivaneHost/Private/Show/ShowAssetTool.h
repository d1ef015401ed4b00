#pragma once

#include "OrivaneCore/ToolResult.h"
#include "Quellar/Tools/ToolArguments.h"

namespace ToolNames
{
inline constexpr const char* ShowAsset = "show_asset";
}

/** What is to be shown of which asset; the defaults are those of the tool. */
struct FShowAssetParams
{
	FString AssetPath;		  // see FindNamedAsset
	TArray<FString> Sections; // some of GetShowSections(); empty: all
	FString Object;			  // another object than the asset's own, see FAssetShow; "": that one
	TArray<FString> RowNames; // of a table; empty: the first MaxRows
	int32 MaxRows = 20;
	bool bIncludeDefaults = false; // properties that have the defaults of their class, and inherited variables
	int32 MaxBytes = 32 * 1024;	   // of the payload, as compact JSON
};

/** Words that "sections" may hold, in the order in which they are shown. */
const TArray<FString>& GetShowSections();
/** A sentence that names the first word that is not a section, and all that are; "" when all are known. */
FString DescribeUnknownSection(const TArray<FString>& Sections);

/** The host's own tool that shows what is in an asset; see FHostTool. */
namespace ShowAssetTool
{
const FToolDeclaration& GetDeclaration();
extern const char* const Description;
extern const char* const PayloadSchema;
void Execute(const FJsonObject& Args, Orivane::FToolResult& Result);
}
