#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"
#include "Quellar/Tools/ToolArguments.h"

#include <functional>

/** An exploration, with what its payload does not tell. */
struct FGraphAnswer
{
	TSharedPtr<FJsonObject> Content; // payload of explore_asset_graph, where nothing else is said
	/** Short name of the class of a package's asset, by the package's long name; "" where nothing is known. */
	std::function<FString(const FString& Package)> FindClass;
	FString Root;			 // long package name as the registry spells it; "": as the payload does
	TArray<FString> Missing; // dependencies that do not exist
	TArray<FString> Notes;	 // what is left out, a sentence each
};

/** Of a result with a payload. The open project tells the classes. */
FGraphAnswer MakeGraphAnswer(
	const Orivane::FToolResult& Result, const char* ToolName = ToolNames::AssetGraph, const char* PayloadKey = "content");
/** Short name of the class of a package's asset; "" for a package without visible assets. */
FString FindClassName(const FString& Package);

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
		int32 Level;   // 0 the root, from 1 on what it depends on, from -1 down what refers to it
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
/** The same of a payload of project_report whose rows are links: cycles, impact, path. */
FGraphPicture MakeReportPicture(const FGraphAnswer& Answer);

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
