#include "Core/Program/Config.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>

namespace
{
/** Sections as [name], lines as line:column, sign, key and value in angle brackets, then the diagnostics. */
std::string Render(FStringView Text)
{
	constexpr const char* SignOf[] = {"", "+", "-", "!"};
	FDiagnosticSink Sink;
	const FConfigFile File = FConfigFile::Parse(Text, "Game.ini", &Sink);
	std::string Out;
	for (const auto& [Name, Lines] : File.GetSections())
	{
		Out += "[" + Name.ToStdString() + "]";
		for (const FConfigLine& Line : Lines)
			Out += " " + std::to_string(Line.Line) + ":" + std::to_string(Line.ValueColumn) + " " +
				SignOf[static_cast<int32>(Line.Operation)] + Line.Key.ToStdString() + "=<" + Line.Value.ToStdString() + ">";
		Out += "\n";
	}
	for (const FDiagnostic& Diagnostic : Sink.GetSorted())
		Out += Diagnostic.ToString().ToStdString() + "\n";
	return Out;
}

std::string Join(const TArray<FString>& Values)
{
	std::string Out;
	for (const FString& Value : Values)
		Out += Value.ToStdString() + ";";
	return Out;
}
}

TEST(Config, ReadsLines)
{
	const TCase<std::string_view> Cases[] = {
		{"nothing", "", ""},
		{"all operations", "[S]\nA=1\n+B=2\n-B=3\n!B=ClearArray\n", "[S] 2:3 A=<1> 3:4 +B=<2> 4:4 -B=<3> 5:4 !B=<ClearArray>\n"},
		{"comments, blank lines and a last line without end", "; x\n# [T]\n\n[S]\n  ;A=0\nA=1", "[S] 6:3 A=<1>\n"},
		{"line ends of another system, mark at the start", "\xEF\xBB\xBF[S]\r\nA=1\r\n", "[S] 2:3 A=<1>\n"},
		{"blanks around everything", " [ S ] \n\t+ A \t=  b c \n", "[S] 2:10 +A=<b c>\n"},
		{"one pair of quotes goes", "[S]\nA=\" x \"\nB=\"\"y\"\"\nC=\"\nD=\"\"\n",
			"[S] 2:4 A=< x > 3:4 B=<\"y\"> 4:3 C=<\"> 5:4 D=<>\n"},
		{"a value may hold signs", "[S]\nA=b=c;d#e\n", "[S] 2:3 A=<b=c;d#e>\n"},
		{"empty value", "[S]\nA=\n", "[S] 2:3 A=<>\n"},
		{"sections join without regard to case", "[S]\nA=1\n[T]\n[s]\nB=2\n", "[S] 2:3 A=<1> 5:3 B=<2>\n[T]\n"},
		{"columns count code points", "[S]\nÄ€=1\n", "[S] 2:4 Ä€=<1>\n"},
		{"a comment may follow a section", "[S] ; x\nA=1", "[S] 2:3 A=<1>\n"},
		{"ill-formed bytes are repaired", "[S]\nA=\xFF\n", "[S] 2:3 A=<�>\n"},
		{"clearing is spelt in any case", "[S]\n!A=cleararray\n", "[S] 2:4 !A=<cleararray>\n"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Render(Case.Given), Case.Expected);
}

TEST(Config, ReportsAndSkipsWhatIsNoLine)
{
	const TCase<> Cases[] = {
		{"no sign of equality", "[S]\n  Hello\nA=1\n",
			"[S] 3:3 A=<1>\nGame.ini:2:3: error: a '=' is missing; a setting reads Key=Value [settings-syntax]\n"},
		{"above all sections", "A=1\n[S]\n",
			"[S]\nGame.ini:1:1: error: a setting must stand below a [section] [settings-syntax]\n"},
		{"no key", "[S]\nA=1\n+ =1\n", "[S] 2:3 A=<1>\nGame.ini:3:3: error: a key is missing before the '=' [settings-syntax]\n"},
		{"lines below a broken section do not fall into the one before", "[S]\nA=1\n [T\nB=2\n[U]\nC=3\n",
			"[S] 2:3 A=<1>\n[U] 6:3 C=<3>\n"
			"Game.ini:3:2: error: the section's ']' is missing; the lines up to the next section are skipped "
			"[settings-syntax]\n"},
		{"nameless section", "[ ]\nA=1\n",
			"Game.ini:1:1: error: the section has no name; the lines up to the next section are skipped [settings-syntax]\n"},
		{"text behind a section", "[S] x\nA=1\n",
			"Game.ini:1:5: error: nothing may follow the section's ']'; the lines up to the next section are skipped "
			"[settings-syntax]\n"},
		{"clearing to something", "[S]\n!A=1\n",
			"[S]\nGame.ini:2:4: error: a '!' line empties a list and reads !Key=ClearArray [settings-syntax]\n"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Render(Case.Given), Case.Expected);
}

TEST(Config, AppliesLinesToLists)
{
	const TCase<> Cases[] = {
		{"not mentioned", "Other=1\n", "d;e;"},
		{"the first mention replaces the defaults", "+K=a\n", "a;"},
		{"later ones add", "K=a\nK=b\n+K=c\n", "a;b;c;"},
		{"removal takes all equal ones, without regard to case", "K=a\nK=b\nK=A\n-k=A\n", "b;"},
		{"what was removed may come again", "K=a\nK=b\n-K=a\n+K=A\n", "b;A;"},
		{"clearing in between", "K=a\n!K=ClearArray\nK=b\n", "b;"},
		{"clearing alone", "!K=ClearArray\n", ""},
		{"twice the same stays twice", "K=a\nK=a\n", "a;a;"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FConfigFile File = FConfigFile::Parse(std::string("[S]\n") + Case.Given, "Game.ini", nullptr);
		ASSERT_TRUE(File.GetSections().Contains("s"));
		EXPECT_EQ(Join(FConfigFile::ApplyToArray(*File.GetSections().Find("s"), "K", {"d", "e"})), Case.Expected);
	}
}

TEST(Config, FindsTheLastValue)
{
	const FConfigFile File = FConfigFile::Parse("[S]\nA=1\n+A=2\na=3\n-A=4\n", "Game.ini", nullptr);
	const FConfigLine* Line = FConfigFile::FindValue(*File.GetSections().Find("S"), "A");
	ASSERT_NE(Line, nullptr);
	EXPECT_EQ(Line->Value.View(), "3");
	EXPECT_EQ(FConfigFile::FindValue(*File.GetSections().Find("S"), "B"), nullptr);
}

TEST(Diagnostics, PrintOnlyTheirParts)
{
	const std::pair<FDiagnostic, const char*> Cases[] = {
		{{.File = "a.ini", .Line = 2, .Column = 3, .Text = "wrong", .Rule = "r"}, "a.ini:2:3: error: wrong [r]"},
		{{.File = "a.ini", .Line = 2, .Severity = EDiagnosticSeverity::Warning, .Text = "odd", .Rule = "r"},
			"a.ini:2: warning: odd [r]"},
		{{.File = "a.ini", .Column = 3, .Text = "wrong", .Rule = "r"}, "a.ini: error: wrong [r]"},
		{{.File = "", .Text = "wrong", .Rule = ""}, "error: wrong"},
	};
	for (const auto& [Diagnostic, Expected] : Cases)
		EXPECT_STREQ(*Diagnostic.ToString(), Expected);
}

TEST(Diagnostics, SortTheSameWhateverTheOrder)
{
	const FDiagnostic Sorted[] = {
		{.File = "A.ini", .Line = 9, .Text = "a", .Rule = "r"},
		{.File = "a.ini", .Line = 9, .Text = "a", .Rule = "r"},
		{.File = "A.ini", .Line = 9, .Text = "b", .Rule = "r"},
		{.File = "a.ini", .Line = 10, .Severity = EDiagnosticSeverity::Warning, .Text = "a", .Rule = "r"},
		{.File = "b.ini", .Line = 1, .Column = 2, .Text = "z", .Rule = "r"},
		{.File = "B.ini", .Line = 1, .Column = 10, .Text = "a", .Rule = "r"},
	};
	std::vector<std::size_t> Order = {0, 1, 2, 3, 4, 5};
	do
	{
		FDiagnosticSink Sink;
		for (const std::size_t Index : Order)
			Sink.Add(Sorted[Index]);
		const TArray<FDiagnostic> Result = Sink.GetSorted();
		for (int32 Index = 0; Index < Result.Num(); ++Index)
			ASSERT_STREQ(*Result[Index].ToString(), *Sorted[Index].ToString());
		ASSERT_EQ(Sink.NumErrors(), 5);
		ASSERT_EQ(Sink.NumWarnings(), 1);
	} while (std::next_permutation(Order.begin(), Order.end()));
}
