#pragma once

#include "Image/RegistryTables.h"

#include <algorithm>

/** The texts of a zone from one id up to another, one after the other as they lie, with the zero byte after each. */
struct FTextRun
{
	std::span<const uint64> Starts; // of the texts, and the end
	std::string_view Bytes;			// from the first start on

	FTextRun(const FRegistryTables& Tables, bool bFolded, EZone Zone, FRowRange Ids)
	{
		const std::span<const uint64> AllStarts =
			bFolded && !Tables.FoldedStarts.empty() ? Tables.FoldedStarts : Tables.TextStarts;
		Starts = AllStarts.subspan(Tables.ZoneStarts[static_cast<std::size_t>(Zone)] + std::size_t{Ids.Begin}, Ids.Num() + 1);
		const std::span<const char> AllBytes = bFolded ? Tables.FoldedBytes : Tables.TextBytes;
		Bytes = std::string_view(AllBytes.data() + Starts.front(), Starts.back() - Starts.front());
	}
	/** The text that holds a byte of the run, given one at or before it. Near ones are found fastest. */
	uint32 FindText(uint64 Byte, uint32 From) const
	{
		const uint64 Place = Starts.front() + Byte;
		std::size_t Step = 1;
		while (From + Step + 1 < Starts.size() && Starts[From + Step] <= Place)
		{
			From += static_cast<uint32>(Step);
			Step *= 2;
		}
		const auto End = Starts.begin() + static_cast<std::ptrdiff_t>(std::min(From + Step + 1, Starts.size()));
		return static_cast<uint32>(std::upper_bound(Starts.begin() + From, End, Place) - Starts.begin()) - 1;
	}
	std::size_t GetStart(uint32 Text) const { return Starts[Text] - Starts.front(); }
};
