#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"

#include <functional>

/** An exploration, with what its payload does not tell. */
struct FGraphAnswer
{
	TSharedPtr<FJsonObject> Content; // payload of explore_asset_graph
	/** Short name of the class of a package's asset, by the package's long name; "" where nothing is known. */
	std::function<FString(const FString& Package)> FindClass;
	TArray<FString> Missing; // dependencies that do not exist
	TArray<FString> Notes;	 // what is left out, a sentence each
};

/** Of a result of explore_asset_graph with a payload. The open project tells the classes. */
FGraphAnswer MakeGraphAnswer(const Orivane::FToolResult& Result);

/** "uasset (Texture2D)": an asset type, and the class where that says more. */
FString DescribeKind(const FString& Kind, const FString& Class);

/** What a drawing of an explored graph shows: every package once, with the links between them. */
struct FGraphPicture
{
	struct FNode
	{
		FString Path;  // long package name
		FString Kind;  // asset type
		FString Class; // short name
		int32 Level;   // 0 the root, 1 and 2 what it depends on, -1 and -2 what refers to it
	};
	struct FLink
	{
		int32 From; // index of the node that depends on the other
		int32 To;
		bool bRuntime;
	};

	TArray<FNode> Nodes;   // the root first
	TArray<FLink> Links;   // each once
	TArray<FString> Notes; // below the drawing
};

FGraphPicture MakeGraphPicture(const FGraphAnswer& Answer);

/** Drawings of a picture as text. */
namespace GraphDrawing
{
/** Input of Graphviz. */
FString WriteDot(const FGraphPicture& Picture);
/** A flow chart in the notation that Markdown viewers draw. They take so many links and characters; beyond, it is cut with a
 * note. */
FString WriteMermaid(const FGraphPicture& Picture);
/** A page that needs nothing but itself: pans, zooms, filters by kind, finds by name and shows details. */
FString WriteHtml(const FGraphPicture& Picture);
}
