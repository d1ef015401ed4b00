#include "Core/Base/Containers.h"
#include "Core/Base/Map.h"
#include "Core/Text/String.h"
#include "Core/Text/Unicode.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace std::string_literals;

namespace
{
int32 SignOf(int32 Value)
{
	return (Value > 0 ? 1 : 0) - (Value < 0 ? 1 : 0);
}
}

TEST(CaseFolding, ComparesCodePointByCodePoint)
{
	const struct
	{
		const char* Why;
		const char* A;
		const char* B;
		bool bEqual;
	} Cases[] = {
		{"ASCII", "Hero_BP", "hERO_bp", true},
		{"no letters that lie 0x20 apart", "@[`{", "`{@[", false},
		{"Latin", "ÄÖÜ", "äöü", true},
		{"Cyrillic, also outside the basic block", "ЖЁѢ", "жёѣ", true},
		{"sharp s does not become two letters", "Straße", "Strasse", false},
		{"capital sharp s is longer by a byte", "STRAẞE", "straße", true},
		{"Kelvin sign", "\u212A", "k", true},
		{"long s", "Gleiſner", "GLEISNER", true},
		{"final sigma", "ΣΟΦΟΣ", "σοφος", true},
		{"Ohm sign", "\u2126", "ω", true},
		{"two bytes against three", "\u023A", "\u2C65", true},
		{"dotted capital I folds to itself", "\u0130", "i", false},
		{"dotless i folds to itself", "\u0131", "I", false},
		{"Cherokee folds to capitals", "\u13A0", "\uAB70", true},
		{"ligature with a fold of two letters stays", "\uFB01", "fi", false},
		{"letters of four bytes", "\U00010400", "\U00010428", true},
		{"difference behind a common word of eight bytes", "abcdefgh1", "ABCDEFGH2", false},
		{"difference in a word that is not all ASCII", "abcÄefghX", "ABCäEFGHy", false},
		{"equal although words of eight bytes are out of step", "\u212Aabcdefghijkl", "KABCDEFGHIJKL", true},
		{"beginning of the other", "Hero", "Her", false},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(Unicode::EqualsFolded(Case.A, Case.B), Case.bEqual);
		EXPECT_EQ(Unicode::Fold(Case.A) == Unicode::Fold(Case.B), Case.bEqual);
		EXPECT_EQ(Unicode::HashFolded(Case.A) == Unicode::HashFolded(Case.B), Case.bEqual);
		EXPECT_EQ(FString(Case.A) == FString(Case.B), Case.bEqual);
	}
}

// The table is built from chosen blocks of code points; the library's conversions know all of them.
TEST(CaseFolding, AgreesWithConversionsOfEveryCodePoint)
{
	for (char32_t CodePoint = 0; CodePoint <= 0x10FFFF; ++CodePoint)
	{
		const char32_t Folded = Unicode::FoldCase(CodePoint);
		const bool bIsTurkic = CodePoint == 0x130 || CodePoint == 0x131; // these convert to plain i, and do not fold to it
		ASSERT_EQ(Unicode::FoldCase(Folded), Folded) << std::hex << static_cast<uint32>(CodePoint);
		ASSERT_TRUE(bIsTurkic || Unicode::FoldCase(Unicode::ToLower(CodePoint)) == Folded)
			<< std::hex << static_cast<uint32>(CodePoint);
		ASSERT_TRUE(bIsTurkic || Unicode::FoldCase(Unicode::ToUpper(CodePoint)) == Folded)
			<< std::hex << static_cast<uint32>(CodePoint);
	}
}

TEST(CaseFolding, EqualTextsHashEquallyAtAnyLength)
{
	std::mt19937 Random(GetSeed());
	constexpr std::pair<char32_t, char32_t> Letters[] = {{'a', 'A'}, {'z', 'Z'}, {'k', 0x212A}, {'s', 0x17F}, {0xDF, 0x1E9E},
		{0x436, 0x416}, {0x2C65, 0x23A}, {'_', '_'}, {0x10428, 0x10400}};
	for (std::size_t Length = 0; Length < 600; ++Length)
	{
		std::string A, B;
		for (std::size_t Index = 0; Index < Length; ++Index)
		{
			const auto& [Small, Capital] = Letters[Random() % (Length % 2 == 0 ? std::size(Letters) : 2)];
			Unicode::AppendUtf8(A, Random() % 2 == 0 ? Small : Capital);
			Unicode::AppendUtf8(B, Random() % 2 == 0 ? Small : Capital);
		}
		ASSERT_TRUE(Unicode::EqualsFolded(A, B)) << A << " " << B;
		ASSERT_EQ(Unicode::HashFolded(A), Unicode::HashFolded(B)) << A << " " << B;
		ASSERT_EQ(Unicode::Fold(A), Unicode::Fold(B));
		ASSERT_EQ(Unicode::CountCodePoints(A), static_cast<int32>(Length));
	}
}

