#include "Core/Program/Log.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
DEFINE_LOG_CATEGORY(LogTest);

/** Puts a pipe in the place of standard error while it lives. */
class FStandardErrorPipe
{
public:
	FStandardErrorPipe()
	{
		Log::Flush(10'000);
		Saved = dup(STDERR_FILENO);
		int Ends[2];
		EXPECT_EQ(pipe2(Ends, O_CLOEXEC), 0);
		ReadEnd = Ends[0];
		dup2(Ends[1], STDERR_FILENO);
		close(Ends[1]);
	}
	~FStandardErrorPipe()
	{
		CloseReader(); // a writer that is stuck in the pipe comes free
		Log::Flush(10'000);
		dup2(Saved, STDERR_FILENO);
		close(Saved);
		Log::SetLevel(ELogVerbosity::Warning);
	}

	/** Line ends until not one more byte fits. */
	void Fill(bool bLeaveNonBlocking)
	{
		fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
		while (write(STDERR_FILENO, "\n", 1) == 1)
		{
		}
		if (!bLeaveNonBlocking)
			fcntl(STDERR_FILENO, F_SETFL, 0);
	}
	/** Waits for text up to and with Last; lines without text are left out. Gives up when nothing comes any more. */
	std::vector<std::string> ReadLinesUntil(const std::string& Last) const
	{
		constexpr int GiveUpMilliseconds = 30'000;
		std::vector<std::string> Lines;
		std::string Line;
		char Block[4096];
		pollfd Readable{.fd = ReadEnd, .events = POLLIN, .revents = 0};
		while ((Lines.empty() || Lines.back() != Last) && poll(&Readable, 1, GiveUpMilliseconds) == 1)
		{
			const ssize_t NumRead = read(ReadEnd, Block, sizeof(Block));
			for (ssize_t At = 0; At < NumRead; ++At)
			{
				if (Block[At] != '\n')
					Line += Block[At];
				else if (!Line.empty())
					Lines.push_back(std::exchange(Line, {}));
			}
		}
		return Lines;
	}
	void CloseReader()
	{
		if (ReadEnd >= 0)
			close(std::exchange(ReadEnd, -1));
	}

private:
	int Saved = -1;
	int ReadEnd = -1;
};
}

TEST(Log, LinesSayWhereAndHowBad)
{
	FStandardErrorPipe Pipe;
	Log::SetLevel(ELogVerbosity::Display);
	Log::Write(LogTest, ELogVerbosity::Error, "Grüße");
	Log::Write(LogTest, ELogVerbosity::Verbose, "above the level");
	Log::Write(LogTest, ELogVerbosity::Warning, "forged\n[LogTest] Error: line");
	Log::Write(LogTest, ELogVerbosity::Display,
		"terminal \x1B[2J\xC2\x9B"
		"2J");
	Log::Write(LogTest, ELogVerbosity::Warning, FString(std::string(70'000, 'x')));
	Log::Write(LogTest, ELogVerbosity::Error, "end");
	const std::string Cut = "[LogTest] Warning: " + std::string(65'536, 'x');
	EXPECT_EQ(Pipe.ReadLinesUntil("[LogTest] Error: end"),
		(std::vector<std::string>{"[LogTest] Error: Grüße", "[LogTest] Warning: forged\\n[LogTest] Error: line",
			"[LogTest] Display: terminal \\x1b[2J\\x9b2J", Cut, "[LogTest] Error: end"}));
}

TEST(Log, StuckReaderBlocksNobodyAndLosesTheOldest)
{
	constexpr int32 NumLines = 5000;
	for (const bool bNonBlocking : {false, true})
	{
		SCOPED_TRACE(bNonBlocking ? "the descriptor refuses" : "the descriptor blocks");
		FStandardErrorPipe Pipe;
		Pipe.Fill(bNonBlocking);
		for (int32 Number = 0; Number < NumLines; ++Number)
			Log::Write(LogTest, ELogVerbosity::Warning, FString::FromInt(Number));
		const std::vector<std::string> Lines = Pipe.ReadLinesUntil("[LogTest] Warning: " + std::to_string(NumLines - 1));
		int32 Next = 0;
		int32 NumReceived = 0;
		for (const std::string& Line : Lines)
		{
			int32 Number = 0;
			if (std::sscanf(Line.c_str(), "[Log] Warning: %d lines were dropped", &Number) == 1)
				Next += Number;
			else if (std::sscanf(Line.c_str(), "[LogTest] Warning: %d", &Number) == 1)
			{
				EXPECT_EQ(Number, Next) << "the counts name exactly what is missing";
				Next = Number + 1;
				++NumReceived;
			}
		}
		EXPECT_EQ(Next, NumLines);
		EXPECT_GE(NumReceived, 1024);
		EXPECT_LE(NumReceived, 1024 + 1) << "the queue, and the line that the writer held already";
	}
}

TEST(Log, LongLinesDoNotFillMemory)
{
	FStandardErrorPipe Pipe;
	Pipe.Fill(false);
	const FString Long(std::string(60'000, 'x'));
	for (int32 Number = 0; Number < 100; ++Number)
		Log::Write(LogTest, ELogVerbosity::Warning, Long);
	Log::Write(LogTest, ELogVerbosity::Warning, "end");
	constexpr std::size_t NumOthers = 4; // the line that the writer held already, two notes of what was lost, the end
	EXPECT_LE(Pipe.ReadLinesUntil("[LogTest] Warning: end").size(), 1024u * 1024 / 60'000 + NumOthers);
}

TEST(Log, ClosedReaderEndsNothing)
{
	FStandardErrorPipe Pipe;
	Pipe.CloseReader();
	for (int32 Number = 0; Number < 100; ++Number)
		Log::Write(LogTest, ELogVerbosity::Warning, "to nobody");
	Log::Flush(10'000);
}

TEST(Log, ProgramEndsWhileTheWriterIsStuck)
{
	constexpr const char* ChildMark = "VARNEL_LOG_TEST_CHILD";
	if (std::getenv(ChildMark))
	{
		static FStandardErrorPipe& Pipe = *new FStandardErrorPipe; // stays open until the process is gone
		Pipe.Fill(false);
		Log::Write(LogTest, ELogVerbosity::Warning, "never read");
		std::exit(7);
	}
	setenv(ChildMark, "1", 1);
	char Name[] = "VarnelCoreTests";
	char Filter[] = "--gtest_filter=Log.ProgramEndsWhileTheWriterIsStuck";
	char* Arguments[] = {Name, Filter, nullptr};
	pid_t Child = 0;
	ASSERT_EQ(posix_spawn(&Child, "/proc/self/exe", nullptr, nullptr, Arguments, environ), 0);
	unsetenv(ChildMark);
	int Status = 0;
	ASSERT_EQ(waitpid(Child, &Status, 0), Child);
	EXPECT_TRUE(WIFEXITED(Status));
	EXPECT_EQ(WEXITSTATUS(Status), 7);
}
