#include "Core/Json/JsonDocument.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>

namespace
{
std::string Place(const FJsonError& Error)
{
	return std::to_string(Error.Offset) + " " + std::to_string(Error.Line) + ":" + std::to_string(Error.Column) + " " +
		*Error.Text;
}

/** Every node as KEY@offset VALUE@offset, containers with what they hold. */
std::string Dump(FJsonRef Ref)
{
	std::string Out;
	if (Ref.KeyOffset() != 0)
		Out += std::string(Ref.Key()) + "@" + std::to_string(Ref.KeyOffset()) + " ";
	if (Ref.IsObject() || Ref.IsArray())
	{
		Out += Ref.IsObject() ? "{" : "[";
		for (const FJsonRef Child : Ref)
			Out += " " + Dump(Child);
		Out += Ref.IsObject() ? " }" : " ]";
	}
	else if (Ref.IsString())
		Out += "'" + std::string(Ref.Text()) + "'";
	else if (Ref.Type() == EJsonNode::Integer)
		Out += std::to_string(Ref.Integer());
	else if (Ref.IsNumber())
		Json::AppendNumber(Out, Ref.Number());
	else
		Out += Ref.IsNull() ? "null" : Ref.Bool() ? "true" : "false";
	return Out + "@" + std::to_string(Ref.Offset());
}
}

TEST(JsonDocument, KeepsPlaces)
{
	const TCase<> Cases[] = {
		{"scalar root", " 5", "5@1"},
		{"blanks around everything", " { \"a\" : [ true , \"x\" ] }", "{ a@3 [ true@11 'x'@18 ]@9 }@1"},
		{"escapes shift nothing", R"(["\u0041\n",{"\u0062":null}])", "[ 'A\n'@1 { b@13 null@22 }@12 ]@0"},
		{"a byte-order mark counts", "\xEF\xBB\xBF[1.5]", "[ 1.5@4 ]@3"},
		{"repeated keys all stay", R"({"a":1,"a":2})", "{ a@1 1@5 a@7 2@11 }@0"},
	};
	FJsonDocument Document; // one for all: nothing of a text may shine through into the next
	for (const auto& Case : Traced(Cases))
	{
		ASSERT_TRUE(Document.Parse(Case.Given));
		EXPECT_EQ(Dump(Document.Root()), Case.Expected);
		EXPECT_FALSE(Document.WasRepaired());
	}
	EXPECT_FALSE(Document.Parse("[1"));
	EXPECT_FALSE(static_cast<bool>(Document.Root()));
	ASSERT_TRUE(Document.Parse("[\"\xFF\"]"));
	EXPECT_TRUE(Document.WasRepaired());
	ASSERT_TRUE(Document.Parse("[\"\\ud800\"]"));
	EXPECT_FALSE(Document.WasRepaired()) << "a lone surrogate is well-formed text";
	EXPECT_EQ(Document.GetError().Text.View(), "");
}

TEST(JsonDocument, FindsMembers)
{
	FJsonDocument Document;
	ASSERT_TRUE(Document.Parse(R"({"a":{"b":[1]},"c":1,"c":2})"));
	const FJsonRef Root = Document.Root();
	EXPECT_EQ(Dump(Root.Find("a").Find("b")), "b@6 [ 1@11 ]@10");
	EXPECT_EQ(Root.Find("c").Integer(), 2) << "the last one counts";
	EXPECT_FALSE(static_cast<bool>(Root.Find("C")));
	EXPECT_FALSE(static_cast<bool>(Root.Find("x").Find("y"))) << "a chain over nothing gives nothing";
	EXPECT_TRUE(Root.Find("x").IsNull());
	for (const FJsonRef Child : Root.Find("x"))
		ADD_FAILURE() << Dump(Child);
}

