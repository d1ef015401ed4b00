#include "Console/ConsoleSearchDocument.h"

#include "Support/Golden.h"

#include <gtest/gtest.h>

namespace
{
FAssetHit MakeHit(const char* Kind, const char* Name, const char* Container = "", int32 NumMet = 1)
{
	return {.Kind = Kind, .Name = Name, .Container = Container, .Count = NumMet, .Anchor = nullptr};
}

FAssetSearchResult MakeResult()
{
	FAssetSearchResult Result;
	Result.Results.Add({.AssetPath = "/Game/Z.Z",
		.AssetClass = "WidgetBlueprint",
		.bTruncated = true,
		.Hits = {MakeHit("Node", "Play", "Main", 3), MakeHit("Var", "Health"), MakeHit("Node", "Begin", "Main")}});
	Result.Results.Add({.AssetPath = "/Game/a.a", .AssetClass = "", .Hits = {MakeHit("AssetName", "a", "Material")}});
	Result.Results.Add({.AssetPath = "/Game/E.E", .AssetClass = "UserDefinedEnum", .Hits = {MakeHit("Value", "On", "Values")}});
	Result.Results.Add({.AssetPath = "/Game/DT.DT",
		.AssetClass = "DataTable",
		.Hits = {MakeHit("RowStruct", "Row", "Schema"), MakeHit("ColumnName", "Name:string", "Schema/Columns"),
			MakeHit("RowCount", "12", "Rows")}});
	Result.Results.Add({.AssetPath = "/Game/B.B", .AssetClass = "Blueprint", .Hits = {MakeHit("Node", "Jump.Now", "Main")}});
	return Result;
}
}

TEST(ConsoleSearchDocument, IsAsDescribed)
{
	const FAssetSearchResult Found = MakeResult();
	ExpectGolden("Quellar/console_search.json", WriteConsoleSearchDocument(Found, EConsoleSearchForm::Detailed).View());
	ExpectGolden("Quellar/console_search_summary.json", WriteConsoleSearchDocument(Found, EConsoleSearchForm::Summary).View());
	EXPECT_EQ(WriteConsoleSearchDocument({}, EConsoleSearchForm::Detailed).View(),
		"{\n  \"total_results\": 0,\n  \"total_hits\": {},\n  \"truncated\": false,\n  \"asset_type\": {}\n}\n");
}
