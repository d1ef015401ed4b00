#include "Core/Text/String.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace
{
constexpr EVectorWidth AllWidths[] = {EVectorWidth::None, EVectorWidth::Bits128, EVectorWidth::Bits256, EVectorWidth::Bits512};
constexpr std::size_t NotFound = std::string_view::npos;

// Bytes that are not a code point, and code points whose variants differ in length, share bytes, or look like variants and are
// none.
const std::vector<std::string> TrickyPieces = {"a", "A", "k", "K", "\u212A", "s", "S", "\u017F", "ß", "\u1E9E", "ω", "Ω",
	"\u2126", "\u023A", "\u2C65", "й", "Й", "т", "Т", "\u1C84", "\u1C85", "ι", "Ι", "\u0345", "\u1FBE", "σ", "ς", "Σ", "\u0130",
	"\u0131", "i", "I", "\u03B8", "\u03F4", "\U00010400", "\U00010428", "@", "`", "[", "{", std::string(1, '\0'), "\u4E9A",
	"\U0001F600", "\uFFFD", "å", "Å", "\u212B", "\xC5", "\xE2", "\xE2\x84", "\xF0\x9F", "\xFF", "\xED\xA0\x80", "\xC1\xAB",
	"\xAA", "\x84\xAA"};
constexpr std::size_t NumWellFormed = 47;

/** The code point at Position, folded, or none where the bytes are ill-formed. */
TOptional<char32_t> FoldedAt(std::string_view Text, std::size_t Position, std::size_t& NumBytes)
{
	for (NumBytes = 1; NumBytes <= 4 && Position + NumBytes <= Text.size(); ++NumBytes)
	{
		const std::string_view Bytes = Text.substr(Position, NumBytes);
		std::size_t Start = 0;
		if (Unicode::IsValidUtf8(Bytes))
			return Unicode::FoldCase(Unicode::DecodeNext(Bytes, Start));
	}
	NumBytes = 1;
	return {};
}

bool MatchesAt(std::string_view Text, std::size_t Position, std::string_view Needle)
{
	std::size_t NumText = 0, NumNeedle = 0;
	for (std::size_t At = 0; At < Needle.size(); At += NumNeedle, Position += NumText)
	{
		if (Position >= Text.size())
			return false;
		const auto Wanted = FoldedAt(Needle, At, NumNeedle);
		const auto Folded = FoldedAt(Text, Position, NumText);
		if (!Folded || Folded != Wanted)
			return false;
	}
	return true;
}

/** What FTextFinder promises, said in the plainest way. */
std::size_t FindPlainly(std::string_view Text, std::string_view Needle, ESearchCase Case, std::size_t From)
{
	if (Case == ESearchCase::CaseSensitive)
		return Text.find(Needle, From);
	for (; From <= Text.size(); ++From)
	{
		if (MatchesAt(Text, From, Needle))
			return From;
	}
	return NotFound;
}

std::string JoinRandom(std::mt19937& Random, std::size_t NumPieces, std::size_t First, std::size_t Count)
{
	std::string Text;
	for (; NumPieces > 0; --NumPieces)
		Text += TrickyPieces[(First + Random() % Count) % TrickyPieces.size()];
	return Text;
}

std::string Quote(std::string_view Bytes)
{
	std::string Quoted;
	for (const char Byte : Bytes)
		Quoted += *FString::Printf("\\x%02X", static_cast<unsigned>(static_cast<uint8>(Byte)));
	return Quoted;
}

/** Text as the whole of an allocation's end, so that reading on is noticed, and with its start at a chosen distance from
 * alignment. */
class FTightText
{
public:
	FTightText(std::string_view Text, std::size_t Misalignment)
		: Bytes(new char[Misalignment + Text.size()])
		, View(Bytes.get() + Misalignment, Text.size())
	{
		std::copy(Text.begin(), Text.end(), Bytes.get() + Misalignment);
	}
	std::string_view Get() const { return View; }

private:
	std::unique_ptr<char[]> Bytes;
	std::string_view View;
};
}

TEST(TextFinder, FindsEveryVariantOfALetter)
{
	const struct
	{
		const char* Why;
		const char* Needle;
		std::string Text;
		std::size_t Expected;
	} Cases[] = {
		{"ASCII letters of any case", "wEaPon", "BP_WEAPON", 3},
		{"Kelvin sign", "kelvin", "in \u212Aelvin", 3},
		{"needle has the variant, text the letter", "\u212A", "ok", 1},
		{"long s twice", "kiss", "a \u212AI\u017F\u017F", 2},
		{"capital sharp s", "STRASSE GROß", "strasse gro\u1E9E", 0},
		{"sharp s is not ss", "ss", "stra\u00DFe", NotFound},
		{"Cyrillic", "жизнь", "моя ЖИЗНЬ", 7},
		{"historic Cyrillic letter of three bytes", "вода", "\u1C80ода", 0},
		{"final sigma, Ohm sign", "ΣΟΦΩΣ", "σοφ\u2126ς", 0},
		{"letter of two bytes whose small form has three", "x\u023A", "X\u2C65", 0},
		{"fold of two code points", "fi", "\uFB01", NotFound},
		{"dotted I", "i", "\u0130", NotFound},
		{"match with a longer letter comes first", "sa", "\u017FA sa", 0},
		{"match without comes first, in the same block", "sa", "sa \u017Fa", 0},
		{"cut variant at the end", "k", "\xE2\x84", NotFound},
		{"overlong k", "k", "\xC1\xAB", NotFound},
		{"match behind ill-formed bytes", "жук", "\xD0жук", 1},
		{"no match across ill-formed bytes", "ab",
			"a\xFF"
			"b",
			NotFound},
		{"replacement character stands for no ill-formed byte", "\uFFFD", "\xFF", NotFound},
		{"empty needle", "", "abc", 0},
		{"longer than the text", "abcd", "abc", NotFound},
	};
	for (const auto& Case : Traced(Cases))
	{
		for (const EVectorWidth Width : AllWidths)
			EXPECT_EQ(FTextFinder(Case.Needle, ESearchCase::IgnoreCase, Width).Find(Case.Text), Case.Expected);
		const FString Valid = FString::FromExternal(Case.Text);
		EXPECT_EQ(Valid.Contains(Case.Needle), FindPlainly(Valid, Case.Needle, ESearchCase::IgnoreCase, 0) != NotFound);
	}
}

