#include "Reports/ProjectReportOperation.h"

#include "Core/Threads/StopToken.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Tools/ArgumentTable.h"
#include "Reports/AssetRoots.h"
#include "Reports/ProjectReports.h"

namespace
{
using FNode = FPackageGraphView::FNode;
using FNodes = std::vector<FNode>;

struct FParams
{
	FString Report;
	FString AssetPath;
	FString TargetPath;
	TArray<FString> Roots;
	int32 MaxResults = 200;
};

struct FRow
{
	FProjectReportOperation::FKind Kind;
	FReport (*Find)(const FPackageGraphView& Graph, const FNodes& Named, int32 MaxRows); // of assets, or of roots
};

constexpr FRow Rows[] = {
	{{"broken", 0, true},
		[](const FPackageGraphView& Graph, const FNodes&, int32 MaxRows)
		{ return ProjectReports::FindBrokenReferences(Graph, MaxRows); }},
	{{"unused", 0, true}, ProjectReports::FindUnusedAssets},
	{{"cycles", 0, true},
		[](const FPackageGraphView& Graph, const FNodes&, int32 MaxRows) { return ProjectReports::FindCycles(Graph, MaxRows); }},
	{{"impact", 1, false},
		[](const FPackageGraphView& Graph, const FNodes& Named, int32 MaxRows)
		{ return ProjectReports::FindImpact(Graph, Named[0], MaxRows); }},
	{{"path", 2, false},
		[](const FPackageGraphView& Graph, const FNodes& Named, int32 MaxRows)
		{ return ProjectReports::FindWays(Graph, Named[0], Named[1], MaxRows); }},
};

const FRow* FindRow(const FString& Word)
{
	for (const FRow& Row : Rows)
	{
		if (Word == Row.Kind.Word)
			return &Row;
	}
	return nullptr;
}

TArray<FString> GetWords()
{
	TArray<FString> Words;
	for (const FRow& Row : Rows)
		Words.Add(Row.Kind.Word);
	return Words;
}

const TArray<TArgumentRow<FParams>>& GetArguments()
{
	using P = FParams;
	static const TArray<TArgumentRow<P>> Arguments = {
		{{.Key = "report",
			 .Help =
				 "broken: references to what does not exist. unused: assets that no level, primary data asset or settings file "
				 "leads to. cycles: packages that depend on one another. impact: all that refers to asset_path, at any depth. "
				 "path: shortest ways from asset_path to target_path.",
			 .bRequired = true,
			 .Choices = GetWords(),
			 .Shell = {.Names = "REPORT", .Help = "broken, unused, cycles, impact ASSET, path ASSET TARGET"}},
			&P::Report},
		{{.Key = "asset_path",
			 .Help = "For impact and path, such as /Game/UI/W_Menu.",
			 .Shell = {.Names = "ASSET", .Help = "The asset, such as /Game/UI/W_MainMenu"}},
			&P::AssetPath},
		{{.Key = "target_path", .Help = "For path.", .Shell = {.Names = "TARGET", .Help = "The asset that ways lead to"}},
			&P::TargetPath},
		{{.Key = "roots",
			 .Type = EToolArgument::TextList,
			 .Help = "unused: more assets to start from; /Game/UI/ is a whole folder.",
			 .Shell = {.Names = "--root",
				 .Placeholder = "PATH",
				 .Help = "unused: start from this asset too, or from a whole folder with a slash at its end (may be repeated)"}},
			&P::Roots},
		{{.Key = "max_results",
			 .Type = EToolArgument::Integer,
			 .Help = "Rows listed, at least 1; totals count all.",
			 .Minimum = 1,
			 .Narrowing = 1,
			 .Shell = {.Names = "--max-results", .Placeholder = "N", .Help = "Rows listed", .Least = 1}},
			&P::MaxResults},
	};
	return Arguments;
}

void SetText(FJsonObject& Object, const char* Key, const FString& Text)
{
	if (!Text.IsEmpty())
		Object.SetStringField(Key, Text);
}

void SetNumber(FJsonObject& Object, const char* Key, int32 Number, int32 Least)
{
	if (Number >= Least)
		Object.SetNumberField(Key, Number);
}

void SetFlag(FJsonObject& Object, const char* Key, bool bFlag)
{
	if (bFlag)
		Object.SetBoolField(Key, true);
}

/** Only what says something: an answer is read by the token. */
TSharedPtr<FJsonObject> MakeJson(const FReportRow& Row)
{
	auto Object = MakeShared<FJsonObject>();
	SetNumber(*Object, "group", Row.Group, 1);
	SetNumber(*Object, "size", Row.GroupSize, 1);
	Object->SetStringField("path", Row.Path);
	SetText(*Object, "kind", Row.Kind);
	SetText(*Object, "problem", Row.Problem);
	SetText(*Object, "from", Row.From);
	SetText(*Object, "type", Row.Type);
	SetNumber(*Object, "depth", Row.Depth, 0);
	SetText(*Object, "via", Row.Via);
	SetFlag(*Object, "soft", Row.bSoft);
	SetFlag(*Object, "excluded", Row.bExcluded);
	SetText(*Object, "file", Row.File);
	SetNumber(*Object, "line", Row.Line, 1);
	return Object;
}

TSharedPtr<FJsonObject> MakeSummary(const FReport& Report)
{
	auto Summary = MakeShared<FJsonObject>();
	for (const auto& [Key, Number] : Report.Totals)
		Summary->SetNumberField(Key, Number);
	for (const auto& [Key, Counts] : Report.KindCounts)
	{
		auto ByKind = MakeShared<FJsonObject>();
		for (const auto& [Kind, Number] : Counts)
			ByKind->SetNumberField(Kind, Number);
		Summary->SetObjectField(Key, ByKind);
	}
	return Summary;
}

TSharedPtr<FJsonObject> MakePayload(const FProjectReportOperation::FKind& Kind, const FReport& Report)
{
	FJsonArray List;
	for (const FReportRow& Row : Report.Rows)
		List.Add(MakeJson(Row));
	auto Payload = MakeShared<FJsonObject>();
	Payload->SetStringField("report", Kind.Word);
	Payload->SetObjectField("summary", MakeSummary(Report));
	Payload->SetBoolField("truncated", Report.Rows.Num() < Report.NumRows);
	Payload->SetArrayField("rows", std::move(List));
	return Payload;
}

/** False after saying why. */
bool AddAsset(const FPackageGraphView& Graph, const char* Key, const FString& Path, FNodes& Out, Orivane::FToolResult& Result)
{
	FName Package;
	if (Path.IsEmpty())
		Result.AddErrorMessage(FString("Missing required parameter '") + Key + "'");
	else if (!FAssetOperationBase::AssetExists(Path))
		Result.AddErrorMessage(FString("Asset does not exist: ") + Path);
	else if (!AssetPathUtils::NormalizeToPackageName(Path, Package) || Graph.FindNode(Package) == FPackageGraphView::NoNode)
		Result.AddErrorMessage(FString("Not a package: ") + Path);
	else
		Out.push_back(Graph.FindNode(Package));
	return !Result.HasErrors();
}

/** The assets that a report is about, or its roots. False after saying what is wrong. */
bool FindNamed(const FPackageGraphView& Graph, const FRow& Row, const FParams& Params, FNodes& Out, Orivane::FToolResult& Result)
{
	if (Row.Kind.NumAssets > 0)
		AddAsset(Graph, "asset_path", Params.AssetPath, Out, Result);
	if (Row.Kind.NumAssets > 1)
		AddAsset(Graph, "target_path", Params.TargetPath, Out, Result);
	if (Row.Find == ProjectReports::FindUnusedAssets)
	{
		Out = AssetRoots::FindDefault(Graph);
		for (const FString& Root : Params.Roots)
		{
			if (!AssetRoots::AddNamed(Graph, Root, Out))
				Result.AddErrorMessage(FString("Asset does not exist: ") + Root);
		}
	}
	return !Result.HasErrors();
}

void AddRemarks(const FReport& Report, const FParams& Params, Orivane::FToolResult& Result)
{
	if (const int64 NumMore = Report.NumRows - Report.Rows.Num(); NumMore > 0)
		Result.AddRemark({.Text = FString::FromInt(NumMore) + (NumMore == 1 ? " more row" : " more rows"),
			.Argument = "max_results",
			.Value = FString::FromInt(Params.MaxResults)});
	for (const FString& Note : Report.Notes)
		Result.AddRemark({.Text = Note});
}
}

