#include "Core/Program/Console.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>
#include <string>

namespace
{
std::string Received;

void Receive(const TArray<FString>& Args)
{
	Received = "ran";
	for (const FString& Arg : Args)
		Received += " [" + Arg.ToStdString() + "]";
}

const FAutoConsoleCommand RegisteredBeforeMain("Test.BeforeMain", "Takes words", Receive);

std::string ListNames(const std::string& Prefix)
{
	std::string Names;
	for (const auto& Command : IConsoleManager::Get().GetConsoleCommands())
	{
		if (Command->Name.StartsWith(Prefix))
			Names += (Names.empty() ? "" : " ") + Command->Name.ToStdString();
	}
	return Names;
}
}

TEST(Console, RunsWhatALineSays)
{
	const IConsoleManager& Console = IConsoleManager::Get();
	const struct
	{
		const char* Why;
		const char* Line;
		bool bRan;
		const char* Expected;
	} Cases[] = {
		{"any case", "test.beforemain a", true, "ran [a]"},
		{"blanks around and between", "  Test.BeforeMain \t a   b ", true, "ran [a] [b]"},
		{"quotes inside a word keep blanks and stay", R"(Test.BeforeMain term="two words" path=/Game)", true,
			R"(ran [term="two words"] [path=/Game])"},
		{"quotes around a whole word go", R"(Test.BeforeMain "term=two words" "")", true, "ran [term=two words] []"},
		{"an open quote reaches to the end", R"(Test.BeforeMain term="two words  )", true, R"(ran [term="two words  ])"},
		{"an open quote at a word's start too", R"(Test.BeforeMain "two words)", true, "ran [two words]"},
		{"letters of several bytes", "Test.BeforeMain term=Größe", true, "ran [term=Größe]"},
		{"nobody's name", "Test.Before a", false, ""},
		{"nothing", " \t ", false, ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		Received.clear();
		EXPECT_EQ(Console.ProcessUserConsoleInput(Case.Line), Case.bRan);
		EXPECT_EQ(Received, Case.Expected);
	}
}

TEST(Console, ListsByNameAndForgetsWhatIsUnregistered)
{
	IConsoleManager& Console = IConsoleManager::Get();
	std::string Ran;
	const auto First = Console.RegisterConsoleCommand("List.b", "first", [&](const TArray<FString>&) { Ran += "first "; });
	{
		const FAutoConsoleCommand Short("list.A", "", {});
		EXPECT_EQ(ListNames("list."), "list.A List.b") << "in order of names, whatever their case";
		EXPECT_TRUE(Console.ProcessUserConsoleInput("list.a")) << "a command without a body does nothing";
	}
	EXPECT_EQ(ListNames("list."), "List.b") << "gone with its object";

	const auto Second = Console.RegisterConsoleCommand("LIST.B", "second", [&](const TArray<FString>&) { Ran += "second "; });
	EXPECT_EQ(ListNames("list."), "LIST.B");
	Console.UnregisterConsoleCommand(First);
	Console.ProcessUserConsoleInput("list.b");
	EXPECT_EQ(Ran, "second ") << "the one that was replaced takes nothing away";
	Console.UnregisterConsoleCommand(Second);
	EXPECT_FALSE(Console.FindConsoleCommand("List.b"));
}
