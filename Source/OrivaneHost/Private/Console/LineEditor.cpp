#include "Console/LineEditor.h"

#include "Core/Text/Unicode.h"
#include "Terminal/ExitCode.h"
#include "Terminal/Terminal.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <histedit.h>
#include <langinfo.h>
#include <stop_token>
#include <termios.h>
#include <unistd.h>

namespace
{
constexpr int MaxHistory = 1000;
constexpr int32 MaxListed = 60; // candidates shown when several fit

char* GetPrompt(EditLine*)
{
	static char Prompt[] = "orivane> ";
	return Prompt;
}

/** The editor counts characters by the locale; names in projects are UTF-8. */
void UseUtf8()
{
	if (FStringView(nl_langinfo(CODESET)) != "UTF-8")
		std::setlocale(LC_CTYPE, "C.UTF-8");
}

/** What all candidates begin with, in the spelling of the first. */
FStringView GetCommonStart(const TArray<FString>& Candidates)
{
	FStringView Common = Candidates[0];
	for (const FString& Candidate : Candidates)
	{
		while (!Candidate.StartsWith(Common))
		{
			do
				Common.remove_suffix(1);
			while (!Unicode::IsValidUtf8(Common));
		}
	}
	return Common;
}

void ListCandidates(const TArray<FString>& Candidates)
{
	FString Text = "\n";
	for (int32 Index = 0; Index < std::min(Candidates.Num(), MaxListed); ++Index)
		Text += FString("  ") + Terminal::Sanitize(Candidates[Index]) + "\n";
	if (Candidates.Num() > MaxListed)
		Text += FString::Printf("  and %d more\n", Candidates.Num() - MaxListed);
	Terminal::Print(Text);
}
}

struct FLineEditor::FState
{
	static unsigned char Complete(EditLine* Editor, wint_t);
	static unsigned char Drop(EditLine* Editor, wint_t);

	[[noreturn]] void EndProcess() const
	{
		tcsetattr(STDIN_FILENO, TCSANOW, &ModeBefore);
		_exit(EExitCode::Interrupted);
	}

	FString HistoryFile;
	FCompleter Completer;
	termios ModeBefore = {}; // of the terminal
	EditLine* Editor = nullptr;
	History* Lines = nullptr;
	HistEvent Event = {};
};

unsigned char FLineEditor::FState::Complete(EditLine* Editor, wint_t)
{
	FState* This = nullptr;
	el_get(Editor, EL_CLIENTDATA, &This);
	const LineInfo* const Info = el_line(Editor);
	const FString Line = FString::FromExternal(FStringView(Info->buffer, static_cast<std::size_t>(Info->cursor - Info->buffer)));
	FLineCompletion Completion = This->Completer(Line);
	Completion.Candidates.RemoveAll( // the editor would show it as it is
		[](const FString& Candidate) { return Terminal::Sanitize(Candidate).View() != Candidate.View(); });
	if (Completion.Candidates.IsEmpty())
		return CC_REFRESH_BEEP;
	const FStringView Typed = Line.View().substr(static_cast<std::size_t>(Completion.Start));
	const FString Common = GetCommonStart(Completion.Candidates);
	if (Completion.Candidates.Num() > 1 && Common.View().size() <= Typed.size())
	{
		ListCandidates(Completion.Candidates);
		return CC_REDISPLAY;
	}
	el_deletestr(Editor, Unicode::CountCodePoints(Typed));
	el_insertstr(Editor, *Common);
	return CC_REFRESH;
}

unsigned char FLineEditor::FState::Drop(EditLine* Editor, wint_t)
{
	const LineInfo* const Info = el_line(Editor);
	el_cursor(
		Editor, Unicode::CountCodePoints(FStringView(Info->cursor, static_cast<std::size_t>(Info->lastchar - Info->cursor))));
	el_deletestr(
		Editor, Unicode::CountCodePoints(FStringView(Info->buffer, static_cast<std::size_t>(Info->lastchar - Info->buffer))));
	el_insertstr(Editor, "\n");
	Terminal::Print("^C\n");
	return CC_NEWLINE;
}

FLineEditor::FLineEditor(FString InHistoryFile, FCompleter InCompleter) : State(MakeUnique<FState>())
{
	UseUtf8();
	State->HistoryFile = std::move(InHistoryFile);
	State->Completer = std::move(InCompleter);
	tcgetattr(STDIN_FILENO, &State->ModeBefore);
	State->Editor = el_init("orivane", stdin, stdout, stderr);
	State->Lines = history_init();
	history(State->Lines, &State->Event, H_SETSIZE, MaxHistory);
	history(State->Lines, &State->Event, H_SETUNIQUE, 1);
	if (!State->HistoryFile.IsEmpty())
		history(State->Lines, &State->Event, H_LOAD, *State->HistoryFile);
	el_set(State->Editor, EL_CLIENTDATA, State.get());
	el_set(State->Editor, EL_PROMPT, GetPrompt);
	el_set(State->Editor, EL_EDITOR, "emacs");
	el_set(State->Editor, EL_HIST, history, State->Lines);
	// The wide forms: the narrow ones copy these texts and never free them.
	el_wset(State->Editor, EL_ADDFN, L"complete", L"Complete the word", FState::Complete);
	el_wset(State->Editor, EL_ADDFN, L"drop", L"Drop the line", FState::Drop);
	el_set(State->Editor, EL_BIND, "^I", "complete", nullptr);
	el_set(State->Editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
	el_set(State->Editor, EL_SETTY, "-d", "-isig", nullptr); // Ctrl-C drops the line while one is edited
	el_set(State->Editor, EL_BIND, "^C", "drop", nullptr);
	el_source(State->Editor, nullptr); // the user's own key bindings
}

FLineEditor::~FLineEditor()
{
	el_end(State->Editor);
	history_end(State->Lines);
}

bool FLineEditor::ReadLine(FString& OutLine)
{
	// Nothing else wakes a thread that waits for a key.
	const std::stop_callback OnStop(Interrupt::GetToken(), [this] { State->EndProcess(); });
	// Before the prompt shows: a Ctrl-D that answers it at once would be swallowed, a Ctrl-C would end the console.
	el_set(State->Editor, EL_PREP_TERM, 1);
	int NumBytes = 0;
	const char* const Bytes = el_gets(State->Editor, &NumBytes);
	if (!Bytes || NumBytes <= 0)
	{
		Terminal::Print("\n");
		return false;
	}
	OutLine = FString::FromExternal(FStringView(Bytes, static_cast<std::size_t>(NumBytes))).TrimStartAndEnd();
	if (OutLine.IsEmpty())
		return true;
	history(State->Lines, &State->Event, H_ENTER, *OutLine);
	if (!State->HistoryFile.IsEmpty()) // at once: a console may end in any way
		history(State->Lines, &State->Event, H_SAVE, *State->HistoryFile);
	return true;
}
