#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"
#include "Quellar/Console/ConsoleSearch.h"

#include <chrono>

/**
 * Runs console lines on the open project: the registered commands, and words of the console itself. What they do is told on
 * standard output, what is wrong with them on standard error. Game thread; at most one at a time.
 */
class FConsoleSession
{
public:
	/** A command that has not completed after TimeLimit is given up: it is asked to stop, and what it finds until then is
	 * dropped. */
	explicit FConsoleSession(std::chrono::milliseconds InTimeLimit);
	~FConsoleSession();
	FConsoleSession(const FConsoleSession&) = delete;
	FConsoleSession& operator=(const FConsoleSession&) = delete;

	/** Returns when the line's search has reported. Empty lines and those that start with "#" do nothing. The program's exit code
	 * for it. */
	int Run(const FString& Line);
	/** The user has asked to leave. */
	bool IsOver() const { return bOver; }
	/** The console's own words, such as "help". */
	static TArray<FString> GetOwnWords();

private:
	struct FOwnWord
	{
		const char* Name;
		const char* Help;
		bool bReadsProject;
		int (FConsoleSession::*Run)(const TArray<FString>& Args);
	};
	static const FOwnWord OwnWords[];

	int RunHelp(const TArray<FString>& Args);
	int RunExit(const TArray<FString>& Args);
	int RunLoad(const TArray<FString>& Args);
	int RunUnload(const TArray<FString>& Args);
	int RunCommand(const FString& Line, const TArray<FString>& Words);
	int GiveUp(const TArray<FString>& Words) const;
	int ShowGraph(const TArray<FString>& Words) const;
	void OnSearchFinished(const FConsoleSearches::FReport& Report);

	const std::chrono::milliseconds TimeLimit;
	int32 LastFinished = 0; // number of the search that reported last
	int LastExitCode = 0;	// of that search
	bool bOver = false;
};
