#pragma once

#include "Core/Json/Json.h"

/** What a drawing of an explored graph shows: every package once, with the links between them. */
struct FGraphPicture
{
	struct FNode
	{
		FString Path; // long package name
		FString Kind; // asset type
		int32 Level;  // 0 the root, 1 and 2 what it depends on, -1 and -2 what refers to it
	};
	struct FLink
	{
		int32 From; // index of the node that depends on the other
		int32 To;
		bool bRuntime;
	};

	TArray<FNode> Nodes; // the root first
	TArray<FLink> Links; // each once
	bool bTruncated = false;
};

/** From the payload of explore_asset_graph, which does not tell the root's kind. */
FGraphPicture MakeGraphPicture(const FJsonObject& Content, const FString& RootKind);

/** Drawings of a picture as text. */
namespace GraphDrawing
{
/** Input of Graphviz. */
FString WriteDot(const FGraphPicture& Picture);
/** A flow chart in the notation that Markdown viewers draw. */
FString WriteMermaid(const FGraphPicture& Picture);
/** A page that needs nothing but itself: pans, zooms, filters by kind, finds by name and shows details. */
FString WriteHtml(const FGraphPicture& Picture);
}
