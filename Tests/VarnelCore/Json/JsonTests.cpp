#include "Core/Json/Json.h"
#include "Support/Cases.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{
std::string Place(const FJsonError& Error)
{
	return std::to_string(Error.Offset) + " " + std::to_string(Error.Line) + ":" + std::to_string(Error.Column) + " " +
		*Error.Text;
}

/** Parsed and written again, or where and why that failed. */
std::string Rewrite(std::string_view Text, int32 MaxDepth = Json::MaxMessageDepth)
{
	FJsonValue Value;
	FJsonError Error;
	return Json::Parse(Text, Value, &Error, MaxDepth) ? *Json::Write(Value) : Place(Error);
}

std::string Nested(int32 Depth)
{
	return std::string(static_cast<std::size_t>(Depth), '[') + std::string(static_cast<std::size_t>(Depth), ']');
}
}

TEST(JsonReading, NamesThePlaceAndTheFault)
{
	const TCase<std::string_view> Cases[] = {
		{"nothing", "", "0 1:1 the text is empty; a JSON value is needed"},
		{"only a byte-order mark", "\xEF\xBB\xBF", "3 1:1 the text is empty; a JSON value is needed"},
		{"only blanks", " \r\n ", "4 2:2 the text is empty; a JSON value is needed"},
		{"lines and columns count from 1, columns in code points", "{\n\t\"ä€😀\": x}",
			"16 2:9 'x' is not a JSON value; write true, false or null, and strings in double quotes"},
		{"the mark is no column but counts in the offset", "\xEF\xBB\xBF[x]",
			"4 1:2 'x' is not a JSON value; write true, false or null, and strings in double quotes"},
		{"comma before the end of an array", "[1,\n]", "2 1:3 the ',' before the ']' must be removed"},
		{"comma before the end of an object", "{\"a\":1,}", "6 1:7 the ',' before the '}' must be removed"},
		{"comma alone", "[,]", "1 1:2 a value is missing before the ','"},
		{"two commas", "[1,,2]", "3 1:4 a value is missing before the ','"},
		{"second root", "{} {}", "3 1:4 nothing may follow the end of the JSON value"},
		{"number behind a string root", "\"a\"1", "3 1:4 nothing may follow the end of the JSON value"},
		{"comma forgotten between elements", "[1 2]", "3 1:4 a ',' or ']' is missing before this"},
		{"comma forgotten between members", "{\"a\":1\n\"b\":2}", "7 2:1 a ',' or '}' is missing before this"},
		{"wrong closing bracket", "[1}", "2 1:3 a ',' or ']' is missing before this"},
		{"colon forgotten", "{\"a\" 1}", "5 1:6 a ':' is missing after the key"},
		{"value forgotten", "{\"a\":}", "5 1:6 a value is missing before the '}'"},
		{"bare key", "{a:1}", "1 1:2 a key in double quotes is needed here"},
		{"number as key", "{1:1}", "1 1:2 a key in double quotes is needed here"},
		{"ends in an array", "[1,\n[2", "6 2:3 the text ends before the '[' of line 2 is closed"},
		{"ends behind a key", "{\"a\"", "4 1:5 the text ends before the '{' of line 1 is closed"},
		{"ends behind a colon", "\n{\"a\":", "6 2:6 the text ends before the '{' of line 2 is closed"},
		{"ends behind a comma", "[1,", "3 1:4 the text ends before the '[' of line 1 is closed"},
		{"ends at once", "{", "1 1:2 the text ends before the '{' of line 1 is closed"},
		{"literal in capitals", "[True]",
			"1 1:2 'True' is not a JSON value; write true, false or null, and strings in double quotes"},
		{"literal with a tail", "nulll",
			"0 1:1 'nulll' is not a JSON value; write true, false or null, and strings in double quotes"},
		{"literal cut short", "[tru]",
			"1 1:2 'tru' is not a JSON value; write true, false or null, and strings in double quotes"},
		{"NaN", "NaN", "0 1:1 JSON has no NaN; write a number or null"},
		{"minus infinity", "[-Infinity]", "1 1:2 a number needs a digit after its '-'"},
		{"comment", "// x\n1", "0 1:1 JSON has no comments"},
		{"single quotes", "['a']", "1 1:2 a string needs double quotes"},
		{"leading zero", "[01]", "1 1:2 a number must not have a leading zero"},
		{"plus", "+1", "0 1:1 a number must not start with '+'"},
		{"point first", ".5", "0 1:1 a number needs a digit before its '.'"},
		{"point last", "5.", "0 1:1 a number needs a digit after its '.'"},
		{"exponent without digits", "1e+", "0 1:1 a number needs a digit in its exponent"},
		{"hexadecimal", "0x10", "0 1:1 a number holds a character that does not belong there"},
		{"number with a tail", "1.5e3.2", "0 1:1 a number holds a character that does not belong there"},
		{"unknown escape", R"(["ab\q"])",
			"4 1:5 a '\\' must be written as \\\\ unless it starts one of "
			R"(\" \\ \/ \b \f \n \r \t \u)"},
		{"\\u with three digits", R"("\u12")", "1 1:2 \\u needs four hexadecimal digits"},
		{"\\u with a sign", R"("\u+123")", "1 1:2 \\u needs four hexadecimal digits"},
		{"second half of a pair without digits", R"("\ud83d\u12")", "7 1:8 \\u needs four hexadecimal digits"},
		{"unclosed string", "[\"ab", "1 1:2 the string that starts here is not closed"},
		{"string whose last quote is escaped", "\"ab\\\"", "0 1:1 the string that starts here is not closed"},
		{"string that ends in a backslash", "\"ab\\", "0 1:1 the string that starts here is not closed"},
		{"line break in a string", "[\"ab\n\"]",
			"4 1:5 the string is not closed before the end of its line; close it, or write a line break as \\n"},
		{"control character", "[\"a\tb\"]", "3 1:4 the control character U+0009 in a string must be written as \\u0009"},
		{"NUL in a string", std::string_view("\"a\0\"", 4),
			"2 1:3 the control character U+0000 in a string must be written as \\u0000"},
		{"NUL between tokens", std::string_view("[\0]", 3), "1 1:2 unexpected character U+0000"},
		{"NUL behind the value", std::string_view("1 \0", 3), "2 1:3 nothing may follow the end of the JSON value"},
		{"a blank that JSON does not know", "[\v1]", "1 1:2 unexpected character U+000B"},
		{"other character", "[€]", "1 1:2 unexpected character U+20AC"},
		{"backslash between tokens", "[\\\"a\"]", "1 1:2 unexpected character U+005C"},
		{"an earlier fault wins over an unclosed string", "[1,]\"", "2 1:3 the ',' before the ']' must be removed"},
		{"ill-formed bytes between tokens", "[\xFF]", "1 1:2 unexpected character U+FFFD"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Rewrite(Case.Given), Case.Expected);
}

TEST(JsonReading, TakesWhatIsJson)
{
	const TCase<> Cases[] = {
		{"all blanks", "\t[ 1\r\n, null ]\n", "[1,null]"},
		{"key order stays, a repeated key has its last value in the first place", R"({"b":1,"a":2,"b":3})", R"({"b":3,"a":2})"},
		{"keys differ by case", R"({"a":1,"A":2})", R"({"a":1,"A":2})"},
		{"keys are equal once unescaped", R"({"a":1,"\u0061":2})", R"({"a":2})"},
		{"largest integer of 64 bits", "[9223372036854775807,-9223372036854775808]",
			"[9223372036854775807,-9223372036854775808]"},
		{"one more is a double", "[9223372036854775808,-9223372036854775809]", "[9223372036854775808,-9223372036854775808]"},
		{"integers beyond 2^53 keep their digits", "9007199254740993", "9007199254740993"},
		{"minus zero", "[-0,-0.0]", "[0,0]"},
		{"fraction and exponent forms", "[1E2,1e+2,10e-1,0.5,1.25e-7]", "[100,100,1,0.5,1.25e-07]"},
		{"whole doubles print as integers up to 2^53", "[1e15,9007199254740991.0,1e21]",
			"[1000000000000000,9007199254740991,1e+21]"},
		{"too large", "[1e400,-1e400,1e99999999999999999999,12e308]",
			"[1.7976931348623157e+308,-1.7976931348623157e+308,1.7976931348623157e+308,1.7976931348623157e+308]"},
		{"too close to zero", "[1e-400,-1e-99999999999999999999,0.00001e-320,0e999]", "[0,0,0,0]"},
		{"large exponents that small mantissas make up for", "[0.0000000001e310,1000000e-5]", "[1e+300,10]"},
		{"all escapes", R"("\"\\\/\b\f\n\r\t\u00e9\u0000")", "\"\\\"\\\\/\\b\\f\\n\\r\\té\\u0000\""},
		{"pair of surrogates", R"("\ud83d\uDE00!")", "\"😀!\""},
		{"lone surrogates become U+FFFD", R"(["\ud800","\udc00x","\ud800\ud83d\ude00","\ud800\n"])", R"(["�","�x","�😀","�\n"])"},
		{"ill-formed bytes become U+FFFD", "[\"a\xFF\xC3\",\"\xE2\x82\"]", "[\"a��\",\"�\"]"},
		{"byte-order mark", "\xEF\xBB\xBF{}", "{}"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Rewrite(Case.Given), Case.Expected);
	std::string ManyDigits(200, '9');
	EXPECT_EQ(Rewrite(ManyDigits), "1e+200");
	EXPECT_EQ(Rewrite(ManyDigits + ManyDigits), "1.7976931348623157e+308");
}

TEST(JsonReading, LimitsDepth)
{
	EXPECT_EQ(Rewrite(Nested(128)), Nested(128));
	EXPECT_EQ(Rewrite(Nested(129)), "128 1:129 nested deeper than 128 levels");
	EXPECT_EQ(Rewrite(Nested(256), Json::MaxPackageDepth), Nested(256));
	EXPECT_EQ(Rewrite(Nested(257), 1'000'000), "256 1:257 nested deeper than 256 levels");
	EXPECT_EQ(Rewrite(std::string(1'000'000, '[')), "128 1:129 nested deeper than 128 levels");
	std::string Objects;
	for (int32 Level = 0; Level < 100'000; ++Level)
		Objects += "{\"a\":";
	EXPECT_EQ(Rewrite(Objects), "640 1:641 nested deeper than 128 levels");
}

TEST(JsonReading, AsksForAnObject)
{
	TSharedPtr<FJsonObject> Object;
	FJsonError Error;
	EXPECT_FALSE(Json::ParseObject("[]", Object, &Error));
	EXPECT_EQ(Place(Error), "0 1:1 a JSON object is needed");
	EXPECT_FALSE(Json::ParseObject("{", Object, nullptr));
	ASSERT_TRUE(Json::ParseObject("{\"a\":1}", Object, &Error));
	EXPECT_TRUE(Object->HasField("a"));
}

TEST(JsonValue, ConvertsWhereThatIsSafe)
{
	const auto Convert = [](const FJsonValue& Value)
	{
		FString Text("-");
		double Double = -1.0;
		int32 Int = -1;
		int64 Long = -1;
		bool bBool = false;
		std::string Out = Value.TryGetString(Text) ? *Text : "-";
		std::string Number("-");
		if (Value.TryGetNumber(Double))
			Json::AppendNumber(Number = "", Double);
		Out += " " + Number;
		Out += " " + (Value.TryGetNumber(Int) ? std::to_string(Int) : "-");
		Out += " " + (Value.TryGetNumber(Long) ? std::to_string(Long) : "-");
		return Out + (Value.TryGetBool(bBool) ? bBool ? " true" : " false" : " -");
	};
	const struct
	{
		const char* Why;
		FJsonValue Value;
		const char* Expected; // string, double, int32, int64, bool
	} Cases[] = {
		{"null is nothing", nullptr, "- - - - -"},
		{"an array is nothing", FJsonArray(), "- - - - -"},
		{"an object is nothing", MakeShared<FJsonObject>(), "- - - - -"},
		{"no object is null", TSharedPtr<FJsonObject>(), "- - - - -"},
		{"true", true, "true 1 1 1 true"},
		{"false", false, "false 0 0 0 false"},
		{"integer", 3, "3 3 3 3 true"},
		{"whole double", 3.0, "3 3 3 3 true"},
		{"truncation is toward zero", -3.9, "-3.9 -3.9 -3 -3 true"},
		{"small double", 0.1, "0.1 0.1 0 0 true"},
		{"zero", 0, "0 0 0 0 false"},
		{"largest int32 with a fraction", 2147483647.9, "2147483647.9 2147483647.9 2147483647 2147483647 true"},
		{"one more", int64(2147483648), "2147483648 2147483648 2147483647 2147483648 true"},
		{"smallest int32 with a fraction", -2147483648.9, "-2147483648.9 -2147483648.9 -2147483648 -2147483648 true"},
		{"one less", int64(-2147483649), "-2147483649 -2147483649 -2147483648 -2147483649 true"},
		{"all digits of 64 bits", INT64_MAX, "9223372036854775807 9223372036854775808 2147483647 9223372036854775807 true"},
		{"2^63 is more than the largest integer", 9223372036854775808.0,
			"9223372036854775808 9223372036854775808 2147483647 9223372036854775807 true"},
		{"-2^63 fits", -9223372036854775808.0, "-9223372036854775808 -9223372036854775808 -2147483648 -9223372036854775808 true"},
		{"large double", 1e21, "1e+21 1e+21 2147483647 9223372036854775807 true"},
		{"not a number", std::nan(""), "- null - - -"},
		{"text", "abc", "abc - - - -"},
		{"empty text", "", " - - - -"},
		{"integer text", "42", "42 42 42 42 -"},
		{"64-bit text keeps its digits", "9007199254740993", "9007199254740993 9007199254740992 2147483647 9007199254740993 -"},
		{"fraction text", "-2.5", "-2.5 -2.5 -2 -2 -"},
		{"short forms", ".5", ".5 0.5 0 0 -"},
		{"point last", "5.", "5. 5 5 5 -"},
		{"plus and zeros", "+007", "+007 7 7 7 -"},
		{"exponent text", "1e3", "1e3 1000 1000 1000 -"},
		{"two signs", "+-1", "+-1 - - - -"},
		{"sign alone", "-", "- - - - -"},
		{"blank before", " 1", " 1 - - - -"},
		{"blank behind", "1 ", "1  - - - -"},
		{"tail", "1x", "1x - - - -"},
		{"hexadecimal", "0x10", "0x10 - - - -"},
		{"nan text", "nan", "nan - - - -"},
		{"inf text", "-inf", "-inf - - - -"},
		{"too large a text", "1e400", "1e400 - - - -"},
		{"one as text", "1", "1 1 1 1 true"},
		{"zero as text", "0", "0 0 0 0 false"},
		{"truth in capitals", "TRUE", "TRUE - - - true"},
		{"falsehood in any case", "fAlse", "fAlse - - - false"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Convert(Case.Value), Case.Expected);
}

TEST(JsonObject, ReadsFieldsAndLeavesTheRest)
{
	TSharedPtr<FJsonObject> Object;
	ASSERT_TRUE(Json::ParseObject(R"({"n":"12","a":[1],"o":{"x":1},"z":null})", Object));
	int32 Number = 0;
	EXPECT_TRUE(Object->TryGetNumberField("n", Number));
	EXPECT_EQ(Number, 12);
	EXPECT_FALSE(Object->TryGetNumberField("N", Number)) << "keys are case-sensitive";
	EXPECT_FALSE(Object->TryGetNumberField("a", Number));
	EXPECT_EQ(Number, 12) << "left alone";
	const FJsonArray* Array = nullptr;
	EXPECT_FALSE(Object->TryGetArrayField("o", Array));
	ASSERT_TRUE(Object->TryGetArrayField("a", Array));
	EXPECT_EQ(Array->Num(), 1);
	TSharedPtr<FJsonObject> Inner;
	EXPECT_FALSE(Object->TryGetObjectField("a", Inner));
	EXPECT_TRUE(Object->TryGetObjectField("o", Inner));
	EXPECT_TRUE(Object->HasField("z") && Object->FindField("z")->IsNull()) << "null is a value";
}

TEST(JsonObject, KeepsOrderAndLastValueAtAnySize)
{
	for (const int32 Count : {1, 15, 16, 17, 64, 5000})
	{
		SCOPED_TRACE(Count);
		FJsonObject Object;
		for (int32 Index = 0; Index < Count * 2; ++Index)
			Object.SetNumberField(FString::FromInt(Index % Count), Index);
		const FJsonObject Copy = Object;
		ASSERT_EQ(Copy.Num(), Count);
		for (int32 Index = 0; Index < Count; ++Index)
		{
			const FString Key = FString::FromInt(Index);
			int32 Value = 0;
			ASSERT_TRUE(Copy.TryGetNumberField(Key, Value));
			ASSERT_EQ(Value, Index + Count);
			ASSERT_EQ(Copy.GetFields()[Index].Key, Key);
		}
		EXPECT_FALSE(Copy.HasField("x") || Copy.HasField(""));
	}
}

TEST(JsonWriting, EscapesWhatMustBe)
{
	const TCase<std::string_view> Cases[] = {
		{"quotes and backslashes", "a\"b\\", R"("a\"b\\")"},
		{"short escapes", "\b\f\n\r\t", R"("\b\f\n\r\t")"},
		{"other control characters", std::string_view("\0\x1f", 2), R"("\u0000\u001f")"},
		{"delete and line separators stay", "\x7f\u2028\u2029/", "\"\x7f\u2028\u2029/\""},
		{"beyond ASCII stays", "ä€😀", "\"ä€😀\""},
		{"ill-formed bytes are repaired", "a\xFF\n", "\"a�\\n\""},
	};
	for (const auto& Case : Traced(Cases))
	{
		std::string Out;
		Json::AppendQuoted(Out, Case.Given);
		EXPECT_EQ(Out, Case.Expected);
	}
}

TEST(JsonWriting, WritesNumbersThatReadBack)
{
	constexpr double Infinity = std::numeric_limits<double>::infinity();
	const std::pair<double, const char*> Cases[] = {
		{200.0, "200"},
		{-0.0, "0"},
		{0.1, "0.1"},
		{1.0 / 3.0, "0.3333333333333333"},
		{9007199254740991.0, "9007199254740991"},
		{9007199254740992.0, "9007199254740992"},
		{1e100, "1e+100"},
		{5e-324, "5e-324"},
		{Infinity, "1.7976931348623157e+308"},
		{-Infinity, "-1.7976931348623157e+308"},
		{std::nan(""), "null"},
	};
	for (const auto& [Value, Expected] : Cases)
	{
		std::string Out;
		Json::AppendNumber(Out, Value);
		EXPECT_EQ(Out, Expected);
	}
}

TEST(JsonWriting, IndentsForPeople)
{
	TSharedPtr<FJsonObject> Object;
	ASSERT_TRUE(Json::ParseObject(R"({"a":[1,{"b":null}],"c":{},"d":[],"e":"x"})", Object));
	EXPECT_STREQ(*Json::WritePretty(*Object), R"({
  "a": [
    1,
    {
      "b": null
    }
  ],
  "c": {},
  "d": [],
  "e": "x"
})");
	EXPECT_STREQ(*Json::WritePretty(FJsonObject()), "{}");
}

TEST(JsonWriting, EndsAtTheDepthThatReadingAllows)
{
	const auto Build = [](int32 Depth)
	{
		FJsonValue Value{FJsonArray()};
		for (int32 Level = 1; Level < Depth; ++Level)
			Value = FJsonValue(FJsonArray{Value});
		return Value;
	};
	EXPECT_EQ(*Json::Write(Build(256)), Nested(256));
	EXPECT_EQ(*Json::Write(Build(1000)), std::string(256, '[') + "null" + std::string(256, ']'));
	EXPECT_EQ(Rewrite(*Json::Write(Build(256)), Json::MaxPackageDepth), Nested(256));
}
