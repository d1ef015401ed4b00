#include "Commands/AssetCommands.h"
#include "Commands/Commands.h"
#include "Core/Base/Map.h"
#include "Graph/GraphPicture.h"
#include "Graph/GraphTree.h"
#include "Graph/ReportTree.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Project/HeadlessEngine.h"
#include "Reports/ProjectReportOperation.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"
#include "Tools/ToolOutput.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{
using namespace ToolOutput;
using FProjectReportOperation::FKind;

constexpr const char* AssetKeys[] = {"asset_path", "target_path"};

FString GetText(const FJsonObject& Object, const char* Key)
{
	FString Text;
	Object.TryGetStringField(Key, Text);
	return Text;
}

int32 GetNumber(const FJsonObject& Object, const char* Key)
{
	int32 Number = 0;
	Object.TryGetNumberField(Key, Number);
	return Number;
}

bool HasFlag(const FJsonObject& Object, const char* Key)
{
	bool bFlag = false;
	return Object.TryGetBoolField(Key, bFlag) && bFlag;
}

const FKind& GetKind(const FReportArguments& Arguments)
{
	return *FProjectReportOperation::FindKind(GetText(*Arguments.Tool, "report"));
}

/** Drawings tell what is left out themselves. */
bool IsDrawn(const FReportArguments& Arguments)
{
	return Arguments.Format && Arguments.Format != EGraphFormat::Json;
}

/** A sentence about wrong use, or "". */
FString FindMisuse(const FReportArguments& Arguments)
{
	const FKind& Kind = GetKind(Arguments);
	const FString Word = Kind.Word;
	const auto NumAssets =
		std::count_if(std::begin(AssetKeys), std::end(AssetKeys), [&](auto Key) { return Arguments.Tool->HasField(Key); });
	if (NumAssets != Kind.NumAssets)
		return Word + " takes " +
			(Kind.NumAssets == 0		  ? "no asset"
					: Kind.NumAssets == 1 ? "one ASSET"
										  : "an ASSET and a TARGET");
	if (Arguments.Tool->HasField("roots") && Word != "unused")
		return "--root is for unused";
	if (IsDrawn(Arguments) && (Word == "broken" || Word == "unused"))
		return Word + " is a list: --format draws cycles, impact and path";
	if (Arguments.Format == EGraphFormat::Tree && Word == "cycles")
		return "cycles are not a tree; --format draws them as dot, mermaid or html";
	return {};
}

/** Rows of cells in aligned columns; a row of one cell is a heading. */
class FTable
{
public:
	explicit FTable(const FPainter& InPaint) : Paint(InPaint) {}

	void AddHeading(FString Heading) { Rows.push_back({std::move(Heading)}); }
	void AddRow(std::vector<FString> Cells) { Rows.push_back(std::move(Cells)); }

	FString Render() const
	{
		FString Out;
		const std::vector<int32> Widths = MeasureColumns();
		for (const std::vector<FString>& Row : Rows)
		{
			FString Line;
			for (std::size_t Column = 0; Column < Row.size(); ++Column)
			{
				const bool bLast = std::all_of(
					Row.begin() + std::ptrdiff_t(Column) + 1, Row.end(), [](const FString& Cell) { return Cell.IsEmpty(); });
				Line += bLast ? Row[Column] : Pad(Row[Column], Widths[Column]) + "  ";
				if (bLast)
					break;
			}
			Out += (Row.size() == 1 ? Paint.Bold(Line) : Line) + "\n";
		}
		return Out;
	}

private:
	std::vector<int32> MeasureColumns() const
	{
		std::vector<int32> Widths;
		for (const std::vector<FString>& Row : Rows)
		{
			Widths.resize(std::max(Widths.size(), Row.size()));
			for (std::size_t Column = 0; Column < Row.size() && Row.size() > 1; ++Column)
				Widths[Column] = std::max(Widths[Column], Row[Column].Len());
		}
		return Widths;
	}

	const FPainter& Paint;
	std::vector<std::vector<FString>> Rows;
};

FString DescribeKindOf(const FJsonObject& Row)
{
	return Terminal::Sanitize(DescribeKind(GetText(Row, "kind"), FindClassName(GetText(Row, "path"))));
}

/** "Content/A.vasset:12" */
FString DescribePlace(const FJsonObject& Row)
{
	const int32 Line = GetNumber(Row, "line");
	return GetPrintable(Row, "file") + (Line > 0 ? ":" + FString::FromInt(Line) : FString());
}

/** Packages between a row and the start, over the rows that lead to it: "-> /Game/B -> /Game/C". */
FString DescribeWay(const FJsonObject& Row, const TMap<FString, const FJsonObject*>& RowOf)
{
	TArray<FString> Way;
	for (const FJsonObject* const* At = RowOf.Find(GetText(Row, "via")); At; At = RowOf.Find(GetText(**At, "via")))
		Way.Add("-> " + GetPrintable(**At, "path"));
	return FString::Join(Way, " ");
}

/** "cycle 1: 3 packages", "way 2" */
FString DescribeGroup(const FString& Report, const FJsonObject& Row)
{
	const FString Number = FString::FromInt(GetNumber(Row, "group"));
	return Report == "cycles" ? "cycle " + Number + ": " + FString::FromInt(GetNumber(Row, "size")) + " packages"
							  : "way " + Number;
}