// Every text made of one of each pair has the same hash as the others under the standard library's hash of strings.
TEST(CaseFolding, TextsPreparedToCollideDoNot)
{
	constexpr const char* Pairs[][2] = {{"z1cgnck7hby1_a1z", "awb9j6ze %}p_g3-"}, {"z392vxp8brj15sei", "b8ql4fu4ypr-z7`m"},
		{"bioz88jgrtmlyii1", "c_wvbauxq@w5qu5#"}, {"5g3kb4h551askjv7", "3iq60ejr7b7f7bm_"},
		{"rhnxplj6ahuolb9_", "mhutagpz5r9ykwo%"}, {"axt0ap4tyqrr207x", "1hwz6rpimozn-)nz"},
		{"18qrj0s63bva2qcf", "3381bxs36[v{9mx_"}, {"derpbvanfcc5akva", "os1k68ic8}@667%0"}};
	TSet<uint64> Hashes;
	for (uint32 Choice = 0; Choice < 256; ++Choice)
	{
		std::string Text;
		for (uint32 Pair = 0; Pair < 8; ++Pair)
			Text += Pairs[Pair][Choice >> Pair & 1];
		Hashes.Add(Unicode::HashFolded(Text));
	}
	EXPECT_EQ(Hashes.Num(), 256);
}

TEST(CaseFolding, OrdersByFoldedCodePoints)
{
	const struct
	{
		const char* Why;
		const char* A;
		const char* B;
		int32 Sign;
	} Cases[] = {
		{"capitals stand among small letters", "B", "a", 1},
		{"a bracket stands between the cases of ASCII, and folded before both", "[", "Z", -1},
		{"beginning first", "Hero", "heroic", -1},
		{"empty first", "", "a", -1},
		{"byte after a common word decides", "abcdefghA", "ABCDEFGHb", -1},
		{"byte inside a word decides", "abcdXfgh", "ABCDefgh", 1},
		{"code points, not UTF-16 units", "\uFFFD", "\U00010000", -1},
		{"folding moves a letter far", "\u2C65", "\u023A", 0},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(SignOf(Unicode::CompareFolded(Case.A, Case.B)), Case.Sign);
		EXPECT_EQ(SignOf(Unicode::CompareFolded(Case.B, Case.A)), -Case.Sign);
	}
}

