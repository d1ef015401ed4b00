#pragma once

#include "Core/Base/Types.h"

#include <numeric>
#include <vector>

/**
 * Lists elements by row: OutFirst[Row] up to OutFirst[Row + 1] in each of OutElements, in the order in which they are visited.
 * ForEach takes a Visit(Row, an element for each of OutElements) and calls it for all of them, twice in the same order.
 */
template <class TForEach, class... TElements>
void GroupByRow(std::size_t NumRows, TForEach ForEach, std::vector<uint32>& OutFirst, std::vector<TElements>&... OutElements)
{
	OutFirst.assign(NumRows + 1, 0);
	ForEach([&OutFirst](uint32 Row, const TElements&...) { ++OutFirst[Row + std::size_t{1}]; });
	std::partial_sum(OutFirst.begin(), OutFirst.end(), OutFirst.begin());
	(OutElements.resize(OutFirst.back()), ...);
	std::vector<uint32> Next = OutFirst;
	ForEach(
		[&](uint32 Row, const TElements&... Elements)
		{
			const uint32 Place = Next[Row]++;
			((OutElements[Place] = Elements), ...);
		});
}
