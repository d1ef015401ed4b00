#include "Core/Program/Log.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <utility>

namespace
{
DEFINE_LOG_CATEGORY(LogTest);

/** Puts a pipe in the place of standard error while it lives. */
class FStandardErrorPipe
{
public:
	FStandardErrorPipe()
	{
		EXPECT_EQ(pipe2(Ends, O_CLOEXEC), 0);
		dup2(Ends[1], STDERR_FILENO);
	}
	~FStandardErrorPipe()
	{
		dup2(Saved, STDERR_FILENO);
		for (const int Descriptor : {Saved, Ends[0], Ends[1]})
			close(Descriptor);
	}

	/** Fills the pipe; the descriptor blocks afterwards. */
	void Fill()
	{
		fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
		while (write(STDERR_FILENO, "\n", 1) == 1)
		{
		}
		fcntl(STDERR_FILENO, F_SETFL, 0);
	}
	/** What lies in the pipe. */
	std::string Take()
	{
		fcntl(Ends[0], F_SETFL, O_NONBLOCK);
		std::string Text;
		char Block[4096];
		for (ssize_t NumRead = 0; (NumRead = read(Ends[0], Block, sizeof(Block))) > 0;)
			Text.append(Block, static_cast<std::size_t>(NumRead));
		return Text;
	}
	/** Nobody can read from now on. */
	void CloseReader() { close(std::exchange(Ends[0], -1)); }

private:
	const int Saved = dup(STDERR_FILENO);
	int Ends[2] = {-1, -1};
};
}

TEST(Log, LinesSayWhereAndHowBad)
{
	FStandardErrorPipe Pipe;
	const std::string Long(60'000, 'x'); // as much as one pipe takes
	Log::Write(LogTest, ELogVerbosity::Warning, FString(Long));
	EXPECT_EQ(Pipe.Take(), "[LogTest] Warning: " + Long + "\n");
	Log::Write(LogTest, ELogVerbosity::Error, "Grüße");
	Log::Write(LogTest, ELogVerbosity::Warning, "forged\n[LogTest] Error: line");
	Log::Write(LogTest, ELogVerbosity::Warning,
		"terminal \x1B[2J\xC2\x9B"
		"2J\u202Eturned");
	EXPECT_EQ(Pipe.Take(),
		"[LogTest] Error: Grüße\n[LogTest] Warning: forged\\n[LogTest] Error: line\n[LogTest] Warning: terminal "
		"\\x1b[2J\\x9b2J\\u202eturned\n");
}

TEST(Log, AStuckOrClosedReaderBlocksNobody)
{
	const auto OldAction = std::signal(SIGPIPE, SIG_IGN);
	FStandardErrorPipe Pipe;
	Pipe.Fill();
	Log::Write(LogTest, ELogVerbosity::Warning, "dropped");
	EXPECT_EQ(Pipe.Take().find_first_not_of('\n'), std::string::npos);
	Log::Write(LogTest, ELogVerbosity::Warning, "heard again");
	EXPECT_EQ(Pipe.Take(), "\n[Log] Warning: 1 line(s) lost, nobody read them\n[LogTest] Warning: heard again\n");
	Pipe.CloseReader();
	Log::Write(LogTest, ELogVerbosity::Warning, "to nobody");
	std::signal(SIGPIPE, OldAction);
}