TEST(Utf8, RepairsEveryMaximalSubpart)
{
	const TCase<std::string, std::string> Cases[] = {
		{"valid text stays, up to the last code point", "aß\u20AC\U0010FFFF", "aß\u20AC\U0010FFFF"},
		{"stray continuations one by one", "a\x80\xBFz", "a\uFFFD\uFFFDz"},
		{"cut sequence of four is one subpart", "\xF0\x9F\x98z", "\uFFFDz"},
		{"cut by the end", "a\xE2\x82", "a\uFFFD"},
		{"overlong slash", "\xC0\xAF", "\uFFFD\uFFFD"},
		{"overlong form of three: its second byte is no part", "\xE0\x80\xAF", "\uFFFD\uFFFD\uFFFD"},
		{"surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
		{"above the last code point", "\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
		{"never a lead", "\xFE\xFF", "\uFFFD\uFFFD"},
		{"lead swallows no letter", "\xC3"s + "A", "\uFFFDA"},
		{"NUL is a character", "a\0b"s, "a\0b"s},
		{"fault behind the first word", "abcdefghij\xFFk", "abcdefghij\uFFFDk"},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(FString::FromExternal(Case.Given).ToStdString(), Case.Expected);
		EXPECT_EQ(Unicode::IsValidUtf8(Case.Given), Case.Given == Case.Expected);
		EXPECT_TRUE(Unicode::IsValidUtf8(Unicode::RepairUtf8(Case.Given)));
	}
}

TEST(Utf8, FindsWhereACodePointStarts)
{
	const std::string_view Text = "a\u00e4\U0001f600";
	const std::size_t Starts[] = {0, 1, 1, 3, 3, 3, 3, 7, 7};
	for (std::size_t Position = 0; Position < std::size(Starts); ++Position)
		EXPECT_EQ(Unicode::FloorToCodePoint(Text, Position), Starts[Position]) << Position;
}

TEST(Utf8, ReadsUtf16)
{
	const struct
	{
		const char* Why;
		std::string Bytes;
		bool bBigEndian;
		const char* Expected;
	} Cases[] = {
		{"little-endian", "A\0\x16\x04"s, false, "AЖ"},
		{"big-endian", "\0A\x04\x16"s, true, "AЖ"},
		{"pair", "\x3D\xD8\x00\xDE"s, false, "\U0001F600"},
		{"lone high at the end", "A\0\x3D\xD8"s, false, "A\uFFFD"},
		{"lone high before a letter", "\x3D\xD8"s + "A\0"s, false, "\uFFFDA"},
		{"two highs, then the pair's low", "\x3D\xD8\x3D\xD8\x00\xDE"s, false, "\uFFFD\U0001F600"},
		{"lone low", "\x00\xDE"s, false, "\uFFFD"},
		{"odd last byte", "A\0B"s, false, "A\uFFFD"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Unicode::Utf16ToUtf8(Case.Bytes, Case.bBigEndian), Case.Expected);
}

TEST(String, FindsAndCutsByCodePoints)
{
	const FString Text = "Жизнь Ünder ЖИЗНЬ";
	const struct
	{
		const char* Why;
		FString Needle;
		ESearchCase Case;
		int32 Start, First;
	} Cases[] = {
		{"ignoring case", "жизнь", ESearchCase::IgnoreCase, 0, 0},
		{"exact", "ЖИЗНЬ", ESearchCase::CaseSensitive, 0, 12},
		{"behind the first", "жизнь", ESearchCase::IgnoreCase, 1, 12},
		{"negative start counts as the beginning", "ünder", ESearchCase::IgnoreCase, -3, 6},
		{"start behind the end", "ь", ESearchCase::IgnoreCase, 18, INDEX_NONE},
		{"empty needle", "", ESearchCase::IgnoreCase, 17, 17},
		{"empty needle behind the end", "", ESearchCase::IgnoreCase, 18, INDEX_NONE},
		{"longer than what is left", "жизнь!", ESearchCase::IgnoreCase, 0, INDEX_NONE},
	};
	EXPECT_EQ(Text.Len(), 17);
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(Text.Find(Case.Needle, Case.Case, Case.Start), Case.First);
	}
	EXPECT_EQ(Text.Left(2) + "|" + Text.Right(2) + "|" + Text.Mid(6, 2) + "|" + Text.Mid(-1, 1), "Жи|НЬ|Ün|Ж");
	EXPECT_EQ(Text.Left(-1) + Text.Right(-1) + Text.Mid(99) + Text.Mid(3, -1), "");
	EXPECT_EQ(Text.Left(99), Text.Right(99));
}

TEST(String, ComparesEnds)
{
	EXPECT_TRUE(FString("/game/Maps").StartsWith("/Game"));
	EXPECT_FALSE(FString("/game/Maps").StartsWith("/Game", ESearchCase::CaseSensitive));
	EXPECT_TRUE(FString("Temperature in \u212A").EndsWith("IN k")); // ends of different length in bytes
	EXPECT_FALSE(FString("in K").EndsWith("in \u212A", ESearchCase::CaseSensitive));
	EXPECT_FALSE(FString("k").EndsWith("ink"));
	EXPECT_TRUE(FString("").EndsWith("") && FString("").StartsWith("") && FString("").Contains(""));
}

TEST(String, ReplacesWhatMatchesWhateverItsLength)
{
	const struct
	{
		const char* Why;
		const char* Text;
		const char* From;
		const char* To;
		const char* Expected;
	} Cases[] = {
		{"every occurrence", "aXbxc", "x", "--", "a--b--c"},
		{"match longer in bytes than the needle", "1\u212A2k3", "K", "", "123"},
		{"does not look into what it wrote", "aa", "a", "aa", "aaaa"},
		{"no overlap", "aaa", "aa", "b", "ba"},
		{"empty needle", "abc", "", "x", "abc"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(FString(Case.Text).Replace(Case.From, Case.To).ToStdString(), Case.Expected);
}

TEST(String, TrimsSplitsAndJoins)
{
	EXPECT_EQ(FString(" \t\r\n\u00A0\u3000 a b \u2003\n").TrimStartAndEnd().ToStdString(), "a b");
	EXPECT_EQ(FString(" \u2003 ").TrimStartAndEnd().ToStdString(), "");
	EXPECT_EQ(FString(",a,,b,").ParseIntoArray(","), (TArray<FString>{"a", "b"}));
	EXPECT_EQ(FString(",a,,b,").ParseIntoArray(",", false), (TArray<FString>{"", "a", "", "b", ""}));
	EXPECT_EQ(FString("a::b").ParseIntoArray("::"), (TArray<FString>{"a", "b"}));
	EXPECT_EQ(FString("ab").ParseIntoArray(""), (TArray<FString>{"ab"}));
	EXPECT_EQ(FString("").ParseIntoArray(",").Num(), 0);
	EXPECT_EQ(FString::Join({"", "a", "", "b"}, ", ").View(), ", a, , b") << "empty texts keep their separators";
	EXPECT_EQ(FString::Join({"a"}, ", ").View(), "a");
	EXPECT_EQ(FString::Join({}, ", ").View(), "");
}

TEST(String, ReadsIntegersAtTheStart)
{
	const std::pair<const char*, int32> Cases[] = {{"12", 12}, {"12 apples", 12}, {" -3x", -3}, {"+7", 7}, {"", 0}, {"x1", 0},
		{"1e3", 1}, {"99999999999999999999", INT32_MAX}, {"-2147483649", INT32_MIN}};
	for (const auto& [Text, Expected] : Cases)
		EXPECT_EQ(FString(Text).ToInt(), Expected) << Text;
}

TEST(String, TrimsOneQuoteAtEachEnd)
{
	for (const auto& [Text, Expected] : {std::pair{R"("two words")", "two words"}, {R"("open)", "open"}, {R"(closed")", "closed"},
			 {R"(a"b)", R"(a"b)"}, {R"(""a"")", R"("a")"}, {R"(")", ""}, {"", ""}})
		EXPECT_EQ(FString(Text).TrimQuotes().ToStdString(), Expected) << Text;
}

TEST(String, PrintsFloatsWithSixDecimalsAtMost)
{
	const struct
	{
		const char* Why;
		double Value;
		int32 MinFractionalDigits;
		const char* Expected;
	} Cases[] = {
		{"one digit at least", 2, 1, "2.0"},
		{"none asked for", 2, 0, "2"},
		{"zeros of the whole part stay", 100, 0, "100"},
		{"quarter", 0.25, 1, "0.25"},
		{"32 bits of 0.1 widened", static_cast<double>(0.1f), 1, "0.1"},
		{"rounds up through the point", 0.9999996, 1, "1.0"},
		{"negative zero", -0.0, 1, "0.0"},
		{"rounds to zero from below", -0.0000001, 1, "0.0"},
		{"negative zero without a fraction", -0.0, 0, "0"},
		{"digits asked for", 0.5, 3, "0.500"},
		{"more digits asked for than are kept", 0.5, 8, "0.50000000"},
		{"no exponent", 1e21, 1, "1000000000000000000000.0"},
		{"not a number", std::nan(""), 1, "nan"},
		{"negative infinity", -std::numeric_limits<double>::infinity(), 1, "-inf"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(FString::SanitizeFloat(Case.Value, Case.MinFractionalDigits).ToStdString(), Case.Expected);
	EXPECT_EQ(FString::SanitizeFloat(-std::numeric_limits<double>::max()).Len(), 312); // sign, 309 digits, ".0"
}

TEST(String, PrintfStaysValidAtAnyLength)
{
	EXPECT_EQ(FString::Printf("%s: %d of %.2f", "Жук", -3, 1.5).ToStdString(), "Жук: -3 of 1.50");
	for (const std::size_t Length : {254u, 255u, 256u, 257u, 5000u}) // around the buffer on the stack
		EXPECT_EQ(FString::Printf("%s", std::string(Length, 'x').c_str()).ToStdString(), std::string(Length, 'x'));
	EXPECT_EQ(FString::Printf("%.3s", "Жук").ToStdString(), "Ж\uFFFD"); // the precision cuts the second letter in two
}
