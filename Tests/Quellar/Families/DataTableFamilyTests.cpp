#include "Support/TestProject.h"

TEST(DataTableFamily, FindsPartsOfTheSchema)
{
	FTestProject Project;
	Project.Table("/Game/Data/DT_Weapons", "WeaponRow").Column("Damage", "float").Column("Name", "string").Rows(3);
	Project.Table("/Game/Data/DT_NoStruct").Rows(12);

	ExpectFound(Project, "DataTable",
		{
			{"by row structure", "weaponrow", "DT_Weapons: RowStruct WeaponRow @Schema"},
			{"by column name", "damage", "DT_Weapons: ColumnName Damage:float @Schema/Columns"},
			{"by column type", "float", "DT_Weapons: ColumnName Damage:float @Schema/Columns"},
			{"row structure before columns", "a",
				"DT_Weapons: RowStruct WeaponRow @Schema; ColumnName Damage:float @Schema/Columns; ColumnName Name:string "
				"@Schema/Columns"},
			{"own name only when nothing else matched", "DT_Weap", "DT_Weapons: AssetName DT_Weapons @DataTable"},
			{"row count is text: 12 holds a 2", "2", "DT_NoStruct: RowCount 12 @Rows"},
			{"a table without a row structure", "DT_No", "DT_NoStruct: AssetName DT_NoStruct @DataTable"},
			{"the joined column text itself is not matched", "Damage:float", ""},
		});
}

TEST(DataTableFamily, NamesColumnTypes)
{
	constexpr std::pair<const char*, const char*> Types[] = {{"string", "string"}, {"name", "FName"}, {"text", "FText"},
		{"int8", "int"}, {"uint64", "int"}, {"byte", "int"}, {"float", "float"}, {"double", "float"}, {"bool", "bool"},
		{"object</Script/Engine.Actor>", "UObject"}, {"lazy_object</Script/Engine.Actor>", "UObject"},
		{"soft_class</Script/Engine.Actor>", "UObject"}, {"class</Script/Engine.Actor>", "UObject"},
		{"interface</Script/Engine.Actor>", "InterfaceProperty"}, {"struct</Script/Test.Inner>", "UStruct"},
		{"array<int>", "TArray"}, {"map<name,int>", "TMap"}, {"set<int>", "TSet"}, {"delegate", "DelegateProperty"},
		// Nothing declares these.
		{"vector", "vector"}, {"array< struct</Game/S_Gone.S_Gone>>", "array< struct</Game/S_Gone.S_Gone>>"},
		{"enum</Script/Test.EGone>", "enum</Script/Test.EGone>"}};
	FTestProject Project;
	Project.Table("/Game/DT_Inner", "Inner").Column("Unused", "int");
	std::string Expected;
	int32 Number = 10; // names of one length come in order
	for (const auto& [Type, Name] : Types)
	{
		const std::string Id = std::to_string(Number++);
		Project.Table("/Game/DT_" + Id, "Row" + Id).Column("Column", Type);
		Expected += (Expected.empty() ? "DT_" : " | DT_") + Id + ": ColumnName Column:" + Name + " @Schema/Columns";
	}
	EXPECT_EQ(Render(Project.Search("DataTable", "Column")), Expected);
}

TEST(DataTableFamily, EnumColumnsDependOnTheirProperty)
{
	FTestProject Project;
	Project.File("Script/Kinds.vscript",
		R"({"varnel_script": 1, "enums": [{"name": "EKind", "entries": [{"name": "One", "display": "One"}]}]})");
	Project.Table("/Game/DT_A", "RowA")
		.Column("AsEnum", "enum</Script/Kinds.EKind>")
		.Column("AsByte", "byte</Script/Kinds.EKind>");
	EXPECT_EQ(Render(Project.Search("DataTable", "AsEnum")), "DT_A: ColumnName AsEnum:enum @Schema/Columns");
	EXPECT_EQ(Render(Project.Search("DataTable", "AsByte")), "DT_A: ColumnName AsByte:int @Schema/Columns")
		<< "byte-sized enumerations are numeric";
}

TEST(DataTableFamily, ReadsTenColumns)
{
	FTestProject Project;
	FTestTable& Table = Project.Table("/Game/DT_Wide", "WideRow");
	for (int32 Column = 1; Column <= 15; ++Column)
		Table.Column("Field" + std::to_string(Column) + "_", Column == 3 ? "struct</Script/Test.Gone>" : "int");
	EXPECT_EQ(Render(Project.Search("DataTable", "Field10_")), "DT_Wide: ColumnName Field10_:int @Schema/Columns");
	EXPECT_EQ(Render(Project.Search("DataTable", "Field11_")), "") << "a column of an undeclared type is one of the ten";
}

