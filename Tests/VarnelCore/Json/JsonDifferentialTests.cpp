#include "Core/Json/Json.h"
#include "Core/Json/JsonDocument.h"
#include "Core/Text/Unicode.h"
#include "Support/Seed.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

// An independent parser reads the same random texts.
namespace
{
using FOther = nlohmann::ordered_json;

class FRandomJson
{
public:
	explicit FRandomJson(uint32 Seed) : Engine(Seed) {}

	uint32 Below(uint32 Bound) { return std::uniform_int_distribution<uint32>(0, Bound - 1)(Engine); }
	bool OneIn(uint32 Chances) { return Below(Chances) == 0; }

	FOther MakeObject(uint32 MaxMembers, int32 Levels)
	{
		FOther Object = FOther::object();
		for (uint32 Count = Below(MaxMembers + 1); Count > 0; --Count)
			Object[MakeText()] = MakeValue(Levels - 1);
		return Object;
	}

	FOther MakeValue(int32 Levels)
	{
		switch (Below(Levels > 0 ? 7 : 5))
		{
			case 0:
				return OneIn(2) ? FOther(nullptr) : FOther(OneIn(2));
			case 1:
				return MakeText();
			case 2:
				return static_cast<int64>(Bits() >> Below(64)) * (OneIn(2) ? 1 : -1);
			case 3:
				return Bits() & ~uint64(0x7FF); // may exceed int64, fits a double
			case 4:
				return MakeDouble();
			case 5:
				return MakeObject(OneIn(10) ? 40 : 4, Levels);
			default:
				return MakeArray(Levels);
		}
	}

	std::string Print(const FOther& Value) { return Value.dump(static_cast<int>(Below(4)) - 1, OneIn(2) ? ' ' : '\t', OneIn(2)); }

	std::string Mutate(std::string Text)
	{
		constexpr std::string_view Telling = "{}[]:,\"\\\\/ \n\t0123456789-+.eEtrufalsn'u\x01\x1f\x7f\x80\xC3\xE2\xF0\xFF";
		for (uint32 Count = 1 + Below(3); Count > 0 && !Text.empty(); --Count)
		{
			const uint32 At = Below(static_cast<uint32>(Text.size()));
			const char Other = Telling[Below(static_cast<uint32>(Telling.size()))];
			switch (Below(5))
			{
				case 0:
					Text.resize(At);
					break;
				case 1:
					Text.erase(At, 1 + Below(4));
					break;
				case 2:
					Text.insert(At, 1, Other);
					break;
				case 3:
					Text.insert(At, Text.substr(Below(static_cast<uint32>(Text.size())), Below(8)));
					break;
				default:
					Text[At] = Other;
			}
		}
		return Text;
	}

private:
	uint64 Bits() { return std::uniform_int_distribution<uint64>()(Engine); }

	double MakeDouble()
	{
		const uint64 Random = Bits();
		double Value = 0.0;
		std::memcpy(&Value, &Random, sizeof(Value));
		return std::isfinite(Value) && OneIn(2) ? Value : static_cast<double>(static_cast<int64>(Random >> 40)) / 64.0;
	}

	FOther MakeArray(int32 Levels)
	{
		FOther Array = FOther::array();
		for (uint32 Count = Below(6); Count > 0; --Count)
			Array.push_back(MakeValue(Levels - 1));
		return Array;
	}

	std::string MakeText()
	{
		constexpr char32_t Points[] = {
			0, 9, 10, 0x1F, '"', '\\', '/', '{', ']', ',', ':', ' ', 0x7F, 0xE4, 0x20AC, 0xFFFD, 0x1F600};
		std::string Text;
		for (uint32 Count = Below(OneIn(8) ? 90 : 9); Count > 0; --Count)
			Unicode::AppendUtf8(Text, OneIn(4) ? Points[Below(std::size(Points))] : 'a' + Below(26));
		return Text;
	}

