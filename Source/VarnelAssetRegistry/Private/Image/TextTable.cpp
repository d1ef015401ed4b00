#include "Image/TextTable.h"

#include "Core/Base/SeededHash.h"
#include "Core/Text/Unicode.h"

uint64 FTextTable::HashOf(std::string_view Text) const
{
	return Case == ESearchCase::IgnoreCase ? Unicode::HashFolded(Text) : SeededHash::HashBytes(Text);
}

bool FTextTable::IsSame(std::string_view A, std::string_view B) const
{
	return Case == ESearchCase::IgnoreCase ? Unicode::EqualsFolded(A, B) : A == B;
}

uint32 FTextTable::FindHashed(std::string_view Text, uint64 Hash) const
{
	return Ids.Find(Hash, [&](uint32 Id) { return IsSame(Get(Id), Text); });
}

uint32 FTextTable::Find(std::string_view Text) const
{
	return FindHashed(Text, HashOf(Text));
}

uint32 FTextTable::Add(std::string_view Text)
{
	const uint64 Hash = HashOf(Text);
	const uint32 Found = FindHashed(Text, Hash);
	return Found != NoId ? Found : AddHashed(Text, Hash);
}

uint32 FTextTable::AddHashed(std::string_view Text, uint64 Hash)
{
	const uint32 Id = Num();
	Ids.Add(Hash, Id);
	Bytes.insert(Bytes.end(), Text.begin(), Text.end());
	Bytes.push_back('\0');
	Starts.push_back(Bytes.size());
	return Id;
}

void FTextTable::Reserve(std::size_t NumTexts, std::size_t NumBytes)
{
	Starts.reserve(NumTexts + 1);
	Bytes.reserve(NumBytes);
	Ids.Reserve(NumTexts);
}
