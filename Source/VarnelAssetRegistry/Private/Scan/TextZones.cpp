#include "Scan/TextZones.h"

#include "Core/Text/Unicode.h"

#include <algorithm>

namespace
{
constexpr std::size_t FoldChunkTexts = 4096;

/** Texts of ASCII are folded many at a time; only where others change their length do the folded ones need starts of their own.
 */
void FoldTexts(FRegistryDraft& Draft)
{
	const std::string_view Bytes(Draft.TextBytes.data(), Draft.TextBytes.size());
	const std::size_t NumTexts = Draft.TextStarts.size() - 1;
	std::string Folded;
	Folded.reserve(Bytes.size());
	std::vector<uint64> Starts;
	Starts.reserve(NumTexts + 1);
	for (std::size_t Begin = 0; Begin < NumTexts; Begin += FoldChunkTexts)
	{
		const std::size_t End = std::min(NumTexts, Begin + FoldChunkTexts);
		const std::string_view Chunk = Bytes.substr(Draft.TextStarts[Begin], Draft.TextStarts[End] - Draft.TextStarts[Begin]);
		const bool bAscii = Unicode::IsAscii(Chunk);
		const std::size_t ChunkStart = Folded.size();
		if (bAscii)
			Unicode::AppendFolded(Folded, Chunk);
		for (std::size_t Text = Begin; Text < End; ++Text)
		{
			const uint64 Start = Draft.TextStarts[Text] - Draft.TextStarts[Begin];
			Starts.push_back(bAscii ? ChunkStart + Start : Folded.size());
			if (!bAscii)
				Unicode::AppendFolded(Folded, Chunk.substr(Start, Draft.TextStarts[Text + 1] - Draft.TextStarts[Text]));
		}
	}
	Starts.push_back(Folded.size());
	Draft.FoldedBytes.assign(Folded.begin(), Folded.end());
	if (Starts != Draft.TextStarts)
		Draft.FoldedStarts = std::move(Starts);
}
}

void FTextZones::MoveTo(FRegistryDraft& Draft)
{
	std::size_t NumTexts = 0;
	std::size_t NumBytes = 0;
	for (const FTextTable& Zone : Tables)
	{
		NumTexts += Zone.Num();
		NumBytes += Zone.GetBytes().size();
	}
	Draft.TextStarts.reserve(NumTexts + 1);
	Draft.TextBytes.reserve(NumBytes);
	for (std::size_t Zone = 0; Zone < NumZones; ++Zone)
	{
		Draft.ZoneStarts[Zone] = static_cast<uint32>(Draft.TextStarts.size());
		const std::vector<uint64> Starts = Tables[Zone].TakeStarts();
		const std::vector<char> Bytes = Tables[Zone].TakeBytes();
		for (std::size_t Text = 0; Text + 1 < Starts.size(); ++Text)
			Draft.TextStarts.push_back(Draft.TextBytes.size() + Starts[Text]);
		Draft.TextBytes.insert(Draft.TextBytes.end(), Bytes.begin(), Bytes.end());
	}
	Draft.ZoneStarts[NumZones] = static_cast<uint32>(Draft.TextStarts.size());
	Draft.TextStarts.push_back(Draft.TextBytes.size());
	FoldTexts(Draft);
}
