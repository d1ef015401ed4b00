#include "Names.h"
#include "JsonText.h"
#include "Vocabulary.h"

#include <bit>

namespace
{
constexpr std::string_view TextureSuffixes[] = {"_D", "_D", "_N", "_N", "_ORM", "_E", "_M", "_H"};

void AppendNumbered(std::string& Out, uint32 Number)
{
	Out += '_';
	if (Number < 10)
		Out += '0';
	FJsonText::AppendNumber(Out, Number);
}

void AppendName(std::string& Out, const FAssetClassRow& Row, std::string_view Subject, FRandom& Random)
{
	Out += Row.Prefix;
	if (Random.Chance(180))
	{
		Out += Subject;
		if (Row.NameStyle != ENameStyle::Record)
			Out += '_';
	}
	if (Random.Chance(90))
		Out += Random.Pick(Vocabulary::Adjectives);
	switch (Row.NameStyle)
	{
		case ENameStyle::Thing:
		case ENameStyle::Texture:
			Out += Random.Pick(Vocabulary::Parts);
			break;
		case ENameStyle::Action:
			Out += Random.Pick(Vocabulary::Actions);
			break;
		case ENameStyle::Record:
			Out += Random.Pick(Vocabulary::Quantities);
			break;
	}
	if (Random.OneIn(400))
	{
		Out += '_';
		Out += Random.Pick(Vocabulary::ForeignNames);
	}
	if (Row.NameStyle == ENameStyle::Texture)
		Out += Random.Pick(TextureSuffixes);
	else if (Row.NameStyle != ENameStyle::Record && Random.Chance(110))
		AppendNumbered(Out, Random.Between(1, 12));
}

/** Every word of the vocabulary is spelled in one way, so names that differ at all differ by more than case. */
uint64 HashOf(uint32 Folder, std::string_view Name)
{
	uint64 Hash = 0xCBF29CE484222325ull ^ Folder;
	for (const char Character : Name)
		Hash = (Hash ^ static_cast<unsigned char>(Character)) * 0x100000001B3ull;
	Hash ^= Hash >> 29;
	return Hash == 0 ? 1 : Hash;
}
}

FNameBook::FNameBook(uint32 NumNames)
	: Taken(std::bit_ceil(static_cast<std::size_t>(NumNames) * 2 + 2), 0)
	, Mask(Taken.size() - 1)
{
}

void FNameBook::AppendNew(std::string& Out, const FAssetClassRow& Row, uint32 Folder, std::string_view Subject, FRandom& Random)
{
	const std::size_t Begin = Out.size();
	AppendName(Out, Row, Subject, Random);
	const std::size_t End = Out.size();

	// A wider range with every try: in a crowded folder the small numbers are gone soon.
	for (uint32 Most = 99; !Claim(Folder, std::string_view(Out).substr(Begin)); Most = std::min(Most * 2, 1u << 30))
	{
		Out.resize(End);
		AppendNumbered(Out, Random.Between(13, Most));
	}
}

bool FNameBook::Claim(uint32 Folder, std::string_view Name)
{
	const uint64 Hash = HashOf(Folder, Name);
	uint64 Slot = (Hash * 0x9E3779B97F4A7C15ull >> 20) & Mask;
	for (; Taken[Slot] != 0; Slot = (Slot + 1) & Mask)
	{
		if (Taken[Slot] == Hash)
			return false;
	}
	Taken[Slot] = Hash;
	return true;
}
