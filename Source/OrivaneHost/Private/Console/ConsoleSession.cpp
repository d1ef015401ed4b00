#include "Console/ConsoleSession.h"

#include "Commands/Commands.h"
#include "Core/Base/Map.h"
#include "Core/Files/File.h"
#include "Core/Program/Console.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/Loader.h"
#include "Project/PackageMemory.h"
#include "Project/Project.h"
#include "Quellar/Tools/AssetSearchOperation.h"
#include "Terminal/ExitCode.h"
#include "Terminal/NearestWord.h"
#include "Terminal/StopTimer.h"
#include "Terminal/Terminal.h"
#include "Tools/HostTools.h"
#include "Tools/TimeOutAdvice.h"
#include "Tools/ToolOutput.h"
#include "Tools/ToolRemarks.h"

#include <algorithm>

namespace
{
constexpr int32 MaxListed = 10; // assets named on the screen; the file holds all

FString MakeRelativeToProject(const FString& File)
{
	const FString& Folder = FPaths::ProjectDir();
	return File.StartsWith(Folder, ESearchCase::CaseSensitive) ? File.Mid(Folder.Len()) : File;
}

/** "3 asset(s), 5 hit(s): RowCount 2, ColumnName 3", then the first assets. */
FString Summarize(const FAssetSearchResult& Found)
{
	TMap<FString, int32> Kinds;
	int32 NumHits = 0;
	for (const FAssetResult& Asset : Found.Results)
	{
		for (const FAssetHit& Hit : Asset.Hits)
			++Kinds.FindOrAdd(Hit.Kind);
		NumHits += Asset.Hits.Num();
	}
	FString Text = FString::Printf("%d asset(s), %d hit(s)", Found.Results.Num(), NumHits);
	Text += FString(Kinds.IsEmpty() ? "" : ": ") + Terminal::Sanitize(DescribeCounts(Kinds)) + "\n";
	for (int32 Index = 0; Index < std::min(Found.Results.Num(), MaxListed); ++Index)
	{
		const FAssetResult& Asset = Found.Results[Index];
		Text += FString("  ") + Terminal::Sanitize(Asset.AssetPath) + "  " + Terminal::Sanitize(Asset.AssetClass) +
			FString::Printf("  %d hit(s)\n", Asset.Hits.Num());
	}
	if (Found.Results.Num() > MaxListed)
		Text += FString::Printf("  and %d more in the file\n", Found.Results.Num() - MaxListed);
	return Text;
}

void RefreshProject()
{
	RefreshProjectForCommand();
	if (const FString& Trouble = FProject::GetTrouble(); !Trouble.IsEmpty())
		Terminal::PrintError("the project cannot be opened again after a change: " + Terminal::Sanitize(Trouble) +
			(FProject::IsOpen() ? "; what follows tells of its assets as they were before\n" : "\n"));
}

int Fail(const FString& Error)
{
	Terminal::PrintError(Terminal::Sanitize(Error) + "\n");
	return EExitCode::WrongUse;
}
}

const FConsoleSession::FOwnWord FConsoleSession::OwnWords[] = {
	{"help", "List the commands, or describe one: help Orivane.AssetSearch", false, &FConsoleSession::RunHelp},
	{"load", "Keep packages in memory: load /Game/FX, or one package (particle systems are searched there)", true,
		&FConsoleSession::RunLoad},
	{"unload", "Remove packages from memory: unload /Game/FX", true, &FConsoleSession::RunUnload},
	{"exit", "Leave the console (also Ctrl-D)", false, &FConsoleSession::RunExit},
};

FConsoleSession::FConsoleSession(std::chrono::milliseconds InTimeLimit) : TimeLimit(InTimeLimit)
{
	FConsoleSearches::SetOnFinished([this](const FConsoleSearches::FReport& Report) { OnSearchFinished(Report); });
}

FConsoleSession::~FConsoleSession()
{
	FConsoleSearches::SetOnFinished({});
}

TArray<FString> FConsoleSession::GetOwnWords()
{
	TArray<FString> Names;
	for (const FOwnWord& Word : OwnWords)
		Names.Add(Word.Name);
	return Names;
}

int FConsoleSession::Run(const FString& Line)
{
	TArray<FString> Words = IConsoleManager::SplitWords(Line);
	if (Words.IsEmpty() || Words[0].View().starts_with('#'))
		return EExitCode::Found;
	for (const FOwnWord& Own : OwnWords)
	{
		if (Words[0] != Own.Name)
			continue;
		if (Own.bReadsProject)
			RefreshProject();
		Words.RemoveAt(0);
		return (this->*Own.Run)(Words);
	}
	RefreshProject();
	const int ExitCode = RunCommand(Line, Words);
	EvictLoadedPackages(); // back below --object-memory, as between an agent's calls
	return ExitCode;
}