std::vector<FString> MakeCells(const FString& Report, const FJsonObject& Row, const TMap<FString, const FJsonObject*>& RowOf)
{
	const FString Path = GetPrintable(Row, "path");
	const FString Type = GetPrintable(Row, "type");
	if (Report == "broken")
		return {Path, GetPrintable(Row, "problem"), Type + (HasFlag(Row, "soft") ? ", soft" : ""), GetPrintable(Row, "from"),
			DescribePlace(Row)};
	if (Report == "unused")
		return {Path, DescribeKindOf(Row), HasFlag(Row, "excluded") ? "excluded" : ""};
	if (Report == "cycles")
		return {"  " + GetPrintable(Row, "from"), "-> " + Path, Type};
	if (Report == "impact")
		return {Path, DescribeKindOf(Row), Type, DescribeWay(Row, RowOf)};
	return {"  " + Path, DescribeKindOf(Row), Type};
}

FString RenderList(const FJsonObject& Content, const FPainter& Paint)
{
	const FString Report = GetText(Content, "report");
	TMap<FString, const FJsonObject*> RowOf;
	FTable Table(Paint);
	int32 Group = 0;
	for (const FJsonValue& Element : GetArray(Content, "rows"))
	{
		const FJsonObject& Row = *Element.AsObject();
		if (const int32 OfRow = GetNumber(Row, "group"); OfRow != std::exchange(Group, OfRow))
			Table.AddHeading(DescribeGroup(Report, Row));
		if (Report == "impact")
			RowOf.Add(GetText(Row, "path"), &Row);
		Table.AddRow(MakeCells(Report, Row, RowOf));
	}
	return Table.Render();
}

FString RenderReport(const FGraphAnswer& Answer, const FReportArguments& Arguments)
{
	const FPainter Paint(UsesColor(Arguments.Color, Arguments.OutputFile));
	if (!Arguments.Format)
		return RenderList(*Answer.Content, Paint);
	switch (*Arguments.Format)
	{
		case EGraphFormat::Json:
			return Json::Write(*Answer.Content) + "\n";
		case EGraphFormat::Dot:
			return GraphDrawing::WriteDot(MakeReportPicture(Answer));
		case EGraphFormat::Mermaid:
			return GraphDrawing::WriteMermaid(MakeReportPicture(Answer));
		case EGraphFormat::Html:
			return GraphDrawing::WriteHtml(MakeReportPicture(Answer));
		case EGraphFormat::Tree:
			break;
	}
	return RenderGraphTree(MakeReportTree(Answer), Paint);
}

void PrintSuggestionsForMissing(const FReportArguments& Arguments)
{
	for (const char* const Key : AssetKeys)
	{
		const FString Asset = GetText(*Arguments.Tool, Key);
		if (!Asset.IsEmpty() && !FAssetOperationBase::AssetExists(Asset))
			PrintSuggestions(Asset);
	}
}

void PrintTotals(const Orivane::FToolResult& Result)
{
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
	{
		if (Message.Type == Orivane::EToolMessage::Success)
			Terminal::PrintError(Terminal::Sanitize(Message.Text) + "\n");
	}
}

int GetExitCode(const FKind& Kind, const FJsonObject& Content)
{
	TSharedPtr<FJsonObject> Summary = MakeShared<FJsonObject>();
	Content.TryGetObjectField("summary", Summary);
	const bool bFound = !GetArray(Content, "rows").IsEmpty() && GetNumber(*Summary, "reversed") == 0;
	return bFound != Kind.bFindsFaults ? EExitCode::Found : EExitCode::NotFound;
}

int PrintResult(const Orivane::FToolResult& Result, const FReportArguments& Arguments)
{
	PrintProblems("report", Result);
	constexpr const char* ToolName = FProjectReportOperation::ToolName;
	if (!GetContent(Result, ToolName))
	{
		PrintSuggestionsForMissing(Arguments);
		return EExitCode::NotFound;
	}
	const FGraphAnswer Answer = MakeGraphAnswer(Result, ToolName, ToolName);
	const bool bEmpty = GetArray(*Answer.Content, "rows").IsEmpty() && IsDrawn(Arguments);
	if (!bEmpty && !WriteOutput("report", RenderReport(Answer, Arguments), Arguments.OutputFile))
		return EExitCode::WrongUse;
	if (Arguments.Format != EGraphFormat::Json)
		PrintTotals(Result);
	if (!IsDrawn(Arguments))
		Terminal::PrintError(DescribeRemarks(ToolName, Result));
	return GetExitCode(GetKind(Arguments), *Answer.Content);
}
}

int RunReport(const FReportArguments& Arguments)
{
	if (const FString Misuse = FindMisuse(Arguments); !Misuse.IsEmpty())
	{
		Terminal::PrintError("orivane report: " + Misuse + "; see: orivane report --help\n");
		return EExitCode::WrongUse;
	}
	const FHeadlessEngine Engine;
	RegisterHostTools();
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, FProjectReportOperation::ToolName,
		Json::Write(*Arguments.Tool), [&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
