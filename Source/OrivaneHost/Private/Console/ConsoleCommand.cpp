#include "Commands/Commands.h"
#include "Console/ConsoleCompletion.h"
#include "Console/ConsoleSession.h"
#include "Core/Files/File.h"
#include "Project/HeadlessEngine.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"
#include "Project/UserFolders.h"
#include "Terminal/ExitCode.h"
#include "Terminal/InputLines.h"

#include <algorithm>

namespace
{
constexpr std::size_t MaxLineBytes = 64 * 1024; // of a line that comes through a pipe

/** The lines of a script or a pipe. The worst exit code of all. */
int RunLines(FConsoleSession& Session, const TArray<FString>& Lines)
{
	int ExitCode = EExitCode::Found;
	for (const FString& Line : Lines)
	{
		if (!Session.IsOver() && !Interrupt::IsRequested())
			ExitCode = std::max(ExitCode, Session.Run(Line));
	}
	return ExitCode;
}

/** Runs lines as they come. */
class FConsoleLines final : public ILineHandler
{
public:
	explicit FConsoleLines(FConsoleSession& InSession) : Session(InSession) {}

	void HandleLine(std::string_view Line) override
	{
		if (!IsOver())
			ExitCode = std::max(ExitCode, Session.Run(FString::FromExternal(Line)));
	}
	void HandleOverlongLine() override
	{
		Terminal::PrintError("a line is longer than 64 KiB and was skipped\n");
		ExitCode = EExitCode::WrongUse;
	}
	bool IsOver() const { return Session.IsOver() || Interrupt::IsRequested(); }
	/** The worst of all lines. */
	int GetExitCode() const { return ExitCode; }

private:
	FConsoleSession& Session;
	int ExitCode = EExitCode::Found;
};

int RunPipe(FConsoleSession& Session)
{
	FConsoleLines Handler(Session);
	const bool bRead = ReadInputLines("console", MaxLineBytes, Handler, [&] { return Handler.IsOver(); });
	return bRead ? Handler.GetExitCode() : EExitCode::WrongUse;
}

/** "" where it cannot be kept. */
FString GetHistoryFile()
{
	const FString Base = GetUserFolder("XDG_STATE_HOME", ".local/state");
	const FString Folder = Base.IsEmpty() ? Base : Base + "/orivane";
	return !Folder.IsEmpty() && IFileManager::Get().MakeDirectory(Folder) ? Folder + "/console_history" : FString();
}

int RunPrompt(FConsoleSession& Session)
{
	const FProjectSummary& Summary = FProject::GetSummary();
	Terminal::Print("Console of " + Terminal::Sanitize(Summary.Folder) + ", " +
		FString::FromInt(GetProjectRegistry().NumAssets()) + " assets, changes: " +
		Terminal::Sanitize(FProject::DescribeWatch()) + ". \"help\" lists the commands, Tab completes, Ctrl-D leaves.\n");
	FLineEditor Editor(
		GetHistoryFile(), [](const FString& Line) { return CompleteConsoleLine(Line, FConsoleSession::GetOwnWords()); });
	for (FString Line; !Session.IsOver() && !Interrupt::IsRequested() && Editor.ReadLine(Line);)
		Session.Run(Line);
	return EExitCode::Found;
}
}

int RunConsole(const FConsoleArguments& Arguments)
{
	const FHeadlessEngine Engine;
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	FProjectOptions Options = Arguments.Project;
	if (Arguments.Lines.Num() == 1)
		Options.Watch = EProjectWatch::Off; // it is over before a file can change
	if (!OpenProjectForCommand(Options, Diagnostics, true, ExitCode))
		return ExitCode;
	FConsoleSession Session(Arguments.TimeLimit);
	if (!Arguments.Lines.IsEmpty())
		return RunLines(Session, Arguments.Lines);
	return Terminal::IsStdinTerminal() && Terminal::IsStdoutTerminal() ? RunPrompt(Session) : RunPipe(Session);
}
