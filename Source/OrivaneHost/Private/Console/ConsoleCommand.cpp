#include "Commands.h"
#include "Console/ConsoleCompletion.h"
#include "Console/ConsoleSession.h"
#include "Core/File.h"
#include "HeadlessEngine.h"
#include "OrivaneHost/Program.h"
#include "UserFolders.h"

#include <algorithm>
#include <iostream>
#include <string>

namespace
{
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

int RunPipe(FConsoleSession& Session)
{
	int ExitCode = EExitCode::Found;
	for (std::string Line; !Session.IsOver() && !Interrupt::IsRequested() && std::getline(std::cin, Line);)
		ExitCode = std::max(ExitCode, Session.Run(FString::FromExternal(Line)));
	return ExitCode;
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
	Terminal::Print("Console of the project; \"help\" lists the commands, Tab completes, Ctrl-D leaves.\n");
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
	if (!OpenProjectForCommand(Arguments.Project, Diagnostics, true, ExitCode))
		return ExitCode;
	FConsoleSession Session(Arguments.TimeLimit);
	if (!Arguments.Lines.IsEmpty())
		return RunLines(Session, Arguments.Lines);
	return Terminal::IsStdinTerminal() && Terminal::IsStdoutTerminal() ? RunPrompt(Session) : RunPipe(Session);
}
