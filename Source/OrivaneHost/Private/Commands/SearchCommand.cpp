#include "Commands/Commands.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Tools/ToolArguments.h"
#include "Terminal/ExitCode.h"
#include "Tools/ToolOutput.h"

#include <algorithm>

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

/** Prints assets as paragraphs: path and class, then a line per hit with aligned columns. */
class FResultPrinter
{
public:
	explicit FResultPrinter(bool bColor) : Paint(bColor) {}

	void PrintAsset(const FJsonObject& Asset)
	{
		const FJsonArray& Hits = GetArray(Asset, "hits");
		const FString Class = GetPrintable(Asset, "class"); // none for materials that were not loaded
		Out += Paint.Bold(GetPrintable(Asset, "asset")) + (Class.IsEmpty() ? FString() : "  " + Paint.Dim(Class)) + "\n";
		int32 KindWidth = 0;
		int32 NameWidth = 0;
		for (const FJsonValue& Hit : Hits)
		{
			KindWidth = std::max(KindWidth, GetPrintable(*Hit.AsObject(), "kind").Len());
			NameWidth = std::max(NameWidth, GetPrintable(*Hit.AsObject(), "name").Len());
		}
		for (const FJsonValue& Hit : Hits)
			PrintHit(*Hit.AsObject(), KindWidth, std::min(NameWidth, MaxNameWidth));
		bool bTruncated = false;
		if (Asset.TryGetBoolField("truncated", bTruncated) && bTruncated)
			Out += Paint.Dim("  (more hits of a kind were left out; raise --max-hits-per-kind)") + "\n";
	}

	const FString& GetOutput() const { return Out; }

private:
	static constexpr int32 MaxNameWidth = 48;

	void PrintHit(const FJsonObject& Hit, int32 KindWidth, int32 NameWidth)
	{
		int32 Count = 1;
		Hit.TryGetNumberField("count", Count);
		const FString Container = GetPrintable(Hit, "container");
		Out += FString("  ") + Pad(GetPrintable(Hit, "kind"), KindWidth) + "  ";
		Out += Container.IsEmpty() ? GetPrintable(Hit, "name")
								   : Pad(GetPrintable(Hit, "name"), NameWidth) + "  " + Paint.Dim(Container);
		Out += Count > 1 ? FString::Printf("  x%d\n", Count) : FString("\n");
	}

	FPainter Paint;
	FString Out;
};

int PrintResult(const Orivane::FToolResult& Result, const FSearchArguments& Arguments)
{
	PrintProblems("search", Result);
	const TSharedPtr<FJsonObject> Content = GetContent(Result);
	if (!Content)
		return EExitCode::NotFound;

	const FJsonArray& Assets = GetArray(*Content, "assets");
	if (Arguments.bJson)
	{
		Terminal::Print(Json::Write(*Content) + "\n");
	}
	else
	{
		FResultPrinter Printer(Terminal::UsesColor(Arguments.Color));
		for (const FJsonValue& Asset : Assets)
			Printer.PrintAsset(*Asset.AsObject());
		Terminal::Print(Printer.GetOutput() + FString::Printf("%d asset(s)\n", Assets.Num()));
	}
	return Assets.IsEmpty() ? EExitCode::NotFound : EExitCode::Found;
}
}

int RunSearch(const FSearchArguments& Arguments)
{
	if (!AreFamiliesKnown(*Arguments.Tool))
		return EExitCode::WrongUse;
	const FHeadlessEngine Engine;
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, ToolNames::AssetSearch, Json::Write(*Arguments.Tool),
		[&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
