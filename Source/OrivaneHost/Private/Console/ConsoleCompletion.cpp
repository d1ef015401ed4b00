#include "Console/ConsoleCompletion.h"

#include "Core/Program/Console.h"
#include "Core/Text/Unicode.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Console/ConsoleSearch.h"
#include "Tools/HostTools.h"

#include <algorithm>

namespace
{
/** Those that begin with what was typed, whatever the case, each once. */
void AddMatching(const TArray<FString>& Words, FStringView Typed, const char* Behind, TArray<FString>& Out)
{
	for (const FString& Word : Words)
	{
		if (Word.StartsWith(Typed) && !Out.Contains(Word + Behind))
			Out.Add(Word + Behind);
	}
}

TArray<FString> GetCommandNames()
{
	TArray<FString> Names;
	for (const auto& Command : IConsoleManager::Get().GetConsoleCommands())
		Names.Add(Command->Name);
	return Names;
}

const FToolDeclaration& GetToolOf(const FString& Command)
{
	return *FindTool(Command == AssetGraphConsoleCommand ? ToolNames::AssetGraph : ToolNames::AssetSearch);
}

TArray<FString> GetCommandWords(const FString& Command)
{
	if (Command != AssetGraphConsoleCommand)
		return FConsoleSearches::GetWords(Command);
	TArray<FString> Words;
	for (const FToolArgument& Argument : GetToolOf(Command).Arguments)
	{
		if (*Argument.Console.Key)
			Words.Add(Argument.Console.Key);
	}
	return Words;
}

/** The next step below each folder that begins with what was typed: "/Game/U" gives "/Game/UI/". */
void AddFolders(FStringView Typed, TArray<FString>& Out)
{
	const FAssetPathView Paths = OrivaneAssetRegistryUtils::GetAssetRegistry()->GetAssetPaths();
	for (int32 Folder = 0; Folder < Paths.NumFolders(); ++Folder)
	{
		const FString Path = FString(Paths.GetFolderPath(Folder)) + "/";
		FStringView Rest = Path.View();
		if (!Unicode::SkipFoldedPrefix(Rest, Typed) || Rest.empty())
			continue;
		const std::size_t Slash = Path.View().find('/', std::max<std::size_t>(Path.View().size() - Rest.size(), 1));
		if (FString Step(Path.View().substr(0, Slash + 1)); Out.IsEmpty() || Out.Last() != Step)
			Out.Add(std::move(Step));
	}
}

void AddPackages(FStringView Typed, TArray<FString>& Out)
{
	const std::size_t Slash = Typed.rfind('/');
	if (Slash == FStringView::npos || Slash == 0)
		return;
	FARFilter Filter;
	Filter.PackagePaths = {FName(Typed.substr(0, Slash))};
	TArray<FString> Packages;
	OrivaneAssetRegistryUtils::GetAssetRegistry()->EnumerateAssets(Filter,
		[&](const FAssetData& Asset)
		{
			if (FString Package = Asset.PackageName.ToString(); Packages.IsEmpty() || Packages.Last() != Package)
				Packages.Add(std::move(Package));
			return true;
		});
	AddMatching(Packages, Typed, " ", Out);
}

/** Values of one word; where a word takes a list, of its last element. */
FLineCompletion CompleteValue(const FToolDeclaration& Tool, const FString& Word, std::size_t Equals, int32 WordStart)
{
	const FString Key(Word.View().substr(0, Equals + 1));
	const FToolArgument* const Argument =
		Tool.Arguments.FindByPredicate([&](const FToolArgument& Each) { return Key == Each.Console.Key; });
	if (!Argument)
		return {.Start = WordStart, .Candidates = {}};
	FStringView Typed = Word.View().substr(Equals + 1);
	const bool bList = Argument->Type == EToolArgument::TextList;
	if (const std::size_t Comma = Typed.rfind(','); bList && Comma != FStringView::npos)
		Typed.remove_prefix(Comma + 1);
	if (Typed.starts_with('"'))
		Typed.remove_prefix(1);
	FLineCompletion Completion{.Start = WordStart + Word.NumBytes() - static_cast<int32>(Typed.size()), .Candidates = {}};
	const FConsoleWord& Console = Argument->Console;
	AddMatching(Console.Values.IsEmpty() ? Argument->Choices : Console.Values, Typed, bList ? "" : " ", Completion.Candidates);
	if (Console.Names != EConsoleValue::Text)
		AddFolders(Typed, Completion.Candidates);
	if (Console.Names == EConsoleValue::Package)
		AddPackages(Typed, Completion.Candidates);
	return Completion;
}
}

FLineCompletion CompleteConsoleLine(const FString& Line, const TArray<FString>& OwnWords)
{
	const std::size_t Blank = Line.View().find_last_of(" \t");
	const std::size_t Start = Blank == FStringView::npos ? 0 : Blank + 1;
	const FString Word(Line.View().substr(Start));
	const TArray<FString> Before = IConsoleManager::SplitWords(Line.View().substr(0, Start));
	FLineCompletion Completion{.Start = static_cast<int32>(Start), .Candidates = {}};
	if (Before.IsEmpty())
		AddMatching(OwnWords, Word, " ", Completion.Candidates);
	if (Before.IsEmpty() || Before[0] == "help")
	{
		AddMatching(GetCommandNames(), Word, " ", Completion.Candidates);
		return Completion;
	}
	if (Before[0] == "load" || Before[0] == "unload")
	{
		AddFolders(Word, Completion.Candidates);
		AddPackages(Word, Completion.Candidates);
		return Completion;
	}
	if (const std::size_t Equals = Word.View().find('='); Equals != FStringView::npos)
		return CompleteValue(GetToolOf(Before[0]), Word, Equals, static_cast<int32>(Start));
	AddMatching(GetCommandWords(Before[0]), Word, "", Completion.Candidates);
	return Completion;
}