TEST(JsonDocument, ListsRepeatedKeys)
{
	const auto Repeated = [](const std::string& Text)
	{
		FJsonDocument Document;
		EXPECT_TRUE(Document.Parse(Text)) << Text;
		return Document.GetRepeatedKeys();
	};
	const auto Members = [](int32 Count)
	{
		std::string Text;
		for (int32 Index = 0; Index < Count; ++Index)
			Text += "\"k" + std::to_string(Index) + "\":0,";
		return Text;
	};
	using FOffsets = std::vector<uint32>;
	EXPECT_EQ(Repeated(R"({"a":{"a":1},"b":[{"b":1}]})"), FOffsets()) << "only within one object";
	EXPECT_EQ(Repeated(R"({"a":1,"a":{"x":1,"x":2},"\u0061":3})"), (FOffsets{7, 18, 25})) << "in the order of the text";
	for (const int32 Count : {13, 14, 15, 16, 17, 1000}) // scan and table, and the step between
	{
		const std::string First = "{" + Members(Count);
		EXPECT_EQ(Repeated(First + "\"z\":0}"), FOffsets());
		const auto At = static_cast<uint32>(First.size());
		EXPECT_EQ(Repeated(First + "\"k7\":0,\"k7\":1}"), (FOffsets{At, At + 7}));
	}
}

TEST(JsonDocument, StopsBeforeAMember)
{
	const TCase<> Cases[] = {
		{"the rest is left", R"({"a":1,"objects":[1,2]})", "{ a@1 1@5 }@0 stopped"},
		{"first member", R"({"objects":[1,2],"a":1})", "{ }@0 stopped"},
		{"no such member", R"({"a":"objects"})", "{ a@1 'objects'@5 }@0"},
		{"such a value comes first", R"({"a":"objects","objects":{}})", "{ a@1 'objects'@5 }@0 stopped"},
		{"such a key elsewhere comes first", R"({"a":{"objects":1},"objects":2})", "{ a@1 { objects@6 1@16 }@5 }@0 stopped"},
		{"inside an array root", R"([{"objects":1}])", "[ { objects@2 1@12 }@1 ]@0"},
		{"spelt with an escape", R"({"a":1,"obj\u0065cts":2})", "{ a@1 1@5 }@0 stopped"},
		{"inside another text", R"({"a\"objects":1,"objects":2})", "{ a\"objects@1 1@14 }@0 stopped"},
		{"the rest is broken", "{\"a\":1,\"objects\":}]\"", "{ a@1 1@5 }@0 stopped"},
		{"the rest is broken and the first mention is another", "{\"objects \":\"objects\",\"objects\":\"\x01\n",
			"{ objects @1 'objects'@12 }@0 stopped"},
		{"the rest is ill-formed", "{\"a\":1,\"objects\":\"\xFF", "{ a@1 1@5 }@0 stopped"},
		{"the colon is left too", R"({"a":1,"objects")", "{ a@1 1@5 }@0 stopped"},
		{"a comma is missing before it", R"({"a":1 "objects":2})", "7 1:8 a ',' or '}' is missing before this"},
		{"a fault before it", R"({"a":01,"objects":2})", "5 1:6 a number must not have a leading zero"},
		{"a fault before a broken rest", "{\"a\":1,,\"objects\":\"", "7 1:8 a key in double quotes is needed here"},
		{"behind the root", R"({"a":1}"objects")", "7 1:8 nothing may follow the end of the JSON value"},
		{"as the root", "\"objects\"", "'objects'@0"},
		{"behind a byte-order mark", "\xEF\xBB\xBF{\"a\":1,\"objects\":2}", "{ a@4 1@8 }@3 stopped"},
	};
	FJsonDocument Document;
	for (const auto& Case : Traced(Cases))
	{
		const bool bRead = Document.Parse(Case.Given, {.MaxDepth = 8, .StopBefore = "objects"});
		const std::string Result = bRead ? Dump(Document.Root()) : Place(Document.GetError());
		EXPECT_EQ(Result + (Document.StoppedEarly() ? " stopped" : ""), Case.Expected);
	}
}

