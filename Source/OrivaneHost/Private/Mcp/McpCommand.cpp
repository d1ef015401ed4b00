#include "Commands/Commands.h"
#include "Core/Base/Failure.h"
#include "Core/Program/Log.h"
#include "Core/Text/Printable.h"
#include "Core/Threads/Tasks.h"
#include "Mcp/McpProjectHost.h"
#include "Mcp/McpServer.h"
#include "Mcp/McpStdio.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/HeadlessEngine.h"
#include "Project/OpenProject.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>

namespace
{
// From the end of a session on: what is under way may finish, what is answered is written, and then the process is gone, whatever
// hangs.
constexpr auto GraceTime = std::chrono::milliseconds(400);
constexpr auto FlushTime = std::chrono::milliseconds(200);
constexpr auto LastMoment = std::chrono::milliseconds(800);

std::atomic<FMcpStdio*> StoppedBySignal = nullptr;

extern "C" void OnTerminationSignal(int)
{
	if (FMcpStdio* Stdio = StoppedBySignal.load())
		Stdio->RequestStop();
}

extern "C" void OnLastMoment(int)
{
	_exit(EExitCode::Found);
}

/** Termination requests end the session as the end of input does. One at a time. */
class FSignalRoute
{
public:
	explicit FSignalRoute(FMcpStdio& Stdio)
	{
		StoppedBySignal = &Stdio;
		std::signal(SIGPIPE, SIG_IGN);
		std::signal(SIGTERM, OnTerminationSignal);
		std::signal(SIGINT, OnTerminationSignal);
	}
	~FSignalRoute() { StoppedBySignal = nullptr; }
	FSignalRoute(const FSignalRoute&) = delete;
	FSignalRoute& operator=(const FSignalRoute&) = delete;
};

/** A timer rather than a thread: it holds to the very end of the process, also when the game thread never comes back from a tool.
 */
void EndProcessSoon()
{
	std::signal(SIGALRM, OnLastMoment);
	const itimerval Timer = {
		.it_interval = {}, .it_value = {.tv_sec = 0, .tv_usec = std::chrono::microseconds(LastMoment).count()}};
	setitimer(ITIMER_REAL, &Timer, nullptr);
}

/**
 * The descriptor of standard output, for the protocol alone: what anything else in the process prints there would break it and
 * goes nowhere. Negative when standard output is closed.
 */
int TakeStandardOutput()
{
	const int Output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
	const int Nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
	if (Output >= 0 && Nowhere >= 0)
		dup2(Nowhere, STDOUT_FILENO);
	return Output;
}

void ServeClient(FMcpServer& Server, FMcpStdio& Stdio)
{
	const EMcpEnd End = Stdio.Read(Server);
	EndProcessSoon();
	if (End == EMcpEnd::EndOfInput) // a script that pipes its calls in wants their answers
		Server.WaitUntilIdle(GraceTime);
	Stdio.Flush(FlushTime);
}

void OpenProjectForServer(const FProjectOptions& Options, const std::stop_token& Stop, FMcpProjectHost& Host)
try
{
	FProjectOptions WithProgress = Options;
	WithProgress.Progress = &Host.GetOpeningProgress();
	WithProgress.Stop = Stop;
	FDiagnosticSink Diagnostics;
	const FOpening Opening = OpenProject(WithProgress, Diagnostics);
	if (!Opening.bOpened)
	{
		if (Stop.stop_requested()) // the client has gone
			return;
		Log::Write(LogMcp, ELogVerbosity::Error, FString("cannot open the project: ") + Opening.Error);
		return Host.OnProjectFailed(Opening.Error);
	}
	for (const FString& Remark : {Opening.FaultRemark, Opening.PreloadRemark, Opening.CacheRemark, Opening.EmptyRemark})
	{
		if (!Remark.IsEmpty())
			Log::Write(LogMcp, ELogVerbosity::Warning, Remark);
	}
	Host.OnProjectOpened();
}
catch (const std::exception& Failure)
{
	Host.OnProjectFailed(DescribeFailure(Failure));
}

/** A task that throws, for want of memory, costs the calls that are under way and not the session. */
void RunGameThread(const std::stop_token& Ended)
{
	while (!Ended.stop_requested())
	{
		try
		{
			FGameThread::Get().RunUntil([] { return false; }, FGameThread::NoTimeLimit, Ended);
		}
		catch (const std::exception& Failure)
		{
			FOrivaneToolkitModule::GetToolExecutor()->FailStartedCalls(DescribeFailure(Failure));
		}
	}
}
}

int RunMcp(const FMcpArguments& Arguments)
{
	if (isatty(STDIN_FILENO))
		Terminal::PrintError(
			"orivane mcp: waiting for protocol messages, one a line; agents start this command themselves. Ctrl-D ends.\n");
	const int Output = TakeStandardOutput();
	FMcpStdio Stdio(STDIN_FILENO, Output);
	const FSignalRoute Signals(Stdio);
	const FHeadlessEngine Engine;
	RegisterHostTools(Arguments.bPathSearch);
	const auto Host = MakeShared<FMcpProjectHost>(FOrivaneToolkitModule::GetToolExecutor(), Arguments.TimeLimit);
	const auto Server = MakeShared<FMcpServer>(Host,
		FMcpServerOptions{.Deadline = Arguments.Deadline,
			.MaxAnswerBytes = Arguments.MaxAnswerBytes,
			.bFollowsFiles = Arguments.Project.Watch != EProjectWatch::Off},
		[&Stdio, bTerminal = isatty(Output) != 0](std::string Line)
		{ Stdio.Write(bTerminal ? Printable::FilterLaidOut(Line) : std::move(Line)); });

	std::stop_source Ended;
	const std::jthread Protocol(
		[&]
		{
			ServeClient(*Server, Stdio);
			Host->CancelCalls();
			Ended.request_stop();
		});
	Host->OpenBy([&] { OpenProjectForServer(Arguments.Project, Ended.get_token(), *Host); });
	RunGameThread(Ended.get_token());
	const int Error = Stdio.GetWriteError();
	if (Error != 0)
		Terminal::PrintError(FString("orivane mcp: cannot write to standard output: ") + std::strerror(Error) + "\n");
	return Error == 0 ? EExitCode::Found : EExitCode::WrongUse;
}
