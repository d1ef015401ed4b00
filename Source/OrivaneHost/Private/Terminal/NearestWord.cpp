#include "Terminal/NearestWord.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
/** Number of edits that turn one word into the other. */
std::size_t GetEditDistance(const std::string& A, const std::string& B)
{
	std::vector<std::size_t> Row(B.size() + 1);
	std::iota(Row.begin(), Row.end(), std::size_t{0});
	for (std::size_t I = 1; I <= A.size(); ++I)
	{
		std::size_t Diagonal = std::exchange(Row[0], I);
		for (std::size_t J = 1; J <= B.size(); ++J)
		{
			const std::size_t Replaced = Diagonal + (A[I - 1] == B[J - 1] ? 0 : 1);
			Diagonal = Row[J];
			Row[J] = std::min({Row[J] + 1, Row[J - 1] + 1, Replaced});
		}
	}
	return Row[B.size()];
}
}

std::string FindNearestWord(const std::string& Word, const std::vector<std::string>& Known)
{
	std::string Nearest;
	std::size_t Smallest = std::max<std::size_t>(2, Word.size() / 3) + 1;
	for (const std::string& Candidate : Known)
	{
		const std::size_t Distance = GetEditDistance(Word, Candidate);
		if (Distance < Smallest)
		{
			Smallest = Distance;
			Nearest = Candidate;
		}
	}
	return Nearest;
}
