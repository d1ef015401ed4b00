#include "Quellar/Search/AssetSearchService.h"

#include "CoreObject/Packages/Loader.h"
#include "OrivaneToolkit/OrivaneSettings.h"
#include "Quellar/Families/AssetFamily.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <random>

namespace
{
TArray<FString> GetFamiliesWithoutBlueprint()
{
	TArray<FString> Names = GetAssetFamilyNames();
	Names.RemoveAll([](const FString& Name) { return Name == "Blueprint"; });
	return Names;
}

/** Two tables and two text files that hold "Health". */
void Describe(FTestProject& Project)
{
	Project.Table("/Game/B/DT_Two", "RowTwo").Column("Health", "int");
	Project.Table("/Game/a/DT_One", "RowOne").Column("Health", "int");
	Project.File("Docs/a.txt", "Health").File("Docs/B.txt", "Health");
}

std::string RenderClasses(const FAssetSearchResult& Result)
{
	std::string Text;
	for (const FAssetResult& Asset : Result.Results)
		Text += (Text.empty() ? "'" : " '") + Asset.AssetClass.ToStdString() + "'";
	return Text;
}
}

TEST(AssetSearchService, SelectsFamilies)
{
	FTestProject Project;
	Describe(Project);
	const TCase<TArray<FString>> Cases[] = {
		{"none named: all, in path order without regard to case", {}, "DT_One DT_Two Docs/a.txt Docs/B.txt"},
		{"names ignore case", {"datatable"}, "DT_One DT_Two"},
		{"named twice: searched once", {"Text", "text"}, "Docs/a.txt Docs/B.txt"},
		{"unknown names select nothing", {"Tables", "DataTabl", ""}, ""},
		{"unknown names beside known ones", {"nonsense", "Text"}, "Docs/a.txt Docs/B.txt"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params;
		Params.Term = "Health";
		Params.IncludeAssetFamilies = Case.Given;
		EXPECT_EQ(RenderAssets(Project.Search(Params)), Case.Expected);
	}
}

TEST(AssetSearchService, CapsAssetsPerTypeAndInTotal)
{
	FTestProject Project;
	Describe(Project);
	const struct
	{
		const char* Why;
		int32 MaxPerType;
		int32 MaxTotal;
		const char* Expected;
	} Cases[] = {
		{"per type: the first to arrive of each type", 1, 200, "DT_One Docs/B.txt (truncated)"},
		{"a cap below one acts as one", -3, 200, "DT_One Docs/B.txt (truncated)"},
		{"exactly the cap is not truncated", 2, 200, "DT_One DT_Two Docs/a.txt Docs/B.txt"},
		{"in total: the first in path order, whoever came first", 25, 3, "DT_One DT_Two Docs/a.txt (truncated)"},
		{"below one: 200 assets and text files, but one hit for a family of assets", 25, -1, "DT_One Docs/a.txt Docs/B.txt"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params;
		Params.Term = "Health";
		Params.MaxHitsPerAssetType = Case.MaxPerType;
		Params.MaxTotalHits = Case.MaxTotal;
		EXPECT_EQ(RenderAssets(Project.Search(Params)), Case.Expected);
	}
}

TEST(AssetSearchService, FindsTwoHundredUnlessTold)
{
	FTestProject Project;
	for (int32 Index = 0; Index < 201; ++Index)
	{
		Project.File("Docs/" + std::to_string(Index) + ".txt", "lamp");
		Project.Header("/Game/M_Lamp" + std::to_string(Index), "/Script/Engine.Material");
	}
	const struct
	{
		const char* Why;
		TArray<FString> Families;
		int32 MaxTotal;
		int32 ExpectedNum;
		bool bExpectedTruncated;
	} Cases[] = {
		{"hits of a family, which nobody marks", {"Material"}, FAssetSearchParams().MaxTotalHits, 200, false},
		{"assets of two families", {"Material", "Text"}, FAssetSearchParams().MaxTotalHits, 200, true},
		{"a cap below one: files of the text family", {"Text"}, 0, 200, false},
		{"a cap below one: these and the one asset of another family", {"Material", "Text"}, -1, 200, true},
		{"no such cap", {"Material", "Text"}, 1000, 402, false},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FAssetSearchResult Found = Project.Search(
			{.Term = "lamp", .IncludeAssetFamilies = Case.Families, .MaxTotalHits = Case.MaxTotal, .MaxHitsPerAssetType = 1000});
		EXPECT_EQ(Found.Results.Num(), Case.ExpectedNum);
		EXPECT_EQ(Found.bTruncated, Case.bExpectedTruncated);
	}
}

TEST(AssetSearchService, EachFamilySaysItsClass)
{
	FTestProject Project;
	for (const char* const Class : {"AnimBlueprint", "BehaviorTree", "BlackboardData", "Blueprint", "DataTable", "EnvQuery",
			 "InputAction", "InputMappingContext", "Material", "MaterialFunction", "MaterialInstanceConstant", "NiagaraSystem",
			 "PrimaryDataAsset", "UserDefinedEnum", "UserDefinedStruct", "WidgetBlueprint"})
		Project.Asset(std::string("/Game/X_") + Class, Class);
	Project.Asset("/Game/X_MI", "MaterialInstanceConstant").Set("ScalarParameters", R"([{"Name": "X_", "Value": 1}])");
	Project.Asset("/Game/X_M", "Material").Set("ScalarParameters", R"([{"Name": "X_", "Value": 1}])");
	Project.File("a.txt", "X_");
	Project.File("Content/Found.vasset",
		R"({"varnel_package":1,"assets":[{"name":"Found","class":"/Script/Engine.AnimBlueprint"}],"blueprint_index":[)"
		R"({"category":"Var","text":"X_Entry"}],"objects":[]})");
	Project.Open();
	LoadPackage("/Game/X_NiagaraSystem");
	const struct
	{
		const char* Family;
		uint8 Mode; // of materials and particle systems
		const char* Expected;
	} Cases[] = {
		{"Blueprint", 0, "'Blueprint' 'AnimBlueprint' 'Blueprint' 'WidgetBlueprint'"}, // the first from the index: any Blueprint
		{"Text", 0, "'TextFile'"},
		{"BehaviorTree", 0, "'BehaviorTree'"},
		{"Blackboard", 0, "'Blackboard'"},
		{"Enum", 0, "'UserDefinedEnum'"},
		{"Struct", 0, "'UserDefinedStruct'"},
		{"DataAsset", 0, "'DataAsset' 'DataAsset' 'DataAsset'"},
		{"DataTable", 0, "'DataTable'"},
		{"EnvQuery", 0, "'EnvQuery'"},
		{"NiagaraSystem", 0, "'NiagaraSystem'"},
		{"NiagaraSystem", 1, "'NiagaraSystem'"},
		{"Material", 0, "'' '' '' '' ''"},
		{"Material", 1, "'Material' 'MaterialFunction' 'MaterialInstance'"},
	};
	auto& Settings = *UOrivaneSettings::StaticClass()->GetDefaultObject<UOrivaneSettings>();
	for (const auto& Case : Cases)
	{
		Settings.MaterialSearchMode = Settings.NiagaraSearchMode = Case.Mode;
		EXPECT_EQ(RenderClasses(Project.Search(Case.Family, "X_")), Case.Expected) << Case.Family << " " << int32{Case.Mode};
	}
}

TEST(AssetSearchService, WithoutFamiliesTheAnswerIsEmptyAndImmediate)
{
	FTestProject Project;
	Project.Open();
	FAssetSearchParams Params;
	Params.IncludeAssetFamilies = {"nonsense"};
	int32 NumReports = 0;
	UAssetSearchService::Get().AssetSearch(Params,
		[&](const FAssetSearchResult& Result)
		{
			++NumReports;
			EXPECT_TRUE(Result.Results.IsEmpty());
			EXPECT_FALSE(Result.bTruncated);
		});
	EXPECT_EQ(NumReports, 1);
}

TEST(AssetSearchService, InvariantsHoldForAnyProject)
{
	std::mt19937 Random(GetSeed());
	const auto Below = [&](int32 Limit) { return static_cast<int32>(Random() % static_cast<unsigned>(Limit)); };

	FTestProject Project;
	const char* Words[] = {"Health", "health", "MaxHEALTH", "Stamina", "Lamp"};
	for (int32 Index = 0; Index < 30; ++Index)
	{
		const std::string Name = std::string(Words[Below(5)]) + std::to_string(Index);
		if (Below(2))
			Project
				.Table("/Game/" + std::string(1, static_cast<char>('A' + Below(4))) + "/" + Name, "Row" + std::to_string(Index))
				.Column(Words[Below(5)], "int")
				.Rows(Below(30));
		else
			Project.File("Docs/" + Name + ".txt", Words[Below(5)]);
	}
	for (int32 Round = 0; Round < 40; ++Round)
	{
		FAssetSearchParams Params;
		if (Below(6))
			Params.Term = Words[Below(5)];
		else
			Params.IncludeAssetFamilies = GetFamiliesWithoutBlueprint(); // which never answers an empty term
		Params.bExact = Below(4) == 0;
		Params.bCaseSensitive = Below(2) == 0;
		Params.MaxTotalHits = Below(20) - 2;
		Params.MaxHitsPerAssetType = Below(20) - 2;
		const FAssetSearchResult Found = Project.Search(Params);
		EXPECT_LE(Found.Results.Num(), Params.MaxTotalHits > 0 ? Params.MaxTotalHits : 200);
		for (int32 Index = 1; Index < Found.Results.Num(); ++Index)
			EXPECT_FALSE(Found.Results[Index].AssetPath < Found.Results[Index - 1].AssetPath);
		for (const FAssetResult& Asset : Found.Results)
			EXPECT_FALSE(Asset.Hits.IsEmpty()) << *Asset.AssetPath;
		EXPECT_EQ(Render(Found), Render(Project.Search(Params))) << "the same question twice";
	}
}

TEST(AssetType, FollowsTheClassName)
{
	const struct
	{
		const char* ClassName;
		const char* Expected;
	} Cases[] = {
		{"blueprint", "Blueprint"},
		{"BlackboardData", "Blackboard"},
		{"PrimaryDataAsset", "DataAsset"},
		{"UserDefinedStruct", "Struct"},
		{"MaterialInstanceConstant", "Material"},
		{"TextFile", "Text"},
		{"StaticMesh", "uasset"},
		{"", "uasset"},
	};
	for (const auto& Case : Cases)
		EXPECT_EQ(AssetTypeFromClassName(Case.ClassName), FString(Case.Expected)) << Case.ClassName;
}
