#include "Commands/Commands.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Tools/ToolArguments.h"
#include "Terminal/ExitCode.h"
#include "Tools/SearchOutput.h"
#include "Tools/TimeOutAdvice.h"
#include "Tools/ToolOutput.h"

namespace
{
using namespace ToolOutput;

/** The tool ignores unknown families in silence, as agents rely on; a person at a shell has mistyped. */
bool AreFamiliesKnown(const FJsonObject& ToolArguments)
{
	const TArray<FString> Known = GetAssetFamilyNames();
	for (const FJsonValue& Element : GetArray(ToolArguments, "include_asset_families"))
	{
		FString Family;
		if (Element.TryGetString(Family) && Known.Contains(Family))
			continue;
		FString Error = FString("orivane search: there is no family '") + Terminal::Sanitize(Family) + "'; families:";
		for (const FString& Name : Known)
			Error += FString(" ") + Name;
		Terminal::PrintError(Error + "\n");
		return false;
	}
	return true;
}

/** Such a search would end at the time limit. */
bool IsEndless(const FJsonObject& ToolArguments)
{
	FString Term;
	TArray<FString> Families;
	ToolArguments.TryGetStringField("term", Term);
	for (const FJsonValue& Element : GetArray(ToolArguments, "include_asset_families"))
		Element.TryGetString(Families.Emplace_GetRef());
	return NeverEnds(Term, Families);
}

FSearchView MakeView(const Orivane::FToolResult& Result, const FSearchArguments& Arguments)
{
	FAssetSearchParams Params;
	Arguments.Tool->TryGetStringField("term", Params.Term);
	Arguments.Tool->TryGetBoolField("case_sensitive", Params.bCaseSensitive);
	return {.Term = Params.Term,
		.Case = Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase,
		.Width = Terminal::GetWidth(),
		.TextPlaces = FindLines(Result.GetPlaces(), Params),
		.Paint = FPainter(Terminal::UsesColor(Arguments.Color))};
}

/** Names that other programs can open: of text files the whole path. */
FString ListNames(const FAssetSearchResult& Found, const Orivane::FToolResult& Result)
{
	FString Out;
	FString Last;
	const auto AddOnce = [&](const FString& Name)
	{
		if (Name != Last)
			Out += Name + FString(std::string(1, '\0'));
		Last = Name;
	};
	for (const FAssetResult& Asset : Found.Results)
	{
		if (Asset.AssetClass != "TextFile")
			AddOnce(Asset.AssetPath);
	}
	for (const Orivane::FToolPlace& Place : Result.GetPlaces())
		AddOnce(Place.File);
	return Out;
}

FString Render(const FJsonObject& Content, const FAssetSearchResult& Found, const Orivane::FToolResult& Result,
	const FSearchArguments& Arguments)
{
	switch (Arguments.Form)
	{
		case ESearchForm::Json:
			return Json::Write(Content) + "\n";
		case ESearchForm::JsonLines:
		{
			FString Out;
			for (const FJsonValue& Asset : GetArray(Content, "assets"))
				Out += Json::Write(*Asset.AsObject()) + "\n";
			return Out;
		}
		case ESearchForm::Names:
			return ListNames(Found, Result);
		case ESearchForm::Text:
			break;
	}
	return RenderSearchResults(Found, MakeView(Result, Arguments));
}

int PrintResult(const Orivane::FToolResult& Result, const FSearchArguments& Arguments)
{
	PrintProblems("search", Result);
	const TSharedPtr<FJsonObject> Content = GetContent(Result);
	if (!Content)
		return EExitCode::NotFound;

	const FAssetSearchResult Found = ReadSearchPayload(*Content);
	Terminal::Print(Render(*Content, Found, Result, Arguments));
	const auto NumAssets = static_cast<int32>(GroupByAsset(Found).size());
	if (!Arguments.bQuiet && Arguments.Form != ESearchForm::Json)
		Terminal::PrintError(FString::Printf("%d %s\n", NumAssets, NumAssets == 1 ? "asset" : "assets"));
	if (!Arguments.bQuiet)
		Terminal::PrintError(DescribeRemarks(ToolNames::AssetSearch, Result));
	return NumAssets == 0 ? EExitCode::NotFound : EExitCode::Found;
}
}

int RunSearch(const FSearchArguments& Arguments)
{
	if (!AreFamiliesKnown(*Arguments.Tool))
		return EExitCode::WrongUse;
	if (IsEndless(*Arguments.Tool))
	{
		Terminal::PrintError(
			"orivane search: Blueprints are never searched for an empty term: give a term, or other families with "
			"--family\n");
		return EExitCode::WrongUse;
	}
	const FHeadlessEngine Engine;
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, ToolNames::AssetSearch, Json::Write(*Arguments.Tool),
		[&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
