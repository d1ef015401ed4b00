#pragma once

#include "Graph/GraphPicture.h"
#include "Tools/ToolOutput.h"

/** An exploration as a tree for people: a package a line with its kind and type, numbers, what is missing, and in the last lines
 * what is left out. */
FString RenderGraphTree(const FGraphAnswer& Answer, const FPainter& Paint);
