#include "Commands/Commands.h"
#include "Core/Files/File.h"
#include "Graph/GraphPicture.h"
#include "Graph/GraphTree.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"

namespace
{
using namespace ToolOutput;

constexpr int32 MaxSuggestions = 5;

/** As it was typed. */
FString GetAsset(const FGraphArguments& Arguments)
{
	FString Asset;
	Arguments.Tool->TryGetStringField("asset_path", Asset);
	return Asset;
}

/** "hero", "Hero.vasset" and "/Game/Old/Hero.Hero" all name assets called Hero. */
FString GetAssetName(const FString& Path)
{
	const FStringView FileName = FPaths::GetCleanFilename(Path);
	return FString(FileName.substr(0, FileName.find('.')));
}

/** Packages of the assets that have the name of the one that was asked for. */
void PrintSuggestions(const FString& AskedFor)
{
	const FName Name = GetAssetName(AskedFor);
	TArray<FString> Packages;
	OrivaneAssetRegistryUtils::GetAssetRegistry()->EnumerateAssets({},
		[&](const FAssetData& Asset)
		{
			if (Asset.AssetName == Name)
				Packages.Add(Asset.PackageName.ToString());
			return Packages.Num() < MaxSuggestions;
		});
	for (const FString& Package : Packages)
		Terminal::PrintError(FString("  did you mean ") + Terminal::Sanitize(Package) + "?\n");
	if (Packages.IsEmpty())
		Terminal::PrintError("  an asset is named by its package, such as /Game/UI/W_Menu; find it with: orivane paths NAME\n");
}

bool IsStandardOutput(const FString& File)
{
	return File.IsEmpty() || File.View() == "-";
}

FString Render(const FGraphAnswer& Answer, const FGraphArguments& Arguments)
{
	switch (Arguments.Format)
	{
		case EGraphFormat::Json:
			return Json::Write(*Answer.Content) + "\n";
		case EGraphFormat::Dot:
			return GraphDrawing::WriteDot(MakeGraphPicture(Answer));
		case EGraphFormat::Mermaid:
			return GraphDrawing::WriteMermaid(MakeGraphPicture(Answer));
		case EGraphFormat::Html:
			return GraphDrawing::WriteHtml(MakeGraphPicture(Answer));
		case EGraphFormat::Tree:
			break;
	}
	const bool bColor = Terminal::UsesColor(Arguments.Color) && IsStandardOutput(Arguments.OutputFile);
	return RenderGraphTree(Answer, FPainter(bColor));
}

/** False after saying why. */
bool Write(const FString& Text, const FGraphArguments& Arguments)
{
	if (IsStandardOutput(Arguments.OutputFile))
		return Terminal::Print(Text);
	FString Error;
	if (FFileHelper::WriteUserFile(Text, Arguments.OutputFile, Error))
		return true;
	Terminal::PrintError(
		FString("orivane graph: cannot write ") + Terminal::Sanitize(Arguments.OutputFile + ": " + Error) + "\n");
	return false;
}

int PrintResult(const Orivane::FToolResult& Result, const FGraphArguments& Arguments)
{
	const TSharedPtr<FJsonObject> Content = GetContent(Result);
	PrintProblems("graph", Result);
	if (!Content)
	{
		PrintSuggestions(GetAsset(Arguments));
		return EExitCode::NotFound;
	}
	if (GetPrintable(*Content, "root").IsEmpty())
	{
		Terminal::PrintError(FString("orivane graph: '") + Terminal::Sanitize(GetAsset(Arguments)) + "' is not a package\n");
		return EExitCode::NotFound;
	}
	if (!Write(Render(MakeGraphAnswer(Result), Arguments), Arguments))
		return EExitCode::WrongUse;
	if (Arguments.Format == EGraphFormat::Json) // the others say it themselves
		Terminal::PrintError(DescribeRemarks(ToolNames::AssetGraph, Result));
	const bool bFound = !GetArray(*Content, "relations").IsEmpty() || !GetArray(*Content, "dependencies").IsEmpty() ||
		!GetArray(*Content, "referencers").IsEmpty();
	return bFound ? EExitCode::Found : EExitCode::NotFound;
}
}

int RunGraph(const FGraphArguments& Arguments)
{
	const FHeadlessEngine Engine;
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, ToolNames::AssetGraph, Json::Write(*Arguments.Tool),
		[&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
