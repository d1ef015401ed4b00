#pragma once

#include "Tools/ToolOutput.h"

/** The payload of explore_asset_graph as a tree for people: a package a line with its kind and type, numbers, and a line when
 * relations were left out. */
FString RenderGraphTree(const FJsonObject& Content, const FString& RootKind, int32 MaxNodes, const FPainter& Paint);
