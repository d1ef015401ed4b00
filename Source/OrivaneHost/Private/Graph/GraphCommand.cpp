#include "Commands/Commands.h"
#include "Core/Files/File.h"
#include "Graph/GraphPicture.h"
#include "Graph/GraphTree.h"
#include "Project/HeadlessEngine.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"

namespace
{
using namespace ToolOutput;

/** As it was typed. */
FString GetAsset(const FGraphArguments& Arguments)
{
	FString Asset;
	Arguments.Tool->TryGetStringField("asset_path", Asset);
	return Asset;
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