TEST(TextFinder, TreatsIllFormedNeedlesAsBytesOrNotAtAll)
{
	EXPECT_EQ(FTextFinder("\xFF", ESearchCase::CaseSensitive).Find("a\xFF"), 1u);
	EXPECT_EQ(FTextFinder("\xFF", ESearchCase::IgnoreCase).Find("a\xFF"), NotFound);
}

TEST(TextFinder, AgreesWithPlainSearchOnRandomTexts)
{
	std::mt19937 Random(GetSeed());
	for (int32 Round = 0; Round < 8000; ++Round)
	{
		// Few different pieces make matches, near misses and repeats likely; two rounds of three keep ASCII around them.
		const std::size_t First = Random() % TrickyPieces.size();
		const std::size_t Count = 1 + Random() % 6;
		std::string Text(Round % 3 == 0 ? 0 : Random() % 150, "._ak"[Random() % 4]);
		Text += JoinRandom(Random, Random() % 120, First, Count);
		Text += std::string(Round % 3 == 1 ? 0 : Random() % 150, '.');
		const std::size_t NeedleFirst = std::min(First, NumWellFormed - 1);
		std::string Needle = JoinRandom(Random, 1 + Random() % 5, NeedleFirst, std::min(Count, NumWellFormed - NeedleFirst));
		if (Random() % 8 == 0)
			Needle.insert(0, Random() % 80, '.');
		const ESearchCase Case = Random() % 5 == 0 ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase;
		const FTightText Tight(Text, Random() % 64);
		const std::size_t From = Random() % 3 == 0 ? Random() % (Text.size() + 2) : 0;
		const std::size_t Expected = FindPlainly(Tight.Get(), Needle, Case, From);
		for (const EVectorWidth Width : AllWidths)
		{
			ASSERT_EQ(FTextFinder(Needle, Case, Width).Find(Tight.Get(), From), Expected)
				<< "width " << static_cast<int32>(Width) << " from " << From << " needle " << Quote(Needle) << " text "
				<< Quote(Text);
		}
		const FString Valid = FString::FromExternal(Text); // FString has its own search for short texts
		ASSERT_EQ(Valid.Contains(Needle, Case), FindPlainly(Valid, Needle, Case, 0) != NotFound)
			<< Quote(Needle) << " " << Quote(Valid);
	}
}

TEST(TextFinder, FindsAtEveryPlaceAndAlignment)
{
	const struct
	{
		const char* Needle;
		const char* Written;
	} Cases[] = {{"q", "Q"}, {"Zebra", "zEBRA"}, {"task", "TA\u017F\u212A"}, {"жук", "ЖУК"},
		{"a needle that is longer than the widest of all the vectors, which is 64 bytes",
			"A NEEDLE THAT IS LONGER THAN THE WIDEST OF ALL THE VECTORS, WHICH IS 64 BYTES"}};
	for (const auto& Case : Cases)
	{
		for (const EVectorWidth Width : AllWidths)
		{
			const FTextFinder Finder(Case.Needle, ESearchCase::IgnoreCase, Width);
			for (std::size_t Place = 0; Place < 200; ++Place)
			{
				const std::string Text = std::string(Place, '-') + Case.Written + std::string(Place % 7 * 31, '-');
				const FTightText Tight(Text, Place * 5 % 64);
				ASSERT_EQ(Finder.Find(Tight.Get()), Place) << Case.Needle;
				ASSERT_EQ(Finder.Find(Tight.Get(), Place + 1), NotFound) << Case.Needle;
				ASSERT_EQ(Finder.Find(Tight.Get().substr(0, Place + std::string_view(Case.Written).size() - 1)), NotFound)
					<< Case.Needle;
			}
		}
	}
}

// Every position is a candidate that fails late: a search that compared each anew would take hours.
TEST(TextFinder, StaysLinearOnRepetitions)
{
	const std::string Many(2 << 20, 'a');
	const std::string Needle = std::string(1 << 20, 'a') + "b";
	for (const ESearchCase Case : {ESearchCase::CaseSensitive, ESearchCase::IgnoreCase})
	{
		const FTextFinder Finder(Needle, Case);
		EXPECT_EQ(Finder.Find(Many), NotFound);
		EXPECT_EQ(Finder.Find(Many + "b"), 1u << 20);
	}
	std::string LongSigns;
	for (int32 Index = 0; Index < 1 << 18; ++Index)
		LongSigns += "\u017F";
	EXPECT_EQ(FTextFinder(std::string(1 << 17, 's') + "b", ESearchCase::IgnoreCase).Find(LongSigns + "B"), 1u << 18);
}
