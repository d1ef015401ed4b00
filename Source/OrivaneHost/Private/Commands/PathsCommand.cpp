#include "Commands/Commands.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Tools/ToolArguments.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"
#include "Tools/ToolOutput.h"

namespace
{
using namespace ToolOutput;

/** The texts of a list, a line each. */
FString ListTexts(const FJsonArray& Texts, const char* Indentation)
{
	FString Lines;
	for (const FJsonValue& Element : Texts)
	{
		FString Text;
		Element.TryGetString(Text);
		Lines += FString(Indentation) + Terminal::Sanitize(Text) + "\n";
	}
	return Lines;
}

/** "/Game/UI" in bold, then its assets below it; whole paths after them where both views are asked for. */
FString Render(const FJsonObject& Content, const FPainter& Painter)
{
	FString Out;
	for (const FJsonValue& Directory : GetArray(Content, "directories"))
		Out += Painter.Bold(GetPrintable(*Directory.AsObject(), "path")) + "\n" +
			ListTexts(GetArray(*Directory.AsObject(), "files"), "  ");
	const FJsonArray& Files = GetArray(Content, "files");
	const bool bBoth = !Out.IsEmpty() && !Files.IsEmpty();
	return Out + (bBoth ? "\n" : "") + ListTexts(Files, "");
}

/** "12 matches in 3 directories", and what to do when some were left out. */
FString DescribeTotals(const FJsonObject& Summary)
{
	int32 NumHits = 0;
	int32 NumDirectories = 0;
	bool bTruncated = false;
	Summary.TryGetNumberField("total_hits", NumHits);
	Summary.TryGetNumberField("total_directories", NumDirectories);
	Summary.TryGetBoolField("truncated", bTruncated);
	if (!bTruncated)
		return FString::Printf("%d %s in %d %s\n", NumHits, NumHits == 1 ? "match" : "matches", NumDirectories,
			NumDirectories == 1 ? "directory" : "directories");
	return FString::Printf("%d matches, not all of them shown; narrow with --path or --class, or raise --max-files, "
						   "--max-directories, --max-per-directory\n",
		NumHits);
}

int PrintResult(const Orivane::FToolResult& Result, const FPathsArguments& Arguments)
{
	PrintProblems("paths", Result);
	const TSharedPtr<FJsonObject> Content = GetContent(Result, ToolNames::AssetPathSearch);
	TSharedPtr<FJsonObject> Summary;
	if (!Content || !Content->TryGetObjectField("summary", Summary))
		return EExitCode::NotFound;
	if (Arguments.bJson)
		Terminal::Print(Json::Write(*Content) + "\n");
	else
	{
		Terminal::Print(Render(*Content, FPainter(Terminal::UsesColor(Arguments.Color))));
		Terminal::PrintError(DescribeTotals(*Summary));
	}
	int32 NumHits = 0;
	Summary->TryGetNumberField("total_hits", NumHits);
	return NumHits > 0 ? EExitCode::Found : EExitCode::NotFound;
}
}

int RunPaths(const FPathsArguments& Arguments)
{
	const FHeadlessEngine Engine;
	RegisterHostTools();
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, ToolNames::AssetPathSearch, Json::Write(*Arguments.Tool),
		[&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
