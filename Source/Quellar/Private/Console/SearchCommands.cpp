#include "Console/SearchCommands.h"

#include "Console/ConsoleSearchDocument.h"
#include "Console/ConsoleWords.h"
#include "Core/Files/File.h"
#include "Core/Program/Console.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Console/ConsoleSearch.h"
#include "Quellar/Search/AssetSearchService.h"

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

void Finish(const FConsoleSearchTraits& Traits, int32 Number, const FAssetSearchResult& Found)
{
	const FString File = FPaths::Combine(FPaths::ProjectSavedDir(), FString("Quellar/") + Traits.File);
	const bool bWritten = FFileHelper::SaveStringToFile(WriteConsoleSearchDocument(Found, EConsoleSearchForm::Detailed), File);
	GetState().OnFinished.ExecuteIfBound(
		{.Number = Number, .Command = Traits.Name, .File = File, .bWritten = bWritten, .Found = Found});
}

/** Registers itself before main. */
class FConsoleSearchCommand
{
public:
	FConsoleSearchCommand(FConsoleSearchTraits InTraits)
		: Traits(std::move(InTraits))
		, Command(Traits.Name, Traits.Help, [this](const TArray<FString>& Words) { Run(Words); })
	{
	}
	const FConsoleSearchTraits& GetTraits() const { return Traits; }

private:
	void Run(const TArray<FString>& Words) const
	{
		const int32 Number = ++GetState().NumStarted;
		UAssetSearchService::Get().AssetSearch(ReadSearchWords(Traits, Words),
			[this, Number, StopToken = GetStopToken()](const FAssetSearchResult& Found)
			{
				if (!StopToken.stop_requested())
					Finish(Traits, Number, Found);
			});
	}

	const FConsoleSearchTraits Traits;
	const FAutoConsoleCommand Command;
};

const FConsoleSearchCommand Commands[] = {
	{{.Name = "Orivane.AssetSearch",
		.File = "asset_search.json",
		.Help = "Search all asset types. Args: term=, path=, families=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"Blueprint", "BehaviorTree", "Blackboard", "Enum", "Struct", "DataAsset", "DataTable", "EnvQuery",
			"NiagaraSystem", "Material", "Text"},
		.ExtraWords = {"kinds=", "families="}}},
	{{.Name = "Orivane.BehaviorTreeSearch",
		.File = "behavior_tree_search.json",
		.Help = "Search Behavior Trees. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"BehaviorTree"}}},
	{{.Name = "Orivane.BlackboardSearch",
		.File = "blackboard_search.json",
		.Help = "Search Blackboards. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"Blackboard"}}},
	{{.Name = "Orivane.BlueprintSearch",
		.File = "blueprint_search.json",
		.Help = "Search Blueprints by term/path/kinds (summary=true|false). Args: term=, path=, "
				"kinds=Var,Graph,Node,Pin,Comment, exact=true|false, max=200, summary=true",
		.Families = {"Blueprint"}}},
	{{.Name = "Orivane.DataAssetSearch",
		.File = "dataasset_search.json",
		.Help = "Search DataAssets. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"DataAsset"}}},
	{{.Name = "Orivane.DataTableSearch",
		.File = "datatable_search.json",
		.Help = "Search DataTables (schema-only). Args: term=, path=, exact=true|false, max=, summary=true|false",
		.Families = {"DataTable"},
		.ExtraWords = {}}},
	{{.Name = "Orivane.EnumSearch",
		.File = "enum_search.json",
		.Help = "Search UserDefinedEnums. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"Enum"}}},
	{{.Name = "Orivane.EnvQuerySearch",
		.File = "envquery_search.json",
		.Help = "Search EnvQueries. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"EnvQuery"}}},
	{{.Name = "Orivane.MaterialSearch",
		.File = "material_search.json",
		.Help = "Search Materials, Material Instances, and Material Functions. Args: term=, path=, kinds=, exact=true|false, "
				"max=, summary=true|false",
		.Families = {"Material"}}},
	{{.Name = "Orivane.NiagaraSearch",
		.File = "niagara_search.json",
		.Help = "Search Niagara Systems. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"NiagaraSystem"}}},
	{{.Name = "Orivane.StructSearch",
		.File = "struct_search.json",
		.Help = "Search UserDefinedStructs. Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false",
		.Families = {"Struct"}}},
	{{.Name = "Orivane.TextSearch",
		.File = "text_search.json",
		.Help = "Search whitelisted text files. Args: term=, path=, exts=cpp,h,ini, exact=true|false, max=, summary=true|false",
		.Families = {"Text"},
		.ExtraWords = {"exts="}}},
};

const FConsoleSearchTraits* FindTraits(const FString& Command)
{
	const auto Found = std::find_if(std::begin(Commands), std::end(Commands),
		[&](const FConsoleSearchCommand& Each) { return Command == Each.GetTraits().Name; });
	return Found == std::end(Commands) ? nullptr : &Found->GetTraits();
}
}

FAssetSearchParams ReadSearchWords(const FConsoleSearchTraits& Traits, const TArray<FString>& Words)
{
	FAssetSearchParams Params;
	Params.IncludeAssetFamilies = Traits.Families;
	FString Value;
	const auto ReadExtra = [&](const FString& Word, const char* Key)
	{ return Traits.ExtraWords.Contains(Key) && ReadWord(Word, Key, Value); };
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
	TArray<FString> Words = {"term=", "path="};
	Words.Append(Traits->ExtraWords);
	Words.Append({"exact=", "max=", "summary="});
	return Words;
}

FAssetSearchParams FConsoleSearches::ReadParams(const FString& Command, const TArray<FString>& Words)
{
	const FConsoleSearchTraits* Traits = FindTraits(Command);
	return Traits ? ReadSearchWords(*Traits, Words) : FAssetSearchParams();
}
