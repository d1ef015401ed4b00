#include "Console/ConsoleSession.h"

#include "Commands/Commands.h"
#include "Core/Base/Map.h"
#include "Core/Files/File.h"
#include "Core/Program/Console.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/Loader.h"
#include "Graph/GraphTree.h"
#include "Project/PackageMemory.h"
#include "Project/Project.h"
#include "Quellar/Tools/AssetSearchOperation.h"
#include "Terminal/ExitCode.h"
#include "Terminal/NearestWord.h"
#include "Terminal/StopTimer.h"
#include "Terminal/Terminal.h"
#include "Tools/HostTools.h"
#include "Tools/SearchOutput.h"
#include "Tools/TimeOutAdvice.h"
#include "Tools/ToolCaller.h"
#include "Tools/ToolOutput.h"
#include "Tools/ToolRemarks.h"

#include <algorithm>

namespace
{
constexpr int32 MaxListed = 10; // assets named on the screen; the file holds all

/** "3 assets, 5 hits: RowCount 2, ColumnName 3". */
FString Summarize(const FAssetSearchResult& Found, int32 NumAssets)
{
	TMap<FString, int32> Kinds;
	int32 NumHits = 0;
	for (const FAssetResult& Asset : Found.Results)
	{
		for (const FAssetHit& Hit : Asset.Hits)
			++Kinds.FindOrAdd(Hit.Kind);
		NumHits += Asset.Hits.Num();
	}
	return FString::Printf(
			   "%d %s, %d %s", NumAssets, NumAssets == 1 ? "asset" : "assets", NumHits, NumHits == 1 ? "hit" : "hits") +
		(Kinds.IsEmpty() ? "" : ": ") + Terminal::Sanitize(DescribeCounts(Kinds)) + "\n";
}

/** The first assets with their hits. */
FString RenderFirst(const FConsoleSearches::FReport& Report, int32 NumAssets)
{
	int32 NumLeft = MaxListed;
	FAssetSearchResult First;
	for (const std::span<const FAssetResult> Group : GroupByAsset(Report.Found))
	{
		if (NumLeft-- > 0)
			std::for_each(Group.begin(), Group.end(), [&](const FAssetResult& Result) { First.Results.Add(Result); });
	}
	const FString Rest = NumAssets > MaxListed ? FString::Printf("and %d more in the file\n", NumAssets - MaxListed) : FString();
	return RenderSearchResults(First,
			   {.Term = Report.Params.Term,
				   .Width = Terminal::GetWidth(),
				   .TextPlaces = FindLines(FAssetSearchOperation::ListTextFiles(First), Report.Params),
				   .Paint = FPainter(Terminal::UsesColor(EColor::Auto))}) +
		Rest;
}

/** The arguments of a tool that a command's words give. */
FJsonObject ReadToolArguments(const FToolDeclaration& Tool, const TArray<FString>& Words)
{
	FJsonObject Arguments;
	for (const FToolArgument& Argument : Tool.Arguments)
	{
		const FString Key = Argument.Console.Key;
		for (const FString& Word : Words)
		{
			if (!Key.IsEmpty() && Word.StartsWith(Key))
				Arguments.SetStringField(Argument.Key, Word.Mid(Key.Len()).TrimQuotes()); // numbers are read from texts too
		}
		if (*Argument.Shell.OffNames) // as at a shell
			Arguments.SetField(Argument.Key, Argument.Shell.FlagValue);
	}
	return Arguments;
}

/** The words that a command understands, such as "term="; none where nothing is known of it. */
TArray<FString> GetKnownWords(const FString& Command)
{
	TArray<FString> Known = FConsoleSearches::GetWords(Command);
	if (Command == AssetGraphConsoleCommand)
	{
		for (const FToolArgument& Argument : FindTool(ToolNames::AssetGraph)->Arguments)
		{
			if (*Argument.Console.Key)
				Known.Add(Argument.Console.Key);
		}
	}
	return Known;
}

/** Commands pass over what they do not know. */
void MentionUnknownWords(const TArray<FString>& Words)
{
	const TArray<FString> Known = GetKnownWords(Words[0]);
	for (int32 Index = 1; Index < Words.Num() && !Known.IsEmpty(); ++Index)
	{
		const FString& Word = Words[Index];
		if (Known.ContainsByPredicate([&](const FString& Key) { return Word.StartsWith(Key); }))
			continue;
		std::vector<std::string> Keys;
		for (const FString& Key : Known)
			Keys.push_back(Key.ToStdString());
		const std::size_t Equals = Word.View().find('=');
		const std::string Nearest = Equals == FStringView::npos
			? Keys.front() + Word.ToStdString()
			: FindNearestWord(std::string(Word.View().substr(0, Equals + 1)), Keys);
		Terminal::PrintError(Terminal::Sanitize("'" + Word + "' means nothing to " + Words[0] +
								 (Nearest.empty() ? FString() : FString(", did you mean ") + Nearest + "?") +
								 " It knows: " + FString::Join(Known, " ")) +
			"\n");
	}
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
	{"exit", "Leave the console (also Ctrl-D, quit)", false, &FConsoleSession::RunExit},
	{"quit", "The same", false, &FConsoleSession::RunExit},
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
	if (std::count(Line.View().begin(), Line.View().end(), '"') % 2 != 0)
		return Fail("a quote is open: " + Line);
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
	MentionUnknownWords(Words);
	const FAssetSearchParams Asked = FConsoleSearches::ReadParams(Words[0], Words);
	if (!FConsoleSearches::GetWords(Words[0]).IsEmpty() && NeverEnds(Asked.Term, Asked.IncludeAssetFamilies))
		return Fail("a search of Blueprints never ends without a term: give term=, or families= without Blueprint");
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
	if (Words[0] == AssetGraphConsoleCommand)
		return ShowGraph(Words);
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
	Terminal::PrintError(Text + "; allow more time with --time-limit\n");
	return EExitCode::NotFound;
}

/** The command itself shows nothing. */
int FConsoleSession::ShowGraph(const TArray<FString>& Words) const
{
	int ExitCode = EExitCode::Found;
	const FJsonObject Arguments = ReadToolArguments(*FindTool(ToolNames::AssetGraph), Words);
	const auto Print = [&](const Orivane::FToolResult& Result)
	{
		ToolOutput::PrintProblems(AssetGraphConsoleCommand, Result);
		if (ToolOutput::GetContent(Result))
			Terminal::Print(RenderGraphTree(MakeGraphAnswer(Result), FPainter(Terminal::UsesColor(EColor::Auto))));
		else
			ExitCode = EExitCode::NotFound;
	};
	const bool bAnswered = CallToolAndWait(ToolNames::AssetGraph, Json::Write(Arguments), TimeLimit, Print);
	return bAnswered ? ExitCode : EExitCode::Interrupted;
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
	const auto NumAssets = static_cast<int32>(GroupByAsset(Report.Found).size());
	Terminal::Print(
		RenderFirst(Report, NumAssets) + Summarize(Report.Found, NumAssets) + (Report.bWritten ? File + "\n" : FString()));
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
