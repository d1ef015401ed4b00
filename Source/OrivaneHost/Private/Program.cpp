#include "OrivaneHost/Program.h"

#include "Commands/Commands.h"
#include "Core/Threads/StopToken.h"
#include "Terminal/ExitCode.h"
#include "Terminal/LastResort.h"

#include <cerrno>
#include <clocale>
#include <cstring>

namespace
{
struct FRunCommand
{
	int operator()(const FCallArguments& Arguments) const { return RunCall(Arguments); }
	int operator()(const FSearchArguments& Arguments) const { return RunSearch(Arguments); }
	int operator()(const FGraphArguments& Arguments) const { return RunGraph(Arguments); }
	int operator()(const FPathsArguments& Arguments) const { return RunPaths(Arguments); }
	int operator()(const FReportArguments& Arguments) const { return RunReport(Arguments); }
	int operator()(const FShowArguments& Arguments) const { return RunShow(Arguments); }
	int operator()(const FConsoleArguments& Arguments) const { return RunConsole(Arguments); }
	int operator()(const FInfoArguments& Arguments) const { return RunInfo(Arguments); }
	int operator()(const FCheckArguments& Arguments) const { return RunCheck(Arguments); }
	int operator()(const FMcpArguments& Arguments) const { return RunMcp(Arguments); }
};

/** What could not be printed does not count as found. */
int CheckOutput(int ExitCode)
{
	const int Error = Terminal::GetOutputError();
	if (Error == 0)
		return ExitCode;
	if (Error != EPIPE) // the reader has closed the pipe because it has enough
		Terminal::PrintError(FString("orivane: cannot write to standard output: ") + std::strerror(Error) + "\n");
	return EExitCode::WrongUse;
}

int RunCommandLine(int NumArguments, const char* const* Arguments)
{
	Terminal::FillClosedStreams();
	std::setlocale(LC_CTYPE, "");
	int ExitCode = EExitCode::Found;
	const TOptional<FCommand> Command = ParseCommandLine(NumArguments, Arguments, ExitCode);
	if (!Command)
		return CheckOutput(ExitCode);
	if (!std::holds_alternative<FMcpArguments>(*Command))
		Interrupt::Install(); // the protocol server has its own way to end
	const FStopScope Scope(Interrupt::GetToken());
	ExitCode = std::visit(FRunCommand(), *Command);
	return Interrupt::IsRequested() ? EExitCode::Interrupted : CheckOutput(ExitCode);
}
}

int RunOrivane(int NumArguments, const char* const* Arguments)
{
	try
	{
		return RunCommandLine(NumArguments, Arguments);
	}
	catch (const std::exception& Failure)
	{
		LastResort::Print(Failure);
		return EExitCode::WrongUse;
	}
}