	std::mt19937 Engine;
};

/** The texts differ in nothing that either parser may judge in its own way: both get well-formed UTF-8 without lone surrogates.
 */
std::string MakeComparable(std::string_view Text)
{
	std::string Out = Unicode::RepairUtf8(Text);
	for (std::size_t At = 0; At + 3 < Out.size(); ++At)
	{
		const bool bIsSurrogate = Out[At] == '\\' && Out[At + 1] == 'u' && (Out[At + 2] | 0x20) == 'd';
		if (bIsSurrogate)
			Out[At + 2] = '0';
	}
	return Out;
}

/** The other parser refuses numbers that are too large for a double; we make them the largest. */
bool HoldsLargestNumber(FJsonRef Ref)
{
	if (Ref.IsNumber())
		return std::abs(Ref.Number()) == std::numeric_limits<double>::max();
	bool bHolds = false;
	for (const FJsonRef Child : Ref)
		bHolds = bHolds || HoldsLargestNumber(Child);
	return bHolds;
}

void ExpectSaneFault(const FJsonDocument& Document, const std::string& Text)
{
	const FJsonError& Error = Document.GetError();
	EXPECT_LE(Error.Offset, static_cast<int64>(Unicode::RepairUtf8(Text).size()));
	EXPECT_TRUE(Error.Offset >= 0 && Error.Line >= 1 && Error.Column >= 1);
	EXPECT_FALSE(Error.Text.IsEmpty());
	EXPECT_TRUE(Unicode::IsValidUtf8(Error.Text));
}
}

TEST(JsonDifferential, ReadsAndWritesWhatAnotherParserReads)
{
	FRandomJson Random(GetSeed());
	for (int32 Round = 0; Round < 3000; ++Round)
	{
		const FOther Expected = Random.MakeValue(5);
		const std::string Text = Random.Print(Expected);
		SCOPED_TRACE("round " + std::to_string(Round) + ": " + Text);
		FJsonValue Value;
		FJsonError Error;
		ASSERT_TRUE(Json::Parse(Text, Value, &Error)) << *Error.Text;
		const FString Written = Json::Write(Value);
		const FOther Read = FOther::parse(Written.ToStdString(), nullptr, false);
		ASSERT_EQ(Read, Expected) << *Written; // members in order; numbers by value, whatever their form
		FJsonValue Again;
		ASSERT_TRUE(Json::Parse(Written, Again));
		ASSERT_EQ(Json::Write(Again).ToStdString(), Written.ToStdString());
		const FJsonSize Size = Json::Measure(Value);
		ASSERT_EQ(Size.NumBytes, Written.NumBytes());
		ASSERT_EQ(Size.NumBytesInString + 2, Json::Write(FJsonValue(Written)).NumBytes()) << "with its quotes";
	}
}

TEST(JsonDifferential, StopsBeforeAnyMember)
{
	FRandomJson Random(GetSeed());
	FJsonDocument Part;
	for (int32 Round = 0; Round < 600; ++Round)
	{
		const FOther Object = Random.MakeObject(6, 3);
		std::string Text = Random.Print(Object);
		FOther Before = FOther::object();
		for (const auto& [Key, Value] : Object.items())
		{
			SCOPED_TRACE("round " + std::to_string(Round) + " before '" + Key + "': " + Text);
			if (Key.empty())
				break; // means no stop
			ASSERT_TRUE(Part.Parse(Text, {.MaxDepth = 64, .StopBefore = Key}));
			ASSERT_TRUE(Part.StoppedEarly());
			ASSERT_EQ(Part.Root().Num(), static_cast<int32>(Before.size()));
			std::size_t Index = 0;
			for (const FJsonRef Member : Part.Root())
				ASSERT_EQ(Member.Key(), std::next(Before.begin(), static_cast<std::ptrdiff_t>(Index++)).key());
			Before[Key] = Value;
		}
	}
}

TEST(JsonDifferential, AgreesOnMutatedTexts)
{
	FRandomJson Random(GetSeed());
	FJsonDocument Document;
	int32 NumValid = 0;
	int32 NumInvalid = 0;
	for (int32 Round = 0; Round < 30000; ++Round)
	{
		const std::string Mutated = Random.Mutate(Random.Print(Random.OneIn(4) ? Random.MakeValue(1) : Random.MakeObject(4, 3)));
		SCOPED_TRACE("round " + std::to_string(Round) + ": " + Mutated);
		const std::string Comparable = MakeComparable(Mutated);
		const bool bValid = Document.Parse(Comparable);
		const bool bIsSettled = bValid && HoldsLargestNumber(Document.Root());
		ASSERT_EQ(bValid, bIsSettled || FOther::accept(Comparable)) << *Document.GetError().Text;
		++(bValid ? NumValid : NumInvalid);
		if (!bValid)
			ExpectSaneFault(Document, Comparable);

		std::string Padded = Mutated + std::string(FJsonDocument::GetPadding(), '"');
		if (!Document.ParseInPlace(Padded.data(), Mutated.size(), Padded.size()))
			ExpectSaneFault(Document, Mutated);
		if (!Document.Parse(Mutated, {.MaxDepth = 3, .StopBefore = "a"}))
			ExpectSaneFault(Document, Mutated);
	}
	EXPECT_GT(NumValid, 1000); // the mutations are neither too tame nor too wild
	EXPECT_GT(NumInvalid, 1000);
}
