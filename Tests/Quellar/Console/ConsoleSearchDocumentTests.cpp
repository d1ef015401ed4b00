#include "Console/ConsoleSearchDocument.h"

#include "Core/Json/Json.h"

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

/** The document without its indentation. */
std::string Write(const FAssetSearchResult& Result, EConsoleSearchForm Form)
{
	const FString Text = WriteConsoleSearchDocument(Result, Form);
	EXPECT_TRUE(Text.View().ends_with("}\n"));
	TSharedPtr<FJsonObject> Json;
	EXPECT_TRUE(Json::ParseObject(Text, Json));
	return Json::Write(*Json).ToStdString();
}
}

TEST(ConsoleSearchDocument, DetailedForm)
{
	EXPECT_EQ(Write(MakeResult(), EConsoleSearchForm::Detailed),
		R"({"total_results":5,"total_hits":{"AssetName":1,"Node":3,"RowStruct":1,"ColumnName":1,"RowCount":1,"Value":1,"Var":1},)"
		R"("truncated":true,"asset_type":{)"
		R"("Blueprint":{"total_results":2,"total_hits":{"Node":3,"Var":1},"results":[)"
		R"({"asset_path":"/Game/B.B","class":"Blueprint","truncated":false,"counts":{"Node":1},)"
		R"("hits":[{"kind":"Node","name":"Jump.Now","container":"Main","count":1}]},)"
		R"({"asset_path":"/Game/Z.Z","class":"WidgetBlueprint","truncated":true,"counts":{"Node":2,"Var":1},)"
		R"("hits":[{"kind":"Node","name":"Begin","container":"Main","count":1},)"
		R"({"kind":"Node","name":"Play","container":"Main","count":3},{"kind":"Var","name":"Health","container":"","count":1}]}]},)"
		R"("DataTable":{"total_results":1,"total_hits":{"RowStruct":1,"ColumnName":1,"RowCount":1},"results":[)"
		R"({"asset_path":"/Game/DT.DT","class":"DataTable","truncated":false,)"
		R"("hits":[{"kind":"RowStruct","name":"Row","container":"Schema","count":1},)"
		R"({"kind":"ColumnName","name":"Name:string","container":"Schema/Columns","count":1},)"
		R"({"kind":"RowCount","name":"12","container":"Rows","count":1}]}]},)"
		R"("Enum":{"total_results":1,"total_hits":{"Value":1},"results":[)"
		R"({"asset_path":"/Game/E.E","class":"UserDefinedEnum","truncated":false,)"
		R"("hits":[{"kind":"Value","name":"On","count":1}]}]},)"
		R"("Material":{"total_results":1,"total_hits":{"AssetName":1},"results":[)"
		R"({"asset_path":"/Game/a.a","class":"","truncated":false,)"
		R"("hits":[{"kind":"AssetName","name":"a","container":"Material","count":1}]}]}}})");
}

TEST(ConsoleSearchDocument, SummaryForm)
{
	FAssetSearchResult Result = MakeResult();
	Result.Results.RemoveAt(3);
	EXPECT_EQ(Write(Result, EConsoleSearchForm::Summary),
		R"({"total_results":4,"total_hits":{"AssetName":1,"Node":3,"Value":1,"Var":1},"truncated":true,)"
		R"("summary":{"total_results":4,"count":6},"results":[)"
		R"({"asset_path":"/Game/a.a","class":"","truncated":false,"asset_type":"Material","total_hits":{"AssetName":1}},)"
		R"({"asset_path":"/Game/B.B","class":"Blueprint","truncated":false,"asset_type":"Blueprint","total_hits":{"Node":1}},)"
		R"({"asset_path":"/Game/E.E","class":"UserDefinedEnum","truncated":false,"asset_type":"Enum","total_hits":{"Value":1}},)"
		R"({"asset_path":"/Game/Z.Z","class":"WidgetBlueprint","truncated":true,"asset_type":"Blueprint",)"
		R"("total_hits":{"Node":2,"Var":1}}],)"
		R"("asset_type":{"Blueprint":{"total_results":2,"total_hits":{"Node":3,"Var":1}},)"
		R"("Enum":{"total_results":1,"total_hits":{"Value":1}},"Material":{"total_results":1,"total_hits":{"AssetName":1}}}})");
}

TEST(ConsoleSearchDocument, NothingFound)
{
	EXPECT_EQ(
		Write({}, EConsoleSearchForm::Detailed), R"({"total_results":0,"total_hits":{},"truncated":false,"asset_type":{}})");
	EXPECT_EQ(Write({.bTruncated = true}, EConsoleSearchForm::Summary),
		R"({"total_results":0,"total_hits":{},"truncated":true,"summary":{"total_results":0,"count":0},"results":[],"asset_type":{}})");
}
