#include "Commands/AssetCommands.h"
#include "Commands/Commands.h"
#include "Graph/GraphPicture.h"
#include "Graph/GraphTree.h"
#include "Project/HeadlessEngine.h"
#include "Terminal/ExitCode.h"
#include "Tools/ToolOutput.h"

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
	return RenderGraphTree(Answer, FPainter(UsesColor(Arguments.Color, Arguments.OutputFile)));
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
	if (!WriteOutput("graph", Render(MakeGraphAnswer(Result), Arguments), Arguments.OutputFile))
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
