#pragma once

#include "Graph/GraphPicture.h"

/** A report about impact or ways, which has rows, as an exploration that RenderGraphTree draws: each package below the one that
 * it was come to from. Ways that begin alike share their beginning. */
FGraphAnswer MakeReportTree(const FGraphAnswer& Report);
