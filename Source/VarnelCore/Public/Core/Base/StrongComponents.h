#pragma once

#include "Core/Base/Types.h"

#include <functional>
#include <span>
#include <vector>

/**
 * Groups the nodes of a graph that lead to one another: gives each node the number of its group, such that an edge leads into
 * its own group or into one with a lower number. An edge within a group is part of a ring. Edges[Node] lists the nodes that Node
 * leads to. Linear in nodes and edges, and as deep on the stack for any graph.
 */
std::vector<int32> FindStrongComponents(const std::vector<std::vector<int32>>& Edges);
/** The same for a graph that is kept elsewhere: what a node leads to is asked for once, and must stay until the walk ends. */
std::vector<int32> FindStrongComponents(uint32 NumNodes, const std::function<std::span<const uint32>(uint32 Node)>& GetTargets);

/** A ring that one comes into by following the first edge within Start's group, then on in the same way; its nodes in order.
 * Empty where Start is in no ring. */
std::vector<int32> FindRing(const std::vector<std::vector<int32>>& Edges, const std::vector<int32>& Components, int32 Start);