const FProjectReportOperation::FKind* FProjectReportOperation::FindKind(const FString& Word)
{
	const FRow* const Row = FindRow(Word);
	return Row ? &Row->Kind : nullptr;
}

FToolDeclaration FProjectReportOperation::GetDeclaration()
{
	return DeclareTool(ToolName, GetArguments());
}

void FProjectReportOperation::Execute(const FJsonObject& Args, Orivane::FToolResult& Result)
{
	FParams Params;
	ReadArguments(GetArguments(), Args, Params);
	const FRow* const Row = FindRow(Params.Report);
	if (!Row)
	{
		Result.AddErrorMessage(Params.Report.IsEmpty()
				? FString("Missing required parameter 'report'")
				: "Unknown report '" + Params.Report + "'; reports: " + FString::Join(GetWords(), ", "));
		return;
	}
	const FPackageGraphView Graph = GetProjectRegistry().GetPackageGraph();
	FNodes Named;
	if (!FindNamed(Graph, *Row, Params, Named, Result))
		return;
	const FReport Report = Row->Find(Graph, Named, Params.MaxResults);
	if (IsStopRequested())
		return;
	Result.AddSuccessMessage(Report.Sentence);
	AddRemarks(Report, Params, Result);
	Result.SetData(ToolName, MakePayload(Row->Kind, Report));
}
