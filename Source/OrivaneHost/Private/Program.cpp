#include "OrivaneHost/Program.h"

#include "Commands/Commands.h"
#include "Core/Threads/StopToken.h"
#include "Project/PackageMemory.h"
#include "Project/Progress.h"
#include "Terminal/LastResort.h"
#include "Tools/ToolCaller.h"

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
	int operator()(const FConsoleArguments& Arguments) const { return RunConsole(Arguments); }
	int operator()(const FInfoArguments& Arguments) const { return RunInfo(Arguments); }
	int operator()(const FCheckArguments& Arguments) const { return RunCheck(Arguments); }
	int operator()(const FMcpArguments& Arguments) const { return RunMcp(Arguments); }
};

/** Nothing counts as found that nobody could be told. */
int CheckOutput(int ExitCode)
{
	const int Error = Terminal::GetOutputError();
	if (Error == 0)
		return ExitCode;
	if (Error != EPIPE) // whoever has read enough knows
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

bool OpenProjectForCommand(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, bool bMentionFaults, int& OutExitCode)
{
	FScanProgress Progress;
	FProjectOptions WithProgress = Options;
	WithProgress.Progress = &Progress;
	WithProgress.Stop = Interrupt::GetToken();
	FString Error;
	PackageMemory::FLoaded Preloaded;
	bool bPreloaded = false;
	{
		const FProgressLine Line(Progress);
		if (FProject::Open(WithProgress, Diagnostics, Error))
			bPreloaded = PreloadPackages(WithProgress, Preloaded, Error);
	}
	if (!bPreloaded)
	{
		const char* What = FProject::IsOpen() ? "orivane: --preload: " : "orivane: cannot open the project: ";
		Terminal::PrintError(FString(What) + Terminal::Sanitize(Error) + "\n");
		OutExitCode = FProject::IsOpen() ? EExitCode::WrongUse : EExitCode::NoProject;
		return false;
	}
	if (Preloaded.NumFailed > 0)
		Terminal::PrintError(FString::Printf("orivane: --preload: %d of %d package(s) cannot be loaded; see: orivane check\n",
			Preloaded.NumFailed, Preloaded.NumPackages));
	if (bMentionFaults && Diagnostics.NumErrors() > 0)
		Terminal::PrintError(
			FString::Printf("orivane: %d fault(s) in project files, what they concern is left out; see: orivane check\n",
				Diagnostics.NumErrors()));
	return true;
}

int CallToolOfProject(const FProjectOptions& Project, std::chrono::milliseconds TimeLimit, const FString& Tool,
	const FString& ArgumentsJson, const std::function<int(const Orivane::FToolResult&)>& Print)
{
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	if (!OpenProjectForCommand(Project, Diagnostics, true, ExitCode))
		return ExitCode;
	const bool bAnswered =
		CallToolAndWait(Tool, ArgumentsJson, TimeLimit, [&](const Orivane::FToolResult& Result) { ExitCode = Print(Result); });
	return bAnswered ? ExitCode : EExitCode::Interrupted;
}
