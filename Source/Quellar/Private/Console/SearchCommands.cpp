#include "Console/SearchCommands.h"

#include "Console/ConsoleSearchDocument.h"
#include "Console/ConsoleWords.h"
#include "Core/Files/File.h"
#include "Core/Program/Console.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Console/ConsoleSearch.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Quellar/Tools/ToolArguments.h"

#include <algorithm>

namespace
{
struct FConsoleSearchState
{
	int32 NumStarted = 0;
	TDelegate<void(const FConsoleSearches::FReport&)> OnFinished;
};

FConsoleSearchState& GetState()
{
	static FConsoleSearchState State;
	return State;
}

void Finish(
	const FAssetFamily::FConsoleCommand& Command, int32 Number, const FAssetSearchParams& Params, const FAssetSearchResult& Found)
{
	const FString File = FPaths::Combine(FPaths::ProjectSavedDir(), FString("Quellar/") + Command.File);
	const bool bWritten = FFileHelper::SaveStringToFile(WriteConsoleSearchDocument(Found, EConsoleSearchForm::Detailed), File);
	GetState().OnFinished.ExecuteIfBound(
		{.Number = Number, .Command = Command.Name, .File = File, .bWritten = bWritten, .Params = Params, .Found = Found});
}

/** Registers itself before main. */
class FConsoleSearchCommand
{
public:
	FConsoleSearchCommand(FConsoleSearchTraits InTraits)
		: Traits(std::move(InTraits))
		, Command(Traits.Command.Name, Traits.Command.Help, [this](const TArray<FString>& Words) { Run(Words); })
	{
	}
	const FConsoleSearchTraits& GetTraits() const { return Traits; }

private:
	void Run(const TArray<FString>& Words) const
	{
		const int32 Number = ++GetState().NumStarted;
		const FAssetSearchParams Params = ReadSearchWords(Traits, Words);
		UAssetSearchService::Get().AssetSearch(Params,
			[this, Number, Params, StopToken = GetStopToken()](const FAssetSearchResult& Found)
			{
				if (!StopToken.stop_requested())
					Finish(Traits.Command, Number, Params, Found);
			});
	}

	const FConsoleSearchTraits Traits;
	const FAutoConsoleCommand Command;
};

const FAssetFamily::FConsoleCommand SearchOfAllFamilies = {.Name = "Orivane.AssetSearch",
	.File = "asset_search.json",
	.Help = "Search all asset types. Args: term=, path=, families=, kinds=, exact=true|false, max=, summary=true|false",
	.ExtraWords = {"kinds=", "families="}};

TArray<TUniquePtr<const FConsoleSearchCommand>> RegisterCommands()
{
	TArray<TUniquePtr<const FConsoleSearchCommand>> Commands;
	Commands.Add(MakeUnique<FConsoleSearchCommand>(FConsoleSearchTraits{SearchOfAllFamilies, GetAssetFamilyNames()}));
	for (const FAssetFamily& Family : GetAssetFamilies())
		Commands.Add(MakeUnique<FConsoleSearchCommand>(FConsoleSearchTraits{Family.Command, {Family.Name}}));
	return Commands;
}

const TArray<TUniquePtr<const FConsoleSearchCommand>> Commands = RegisterCommands();

/** Null for a name that is not a search command's. */
const FConsoleSearchTraits* FindTraits(const FString& Command)
{
	for (const TUniquePtr<const FConsoleSearchCommand>& Each : Commands)
	{
		if (Command == Each->GetTraits().Command.Name)
			return &Each->GetTraits();
	}
	return nullptr;
}
}

FAssetSearchParams ReadSearchWords(const FConsoleSearchTraits& Traits, const TArray<FString>& Words)
{
	FAssetSearchParams Params;
	Params.IncludeAssetFamilies = Traits.Families;
	FString Value;
	const auto ReadExtra = [&](const FString& Word, const char* Key)
	{ return Traits.Command.ExtraWords.Contains(Key) && ReadWord(Word, Key, Value); };
	for (const FString& Word : Words)
	{
		if (ReadWord(Word, "term=", Value))
			Params.Term = Value;
		else if (ReadWord(Word, "path=", Value))
			Params.PathContains = Value;
		else if (ReadExtra(Word, "kinds="))
			Params.IncludeKinds = Value.ParseIntoArray(",");
		else if (ReadExtra(Word, "families="))
			Params.IncludeAssetFamilies = Value.ParseIntoArray(",");
		else if (ReadExtra(Word, "exts="))
			Params.IncludeTextExtensions = Value.ParseIntoArray(",");
		else if (ReadWord(Word, "exact=", Value))
			Params.bExact = Value == "true";
		else if (ReadWord(Word, "max=", Value))
			Params.MaxTotalHits = std::max(Value.ToInt(), 1);
	}
	return Params;
}

int32 FConsoleSearches::NumStarted()
{
	return GetState().NumStarted;
}

void FConsoleSearches::SetOnFinished(TDelegate<void(const FReport&)> OnFinished)
{
	GetState().OnFinished = std::move(OnFinished);
}

TArray<FString> FConsoleSearches::GetWords(const FString& Command)
{
	const FConsoleSearchTraits* Traits = FindTraits(Command);
	if (!Traits)
		return {};
	TArray<FString> Words;
	for (const FToolArgument& Argument : FindToolDeclaration(ToolNames::AssetSearch)->Arguments)
	{
		const FConsoleWord& Word = Argument.Console;
		if (*Word.Key && (!Word.bExtra || Traits->Command.ExtraWords.Contains(Word.Key)))
			Words.Add(Word.Key);
	}
	Words.Add("summary="); // announced, and without effect
	return Words;
}

FAssetSearchParams FConsoleSearches::ReadParams(const FString& Command, const TArray<FString>& Words)
{
	const FConsoleSearchTraits* Traits = FindTraits(Command);
	return Traits ? ReadSearchWords(*Traits, Words) : FAssetSearchParams();
}
