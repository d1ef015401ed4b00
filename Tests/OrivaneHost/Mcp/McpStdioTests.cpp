#include "Mcp/McpStdio.h"
#include "Support/Cases.h"

#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{
/** Writes down what it is given: texts as they are, "!" for a line that was too long. */
class FLineNotes final : public IMcpLineHandler
{
public:
	void HandleLine(std::string_view Line) override { Notes.emplace_back(Line); }
	void HandleOverlongLine() override { Notes.emplace_back("!"); }
	void Tick() override {}
	TOptional<std::chrono::steady_clock::time_point> GetNextTickTime() const override { return {}; }

	std::vector<std::string> Notes;
};

/** Two pipes; the test holds the client's ends. */
class FPipes
{
public:
	FPipes()
	{
		std::signal(SIGPIPE, SIG_IGN);
		EXPECT_EQ(pipe(In), 0);
		EXPECT_EQ(pipe(Out), 0);
	}
	~FPipes()
	{
		for (int* End : {&In[0], &In[1], &Out[0], &Out[1]})
			Close(*End);
	}
	static void Close(int& End)
	{
		if (End >= 0)
			close(End);
		End = -1;
	}
	void Say(std::string_view Bytes) const
	{
		EXPECT_EQ(write(In[1], Bytes.data(), Bytes.size()), static_cast<ssize_t>(Bytes.size()));
	}
	std::string Hear(std::size_t NumBytes) const
	{
		std::string Heard;
		char Buffer[65536];
		while (Heard.size() < NumBytes)
		{
			const ssize_t NumRead = read(Out[0], Buffer, sizeof Buffer);
			if (NumRead <= 0)
				break;
			Heard.append(Buffer, static_cast<std::size_t>(NumRead));
		}
		return Heard;
	}

	int In[2] = {-1, -1};
	int Out[2] = {-1, -1};
};
}

TEST(LineSplitter, CutsLinesWhereverTheBytesAreCut)
{
	const TCase<const char*, std::vector<std::string>> Cases[] = {
		{"plain", "one\ntwo\n", {"one", "two"}},
		{"empty lines are none", "\n\none\n\n", {"one"}},
		{"the last line may lack its break", "one\ntwo", {"one", "two"}},
		{"exactly the limit", "12345678\n", {"12345678"}},
		{"above the limit", "123456789\n", {"!"}},
		{"far above the limit: reported once", "1234567890123456789012345\nok\n", {"!", "ok"}},
		{"too long and never ended", "123456789", {"!"}},
		{"two that are too long", "123456789\n123456789\nok\n", {"!", "!", "ok"}},
	};
	for (const auto& Case : Traced(Cases))
	{
		const std::string_view Bytes = Case.Given;
		for (std::size_t ChunkSize = 1; ChunkSize <= Bytes.size(); ++ChunkSize)
		{
			FLineSplitter Splitter(8);
			FLineNotes Lines;
			for (std::size_t Start = 0; Start < Bytes.size(); Start += ChunkSize)
				Splitter.Append(Bytes.substr(Start, ChunkSize), Lines);
			Splitter.Finish(Lines);
			EXPECT_EQ(Lines.Notes, Case.Expected) << "in pieces of " << ChunkSize;
		}
	}
}

TEST(McpStdio, ReadsToTheEndAndWritesWholeLines)
{
	FPipes Pipes;
	FMcpStdio Stdio(Pipes.In[0], Pipes.Out[1]);
	Pipes.Say("one\ntwo");
	FPipes::Close(Pipes.In[1]);
	FLineNotes Lines;
	EXPECT_EQ(Stdio.Read(Lines), EMcpEnd::EndOfInput);
	EXPECT_EQ(Lines.Notes, (std::vector<std::string>{"one", "two"}));

	const std::string Long(300'000, 'x'); // more than a pipe holds
	Stdio.Write(Long);
	Stdio.Write("end");
	EXPECT_EQ(Pipes.Hear(Long.size() + 5), Long + "\nend\n");
	EXPECT_TRUE(Stdio.Flush(std::chrono::seconds(10)));
}

TEST(McpStdio, StopsWhenAsked)
{
	FPipes Pipes;
	FMcpStdio Stdio(Pipes.In[0], Pipes.Out[1]);
	FLineNotes Lines;
	std::jthread Stopper([&] { Stdio.RequestStop(); });
	EXPECT_EQ(Stdio.Read(Lines), EMcpEnd::Stopped);
}

TEST(McpStdio, EndsWhenNobodyReads)
{
	const struct
	{
		const char* Why;
		bool bWrite;
	} Cases[] = {{"nothing was to be said", false}, {"an answer cannot be written", true}};
	for (const auto& Case : Traced(Cases))
	{
		FPipes Pipes;
		FMcpStdio Stdio(Pipes.In[0], Pipes.Out[1]);
		FPipes::Close(Pipes.Out[0]);
		if (Case.bWrite)
			Stdio.Write("lost");
		FLineNotes Lines;
		EXPECT_NE(Stdio.Read(Lines), EMcpEnd::EndOfInput);
		EXPECT_TRUE(Stdio.Flush(std::chrono::seconds(10)));
	}
}

TEST(McpStdio, TakesNothingMoreFromAClientThatLeavesItsAnswersUnread)
{
	FPipes Pipes;
	FMcpStdio Stdio(Pipes.In[0], Pipes.Out[1]);
	const std::string Answer(1'000'000, 'x');
	for (int Index = 0; Index < 20; ++Index)
		Stdio.Write(Answer);
	Pipes.Say("more\n");
	FPipes::Close(Pipes.In[1]);
	FLineNotes Lines;
	EXPECT_EQ(Stdio.Read(Lines), EMcpEnd::EndOfInput) << "gone without reading";
	EXPECT_TRUE(Lines.Notes.empty());
	EXPECT_FALSE(Stdio.Flush(std::chrono::milliseconds(0)));
	EXPECT_EQ(Pipes.Hear(20 * (Answer.size() + 1)).size(), 20 * (Answer.size() + 1));
}