int FConsoleSession::RunCommand(const FString& Line, const TArray<FString>& Words)
{
	const int32 NumBefore = FConsoleSearches::NumStarted();
	const auto Start = std::chrono::steady_clock::now();
	const FStopTimer Timer(TimeLimit);
	const FStopScope Scope(Timer.GetToken());
	if (!IConsoleManager::Get().ProcessUserConsoleInput(Line))
	{
		std::vector<std::string> Known;
		for (const auto& Command : IConsoleManager::Get().GetConsoleCommands())
			Known.push_back(Command->Name.ToStdString());
		const std::string Nearest = FindNearestWord(Words[0].ToStdString(), Known);
		return Fail(FString("there is no command '") + Words[0] + "'" +
			(Nearest.empty() ? FString() : FString(", did you mean '") + Nearest + "'?") + "; see: help");
	}
	if (const int32 Number = FConsoleSearches::NumStarted(); Number > NumBefore)
	{
		const auto IsFinished = [this, Number] { return LastFinished == Number; };
		const bool bFinished = FGameThread::Get().RunUntil(IsFinished, FGameThread::NoTimeLimit, Timer.GetToken());
		return bFinished ? LastExitCode : GiveUp(Words);
	}
	if (IsStopRequested())
		return GiveUp(Words);
	const std::chrono::duration<double, std::milli> Elapsed = std::chrono::steady_clock::now() - Start;
	Terminal::Print(FString::Printf("done (%.1f ms)\n", Elapsed.count()));
	return EExitCode::Found;
}

int FConsoleSession::GiveUp(const TArray<FString>& Words) const
{
	if (Interrupt::IsRequested())
		return EExitCode::Interrupted;
	const double Seconds = std::chrono::duration<double>(TimeLimit).count();
	const bool bIsSearch = !FConsoleSearches::GetWords(Words[0]).IsEmpty();
	FString Text = FString(bIsSearch ? "the search" : "the command") + " did not complete within " +
		FString::SanitizeFloat(Seconds, 0) + " s; nothing was written";
	const FAssetSearchParams Params = FConsoleSearches::ReadParams(Words[0], Words);
	Text += bIsSearch && NeverEnds(Params.Term, Params.IncludeAssetFamilies)
		? "; a search of Blueprints never ends with an empty term: give term=, or families= without Blueprint"
		: "; allow more time with --time-limit";
	Terminal::PrintError(Text + "\n");
	return EExitCode::NotFound;
}

void FConsoleSession::OnSearchFinished(const FConsoleSearches::FReport& Report)
{
	LastFinished = Report.Number;
	LastExitCode = Report.Found.Results.IsEmpty() ? EExitCode::NotFound : EExitCode::Found;
	const FString File = Terminal::Sanitize(MakeRelativeToProject(Report.File));
	if (!Report.bWritten)
	{
		LastExitCode = EExitCode::WrongUse;
		Terminal::PrintError(FString("cannot write ") + File + "\n");
	}
	Terminal::Print((Report.bWritten ? File + "\n" : FString()) + Summarize(Report.Found));
	for (const Orivane::FToolRemark& Remark : FAssetSearchOperation::MakeRemarks(Report.Params, Report.Found))
		Terminal::PrintError(Terminal::Sanitize(DescribeRemarkForConsole(Remark, *FindTool(ToolNames::AssetSearch))) + "\n");
}

int FConsoleSession::RunHelp(const TArray<FString>& Args)
{
	if (!Args.IsEmpty())
	{
		const auto Command = IConsoleManager::Get().FindConsoleCommand(Args[0]);
		if (!Command)
			return Fail(FString("there is no command '") + Args[0] + "'; see: help");
		Terminal::Print(Command->Name + "\n  " + Command->Help + "\n");
		return EExitCode::Found;
	}
	FString Text;
	for (const auto& Command : IConsoleManager::Get().GetConsoleCommands())
		Text += ToolOutput::Pad(Command->Name, 28) + Command->Help + "\n";
	for (const FOwnWord& Word : OwnWords)
		Text += ToolOutput::Pad(Word.Name, 28) + Word.Help + "\n";
	Terminal::Print(Text);
	return EExitCode::Found;
}

int FConsoleSession::RunLoad(const TArray<FString>& Args)
{
	PackageMemory::FLoaded Loaded;
	FString Error = "name a package or a folder, such as /Game/FX";
	if (Args.IsEmpty() || !PackageMemory::Load(Args[0], Loaded, Error, nullptr, Interrupt::GetToken()))
		return Fail(Error);
	Terminal::Print(FString::Printf("%d package(s) in memory", Loaded.NumPackages - Loaded.NumFailed));
	Terminal::Print(
		Loaded.NumFailed > 0 ? FString::Printf(", %d could not be loaded; see: orivane check\n", Loaded.NumFailed) : "\n");
	return EExitCode::Found;
}

int FConsoleSession::RunUnload(const TArray<FString>& Args)
{
	int32 NumUnloaded = 0;
	FString Error = "name a package or a folder, such as /Game/FX";
	if (Args.IsEmpty() || !PackageMemory::Unload(Args[0], NumUnloaded, Error))
		return Fail(Error);
	Terminal::Print(FString::Printf("%d package(s) removed from memory\n", NumUnloaded));
	return EExitCode::Found;
}

int FConsoleSession::RunExit(const TArray<FString>&)
{
	bOver = true;
	return EExitCode::Found;
}
