#include "Tools/TimeOutAdvice.h"

#include "Core/Json/Json.h"
#include "Quellar/Tools/ToolArguments.h"

namespace
{
bool IsEmptyBlueprintSearch(const FJsonObject& Arguments)
{
	FString Term;
	if (!Arguments.TryGetStringField("term", Term))
		return false;
	TArray<FString> Names; // as the tool reads them: elements that are not strings are skipped
	const FJsonArray* Families = nullptr;
	Arguments.TryGetArrayField("include_asset_families", Families);
	for (const FJsonValue& Family : Families ? *Families : FJsonArray())
	{
		FString Name;
		if (Family.TryGetString(Name))
			Names.Add(Name);
	}
	return NeverEnds(Term, Names);
}
}

bool NeverEnds(const FString& Term, const TArray<FString>& Families)
{
	return Term.IsEmpty() && (Families.IsEmpty() || Families.Contains("Blueprint"));
}

FString ExplainTimeOut(const Orivane::FToolCommand& Command)
{
	TSharedPtr<FJsonObject> Arguments;
	if (Command.ToolName != ToolNames::AssetSearch || !Json::ParseObject(Command.ArgumentsJson, Arguments))
		return "ask for less, or allow more time with --time-limit";
	if (IsEmptyBlueprintSearch(*Arguments))
		return "a search of Blueprints never ends with an empty term; give a term, or list families without Blueprint in "
			   "include_asset_families";
	return "narrow the search with path_contains or include_asset_families, or allow more time with --time-limit";
}
