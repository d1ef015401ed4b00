#pragma once

#include "Core/Base/IdTable.h"
#include "Image/RegistryTables.h"

#include <string_view>
#include <vector>

/** Distinct texts with ids from 0 in the order in which they were first added; the first spelling stays where case is ignored.
 * One thread at a time. */
class FTextTable
{
public:
	explicit FTextTable(ESearchCase InCase) : Case(InCase) {}

	/** The text's id, adding it where it is new. */
	uint32 Add(std::string_view Text);
	/** Gives the text the next id without looking whether it is there; where it is, it is not found under this id. */
	uint32 AddNew(std::string_view Text) { return AddHashed(Text, HashOf(Text)); }
	/** NoId when it was never added. */
	uint32 Find(std::string_view Text) const;
	uint32 Num() const { return static_cast<uint32>(Starts.size() - 1); }
	/** Valid until the next text is added. */
	std::string_view Get(uint32 Id) const { return std::string_view(Bytes.data() + Starts[Id], Starts[Id + 1] - Starts[Id] - 1); }
	void Reserve(std::size_t NumTexts, std::size_t NumBytes);

	/** Start of every text, and the end; each is followed by a zero byte. */
	const std::vector<uint64>& GetStarts() const { return Starts; }
	const std::vector<char>& GetBytes() const { return Bytes; }
	/** Hand over the storage; the table must not be used any more. */
	std::vector<uint64> TakeStarts() { return std::move(Starts); }
	std::vector<char> TakeBytes() { return std::move(Bytes); }

private:
	uint64 HashOf(std::string_view Text) const;
	bool IsSame(std::string_view A, std::string_view B) const;
	uint32 AddHashed(std::string_view Text, uint64 Hash);
	uint32 FindHashed(std::string_view Text, uint64 Hash) const;

	const ESearchCase Case;
	std::vector<uint64> Starts = {0};
	std::vector<char> Bytes;
	TIdTable<NoId> Ids;
};