TEST(DataTableFamily, FiltersByFolderAndExclusion)
{
	FTestProject Project;
	Project.Table("/Game/Data/DT_A", "RowA").Column("Health", "int");
	Project.Table("/Game/UI/DT_B", "RowB").Column("Health", "int");
	Project.Table("/Game/Saved/DT_C", "RowC").Column("Health", "int");

	const struct
	{
		const char* Why;
		const char* PathContains;
		bool bCaseSensitive;
		bool bExact;
		const char* Expected;
	} Cases[] = {
		{"no filter; an excluded folder stays out", "", false, false, "DT_A DT_B"},
		{"part of the folder, any case", "/game/data", false, false, "DT_A"},
		{"the search's case counts", "/game/data", true, false, ""},
		{"the asset's own name is no folder", "DT_A", false, false, ""},
		{"the filter is a contains test in exact mode too", "Data", false, true, "DT_A"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params = MakeParams("DataTable", "Health");
		Params.PathContains = Case.PathContains;
		Params.bCaseSensitive = Case.bCaseSensitive;
		Params.bExact = Case.bExact;
		EXPECT_EQ(RenderAssets(Project.Search(Params)), Case.Expected);
	}
}

TEST(DataTableFamily, NamesAssetsAsTheRegistryDoes)
{
	FTestProject Project;
	Project.File("Content/DT_Items.vasset",
		R"({"varnel_package": 1, "assets": [{"name": "DT_ITEMS", "class": "/Script/Engine.DataTable"}],)"
		R"("objects": [{"path": "DT_items", "class": "/Script/Engine.DataTable", "properties": {}}]})");
	EXPECT_EQ(Render(Project.Search("DataTable", "items")), "DT_ITEMS: AssetName DT_ITEMS @DataTable");
}

TEST(DataTableFamily, StopsAtTheHitCap)
{
	FTestProject Project;
	Project.Table("/Game/DT_A", "RowA").Column("Health", "int").Column("HealthMax", "int").Column("HealthMin", "int");
	Project.Table("/Game/DT_B", "RowB").Column("Health", "int");
	FAssetSearchParams Params = MakeParams("DataTable", "Health");
	Params.MaxTotalHits = 2;
	EXPECT_EQ(
		Render(Project.Search(Params)), "DT_A: ColumnName Health:int @Schema/Columns; ColumnName HealthMax:int @Schema/Columns")
		<< "later columns and tables are not read, the table in hand is kept";
}

TEST(DataTableFamily, ReadsTablesInsideOthersButNoHiddenOnes)
{
	FTestProject Project;
	Project.File("Content/BP_Shop.vasset",
		R"({"varnel_package": 1, "assets": [{"name": "BP_Shop", "class": "/Script/Engine.Blueprint"},
			{"name": "DT_Wares", "class": "/Script/Engine.DataTable", "outer": "/Game/BP_Shop.BP_Shop"},
			{"name": "DT_Wares", "class": "/Script/Engine.DataTable", "outer": "/Game/BP_Shop.BP_Shop:Shelf"},
			{"name": "DT_Hidden", "class": "/Script/Engine.DataTable", "registry_filtered": true}],
			"objects": [{"path": "BP_Shop", "class": "/Script/Engine.Blueprint"},
			{"path": "BP_Shop:DT_Wares", "class": "/Script/Engine.DataTable", "properties": {"Rows": {"One": {}}}},
			{"path": "BP_Shop:Shelf", "class": "/Script/Engine.DataTable"},
			{"path": "BP_Shop:Shelf.DT_Wares", "class": "/Script/Engine.DataTable", "properties": {"Rows": {"A": {}, "B": {}}}},
			{"path": "DT_Hidden", "class": "/Script/Engine.DataTable"}]})");
	const FAssetSearchResult Found = Project.Search("DataTable", "");
	EXPECT_EQ(Render(Found), "BP_Shop:DT_Wares: RowCount 1 @Rows | DT_Wares: RowCount 2 @Rows");
	ASSERT_EQ(Found.Results.Num(), 2);
	EXPECT_EQ(Found.Results[0].AssetPath.View(), "/Game/BP_Shop.BP_Shop:DT_Wares");
	EXPECT_EQ(Found.Results[1].AssetPath.View(), "/Game/BP_Shop.BP_Shop:Shelf.DT_Wares");
}