TEST(JsonDocument, StopsBeforeAMemberThatNeedsEscapes)
{
	FJsonDocument Document;
	ASSERT_TRUE(Document.Parse(R"({"\"a":1,"\\":2})", {.MaxDepth = 8, .StopBefore = "\\"}));
	EXPECT_EQ(Dump(Document.Root()), "{ \"a@1 1@7 }@0") << "the other key starts with the same bytes as the quoted one";
	EXPECT_TRUE(Document.StoppedEarly());
}

TEST(JsonDocument, ReadsInPlaceWhateverThePaddingHolds)
{
	const std::string Text = R"({"a":"x\ty","n":12)";
	for (const char Filler : {'}', '"', '1', '\\', '\xFF'})
	{
		std::string Buffer = Text + std::string(FJsonDocument::GetPadding(), Filler);
		const std::string Before = Buffer;
		FJsonDocument Document;
		EXPECT_FALSE(Document.ParseInPlace(Buffer.data(), Text.size(), Buffer.size()));
		EXPECT_EQ(Place(Document.GetError()), "18 1:19 the text ends before the '{' of line 1 is closed");
		Buffer[Text.size()] = '}';
		EXPECT_TRUE(Document.ParseInPlace(Buffer.data(), Text.size() + 1, Buffer.size() + 1));
		EXPECT_EQ(Dump(Document.Root()), "{ a@1 'x\ty'@5 n@12 12@16 }@0");
		EXPECT_EQ(Buffer.substr(0, Text.size()), Before.substr(0, Text.size()));
	}
}

TEST(JsonDocument, RefusesMoreValuesThanAsked)
{
	const struct
	{
		const char* Why;
		const char* Text;
		const char* Fault; // "" where five values are not too many
	} Cases[] = {
		{"five: containers count, keys do not", R"({"a":[1,{"b":2}]})", ""},
		{"the sixth value", R"([1,2,3,4,5])", "9 1:10 this is one value more than the 5 that a document may have"},
		{"in a container that is opened there", "[1,2,3,\n[[]]]",
			"9 2:2 this is one value more than the 5 that a document may have"},
		{"behind a fault", "[1,2,,3,4,5]", "5 1:6 a value is missing before the"},
	};
	FJsonDocument Document;
	for (const auto& Case : Traced(Cases))
	{
		const bool bRead = Document.Parse(Case.Text, {.MaxDepth = Json::MaxMessageDepth, .MaxValues = 5, .StopBefore = {}});
		EXPECT_EQ(bRead, *Case.Fault == '\0');
		if (bRead)
			EXPECT_EQ(Document.NumValues(), 5) << "with the root";
		else
			EXPECT_EQ(Place(Document.GetError()).substr(0, std::string(Case.Fault).size()), Case.Fault);
		EXPECT_EQ(std::string(Document.GetError().Rule) == "too-many-values", std::string(Case.Fault).ends_with("have"));
	}
}

TEST(JsonDocument, KeepsNoLargeBuffersForSmallTexts)
{
	std::string Numbers = "[0";
	for (int32 Count = 0; Count < 1'000'000; ++Count)
		Numbers += ",0";
	FJsonDocument Document;
	ASSERT_TRUE(Document.Parse(Numbers + "]"));
	EXPECT_GT(Document.GetMemory(), 32u << 20);
	EXPECT_FALSE(Document.Parse(Numbers));
	EXPECT_LT(Document.GetMemory(), 32u << 20) << "a text that was refused leaves no values";
	ASSERT_TRUE(Document.Parse(Numbers + "]"));
	ASSERT_TRUE(Document.Parse("[1]"));
	EXPECT_LT(Document.GetMemory(), 1u << 20);
	EXPECT_EQ(Dump(Document.Root()), "[ 1@1 ]@0");
}

TEST(JsonDocument, RefusesMoreThan4GiB)
{
	FJsonDocument Document;
	const std::string Text = "[]";
	EXPECT_FALSE(Document.Parse(std::string_view(Text.data(), std::size_t(1) << 32))); // the bytes are never touched
	EXPECT_EQ(Place(Document.GetError()), "0 1:1 the text is larger than 4 GiB");
}
