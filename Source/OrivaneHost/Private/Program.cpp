#include "OrivaneHost/Program.h"

#include "Commands.h"
#include "Core/Log.h"
#include "Progress.h"

#include <clocale>

namespace
{
struct FRunCommand
{
	int operator()(const FCallArguments& Arguments) const { return RunCall(Arguments); }
	int operator()(const FSearchArguments& Arguments) const { return RunSearch(Arguments); }
	int operator()(const FGraphArguments& Arguments) const { return RunGraph(Arguments); }
	int operator()(const FPathsArguments& Arguments) const { return RunPaths(Arguments); }
	int operator()(const FConsoleArguments& Arguments) const { return RunConsole(Arguments); }
	int operator()(const FInfoArguments& Arguments) const { return RunInfo(Arguments); }
	int operator()(const FCheckArguments& Arguments) const { return RunCheck(Arguments); }
	int operator()(const FMcpArguments& Arguments) const { return RunMcp(Arguments); }
};
}

int RunOrivane(int NumArguments, const char* const* Arguments)
{
	std::setlocale(LC_CTYPE, "");
	int ExitCode = EExitCode::Found;
	const TOptional<FCommand> Command = ParseCommandLine(NumArguments, Arguments, ExitCode);
	if (!Command)
		return ExitCode;
	if (!std::holds_alternative<FMcpArguments>(*Command))
		Interrupt::Install(); // the protocol server has its own way to end
	ExitCode = std::visit(FRunCommand(), *Command);
	Log::Flush();
	return Interrupt::IsRequested() ? EExitCode::Interrupted : ExitCode;
}

bool OpenProjectForCommand(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, bool bMentionFaults, int& OutExitCode)
{
	FScanProgress Progress;
	FProjectOptions WithProgress = Options;
	WithProgress.Progress = &Progress;
	WithProgress.Stop = Interrupt::GetToken();
	FString Error;
	bool bOpened = false;
	{
		const FProgressLine Line(Progress);
		bOpened = FProject::Open(WithProgress, Diagnostics, Error);
	}
	if (!bOpened)
	{
		Terminal::PrintError(FString("orivane: cannot open the project: ") + Terminal::Sanitize(Error) + "\n");
		OutExitCode = EExitCode::NoProject;
		return false;
	}
	if (bMentionFaults && Diagnostics.NumErrors() > 0)
		Terminal::PrintError(
			FString::Printf("orivane: %d fault(s) in project files, what they concern is left out; see: orivane check\n",
				Diagnostics.NumErrors()));
	return true;
}
