#include "TimeOutAdvice.h"

#include "Core/Json.h"

namespace
{
/** The Blueprint index starts no query for an empty text and so never answers one. */
bool IsEmptyBlueprintSearch(const FJsonObject& Arguments)
{
	FString Term;
	if (!Arguments.TryGetStringField("term", Term) || !Term.IsEmpty())
		return false;
	const FJsonArray* Families = nullptr;
	if (!Arguments.TryGetArrayField("include_asset_families", Families))
		return true;
	TArray<FString> Names; // as the tool reads them: elements that are no texts are skipped, and an empty list means all
	for (const FJsonValue& Family : *Families)
	{
		FString Name;
		if (Family.TryGetString(Name))
			Names.Add(Name);
	}
	return Names.IsEmpty() || Names.Contains("Blueprint");
}
}

FString ExplainTimeOut(const Orivane::FToolCommand& Command)
{
	TSharedPtr<FJsonObject> Arguments;
	if (Command.ToolName != "asset_search" || !Json::ParseObject(Command.ArgumentsJson, Arguments))
		return "ask for less, or allow more time with --time-limit";
	if (IsEmptyBlueprintSearch(*Arguments))
		return "a search of Blueprints never ends with an empty term; give a term, or list families without Blueprint in "
			   "include_asset_families";
	return "narrow the search with path_contains or include_asset_families, or allow more time with --time-limit";
}
