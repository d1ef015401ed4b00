#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Support/TestProject.h"

TEST(EnumFamily, FindsEntries)
{
	FTestProject Project;
	Project.Asset("/Game/E_Tide", "UserDefinedEnum")
		.Set("Entries", R"([{"name": "Ebb", "display": "Falling water"}, {"name": "Slack", "display": "Slack"},
			{"name": "Flood", "display": "Rising water"}])");
	Project.Asset("/Game/E_Empty", "UserDefinedEnum");
	Project.Asset("/Game/E_Own", "UserDefinedEnum").Set("Entries", R"([{"name": "E_Own_MAX", "display": "Brim"}])");
	ExpectFound(Project, "Enum",
		{
			{"by display text", "rising", "E_Tide: ValueDisplayName Rising water @Values"},
			{"by internal name", "flood", "E_Tide: ValueInternalName E_Tide::Flood @Values"},
			{"by both, display text first", "slack",
				"E_Tide: ValueDisplayName Slack @Values; ValueInternalName E_Tide::Slack @Values"},
			{"the generated last entry", "y_max",
				"E_Empty: ValueDisplayName E_Empty_MAX @Values; ValueInternalName E_Empty::E_Empty_MAX @Values"},
			{"an entry called like the generated one stays", "own_",
				"E_Own: ValueInternalName E_Own::E_Own_MAX @Values x2; ValueDisplayName E_Own_MAX @Values"},
			{"entry by entry", "water", "E_Tide: ValueDisplayName Falling water @Values; ValueDisplayName Rising water @Values"},
		});
	FAssetSearchParams Params;
	Params.Term = "e_tide";
	Params.bExact = true;
	Params.IncludeAssetFamilies = {"Enum"};
	EXPECT_EQ(Render(Project.Search(Params)), "E_Tide: AssetName E_Tide @Enum") << "no entry is called just that";
}

TEST(StructFamily, FindsFieldsAndWhatTheStructureSays)
{
	FTestProject Project;
	Project.Asset("/Game/S_Wave", "UserDefinedStruct")
		.Set("Category", R"("Spawning")")
		.Set("MetaData", R"({"ToolTip": "Who walks out of the fog", "Other": "Unseen"})")
		.Set("Fields", R"([{"name": "Count_2_0FFC", "authored": "Head Count", "type": "int"},
			{"name": "Old_3_AAAA", "authored": "Old", "type": "int", "deprecated": true}])");
	Project.Asset("/Game/S_Boss", "UserDefinedStruct")
		.Set("SuperStruct", R"("/Game/S_Wave.S_Wave")")
		.Set("MetaData", R"({"Tooltip": ""})")
		.Set("Fields", R"([{"name": "Arena_5_8825", "authored": "Arena", "type": "array<struct</Game/S_Wave.S_Wave>>"}])");
	ExpectFound(Project, "Struct",
		{
			{"by parent, and the parent by its own name", "s_wave",
				"S_Boss: SuperStruct S_Wave @Struct | S_Wave: AssetName S_Wave @Struct"},
			{"by category", "spawning", "S_Wave: Category Spawning @Struct"},
			{"by tooltip, whatever the case of the key", "FOG", "S_Wave: Tooltip Who walks out of the fog @Struct"},
			{"other metadata is not read", "Unseen", ""},
			{"by internal name, with what the structure inherits", "_0ffc",
				"S_Boss: PropertyName Count_2_0FFC @Properties | S_Wave: PropertyName Count_2_0FFC @Properties"},
			{"the name as typed is not matched", "Head Count", ""},
			{"deprecated fields are left out", "Old_3", ""},
			{"by class of the field", "arrayproperty", "S_Boss: PropertyType ArrayProperty @Properties"},
			{"own fields first, then inherited ones", "e",
				"S_Boss: SuperStruct S_Wave @Struct; PropertyName Arena_5_8825 @Properties; PropertyType ArrayProperty "
				"@Properties; PropertyType IntProperty @Properties | S_Wave: Tooltip Who walks out of the fog @Struct; "
				"PropertyType IntProperty @Properties"},
		});
}

TEST(StructFamily, SurvivesCyclesOfParents)
{
	FTestProject Project;
	Project.Asset("/Game/S_A", "UserDefinedStruct").Set("SuperStruct", R"("/Game/S_B.S_B")");
	Project.Asset("/Game/S_B", "UserDefinedStruct").Set("SuperStruct", R"("/Game/S_A.S_A")");
	Project.Asset("/Game/S_Self", "UserDefinedStruct").Set("SuperStruct", R"("/Game/S_Self.S_Self")");
	EXPECT_EQ(Render(Project.Search("Struct", "S_")),
		"S_A: AssetName S_A @Struct | S_B: AssetName S_B @Struct | S_Self: AssetName S_Self @Struct");
	EXPECT_EQ(Project.Check(), "S_A.vasset error parent-cycle\nS_B.vasset error parent-cycle\nS_Self.vasset error parent-cycle");
}

/** Fields, columns and properties alike: place, name and type are shown, values are not read. */
TEST(StructFamily, ShowsTypesThatNothingDeclares)
{
	FTestProject Project;
	Project.Asset("/Game/S_Odd", "UserDefinedStruct")
		.Set("Fields", R"([{"name": "Shape_1", "authored": "Shape", "type": "struct</Game/S_Gone.S_Gone>"},
			{"name": "Count_2", "type": "int"}])");
	Project.Asset("/Game/DT_Odd", "DataTable")
		.Set("RowStruct", R"("/Game/S_Odd.S_Odd")")
		.Set("Rows", R"({"A": {"Shape_1": {"X": 1}, "Count_2": 3}})");
	Project.Asset("/Game/BP_Odd", "Blueprint")
		.Tags(R"("GeneratedClass": "/Game/BP_Odd.BP_Odd_C", "ParentClass": "/Script/Engine.DataAsset")")
		.Set("ParentClass", R"("/Script/Engine.DataAsset")")
		.Set("NewVariables", R"([{"name": "Shape", "type": "/Game/S_Gone.S_Gone", "default": "text"}])");
	Project.Asset("/Game/DA_Odd", "/Game/BP_Odd.BP_Odd_C").Set("Shape", "7");
	EXPECT_EQ(Render(Project.Search("Struct", "")),
		"S_Odd: PropertyName Shape_1 @Properties; PropertyType struct</Game/S_Gone.S_Gone> @Properties; PropertyName Count_2 "
		"@Properties; PropertyType IntProperty @Properties");
	EXPECT_EQ(
		Render(Project.Search("DataTable", "shape")), "DT_Odd: ColumnName Shape:struct</Game/S_Gone.S_Gone> @Schema/Columns");
	EXPECT_EQ(Render(Project.Search("DataAsset", "")), "DA_Odd: ClassName BP_Odd_C @Class; PropertyName Shape @Properties");
	EXPECT_EQ(Project.Check(),
		"BP_Odd.vasset warning unknown-type\nS_Odd.vasset warning no-such-package\nS_Odd.vasset warning unknown-type");
}

TEST(StructFamily, LendsItsStructuresToTables)
{
	FTestProject Project;
	Project.Asset("/Game/S_Row", "UserDefinedStruct")
		.Set("Fields", R"([{"name": "Price_2_BEEF", "authored": "Price", "type": "float"}])");
	Project.Asset("/Game/DT_Shop", "DataTable").Set("RowStruct", R"("/Game/S_Row.S_Row")").Set("Rows", R"({"Bread": {}})");
	ExpectFound(Project, "DataTable",
		{
			{"row structure", "S_Row", "DT_Shop: RowStruct S_Row @Schema"},
			{"column by the name as typed", "price", "DT_Shop: ColumnName Price:float @Schema/Columns"},
			{"not by its suffix", "BEEF", ""},
		});
}

namespace
{
/** A declared class and one made by a Blueprint from it, each with an asset that stores other values than the class declares. */
void AddWeapons(FTestProject& Project)
{
	Project.Script("Game", R"("enums": [{"name": "ESlot", "entries": [{"name": "Left"}, {"name": "Right"}]}], "classes": [
		{"name": "WeaponData", "super": "/Script/Engine.PrimaryDataAsset", "properties": [
			{"name": "Damage", "type": "int", "default": 100}, {"name": "Rate", "type": "float", "default": 0.5},
			{"name": "Weight", "type": "double", "default": 2}, {"name": "bHeavy", "type": "bool", "default": true},
			{"name": "Label", "type": "text", "default": "A pole"}, {"name": "Row", "type": "name", "default": "Pole"},
			{"name": "Note", "type": "string", "default": "Carved"}, {"name": "Tier", "type": "byte", "default": 200},
			{"name": "bSharp", "type": "bool"}, {"name": "bFalse", "type": "bool"}, {"name": "bBlunt", "type": "bool"},
			{"name": "Big", "type": "uint64", "default": 18446744073709551615},
			{"name": "Slot", "type": "enum</Script/Game.ESlot>", "default": "Right"},
			{"name": "ByteSlot", "type": "byte</Script/Game.ESlot>", "default": "Right"},
			{"name": "Marks", "type": "array<int>", "default": [77]}, {"name": "Owner", "type": "object</Script/Engine.Actor>"},
			{"name": "Gone", "type": "int", "default": 4711, "deprecated": true}]}])");
	Project.Asset("/Game/DA_Pole", "/Script/Game.WeaponData").Set("Damage", "25").Set("Note", R"("Own words")");
	Project.Asset("/Game/BP_Gun", "Blueprint")
		.Tags(R"("GeneratedClass": "/Game/BP_Gun.BP_Gun_C", "ParentClass": "/Script/Game.WeaponData")")
		.Set("ParentClass", R"("/Script/Game.WeaponData")")
		.Set("NewVariables", R"([{"name": "Shots", "type": "int", "default": 6}])");
}
}

TEST(DataAssetFamily, FindsWhatTheClassDeclares)
{
	FTestProject Project;
	AddWeapons(Project);
	ExpectFound(Project, "DataAsset",
		{
			{"by class", "weapondata", "DA_Pole: ClassName WeaponData @Class"},
			{"by property", "damage", "DA_Pole: PropertyName Damage @Properties"},
			{"by the class's default", "100", "DA_Pole: PropertyValue 100 @Properties"},
			{"not by the asset's own value", "25", ""},
			{"not by the asset's own text", "Own words", ""},
			{"fractions", "0.5", "DA_Pole: PropertyValue 0.5 @Properties"},
			{"at least one fractional digit", "2.0", "DA_Pole: PropertyValue 2.0 @Properties"},
			{"truth", "true", "DA_Pole: PropertyValue true @Properties"},
			{"and its opposite", "false", "DA_Pole: PropertyValue false @Properties x3; PropertyName bFalse @Properties"},
			{"text, then a name", "pole", "DA_Pole: PropertyValue A pole @Properties; PropertyValue Pole @Properties"},
			{"string", "carved", "DA_Pole: PropertyValue Carved @Properties"},
			{"byte", "200", "DA_Pole: PropertyValue 200 @Properties"},
			{"also one with an enumeration", "1",
				"DA_Pole: PropertyValue 100 @Properties; PropertyValue -1 @Properties; PropertyValue 1 @Properties; "
				"PropertyValue 4711 @Properties"},
			{"large unsigned numbers print as signed ones", "-1", "DA_Pole: PropertyValue -1 @Properties"},
			{"deprecated properties count", "4711", "DA_Pole: PropertyValue 4711 @Properties"},
			{"enumerations by name only; an entry's word is nowhere", "Right", ""},
			{"but its name, and the byte's number is a value", "Slot",
				"DA_Pole: PropertyName Slot @Properties; PropertyName ByteSlot @Properties"},
			{"arrays have no value text", "77", ""},
			{"name and value are two hits, in the order of declaration", "ow",
				"DA_Pole: PropertyName Row @Properties; PropertyName Owner @Properties"},
		});
	FAssetSearchParams Params = MakeParams("DataAsset", "false");
	Params.MaxTotalHits = 2;
	EXPECT_EQ(Render(Project.Search(Params)), "DA_Pole: PropertyValue false @Properties x2; PropertyName bFalse @Properties")
		<< "the hit cap ends the properties, after the value of the one that reaches it";
}

TEST(DataAssetFamily, ReadsClassesMadeByBlueprints)
{
	FTestProject Project;
	AddWeapons(Project);
	Project.Asset("/Game/DA_Gun", "/Game/BP_Gun.BP_Gun_C").Set("Shots", "2");
	ExpectFound(Project, "DataAsset",
		{
			{"the generated class by its name", "BP_Gun", "DA_Gun: ClassName BP_Gun_C @Class"},
			{"its own variable by name", "Shots", "DA_Gun: PropertyName Shots @Properties"},
			{"and by default, not by the asset's value", "6", "DA_Gun: PropertyValue 6 @Properties"},
			{"defaults are inherited", "100", "DA_Gun: PropertyValue 100 @Properties | DA_Pole: PropertyValue 100 @Properties"},
		});
}

TEST(DataAssetFamily, NamesInputAssets)
{
	FTestProject Project;
	Project.Asset("/Game/IA_Jump", "InputAction");
	Project.Asset("/Game/IMC_Jump", "InputMappingContext");
	Project.Asset("/Game/DA_Jump", "PrimaryDataAsset");
	ExpectFound(Project, "DataAsset",
		{
			{"each by its kind, the name alone only where nothing else matched", "jump",
				"DA_Jump: AssetName DA_Jump @DataAsset | IA_Jump: InputAction IA_Jump @Action | IMC_Jump: InputMappingContext "
				"IMC_Jump @MappingContext"},
			{"kind before class", "i",
				"DA_Jump: ClassName PrimaryDataAsset @Class | IA_Jump: InputAction IA_Jump @Action; ClassName InputAction @Class "
				"| IMC_Jump: InputMappingContext IMC_Jump @MappingContext; ClassName InputMappingContext @Class"},
		});
}

TEST(ObjectFamilies, NamesMayHoldMarks)
{
	FTestProject Project;
	Project.Asset("/Game/It's & more!/It's", "Blueprint")
		.Tags(R"("GeneratedClass": "Class'/Game/It's & more!/It's.It's_C'", "ParentClass": "Class'/Script/Engine.DataAsset'")")
		.Set("ParentClass", R"("Class'/Script/Engine.DataAsset'")")
		.Set("NewVariables", R"([{"name": "Tide", "type": "array<class</Game/It's & more!/It's.It's_C>>"}])");
	Project.Asset("/Game/~Tom,Bob'/DA'", "/Game/It's & more!/It's.It's_C");
	Project.Links("/Game/~Tom,Bob'/User", {"User World"}, {"/Game/~Tom,Bob'/DA'"});
	ExpectFound(
		Project, "DataAsset", {{"by class and property", "t", "DA': ClassName It's_C @Class; PropertyName Tide @Properties"}});
	EXPECT_EQ(Project.Search("DataAsset", "t").Results[0].AssetPath, "/Game/~Tom,Bob'/DA'.DA'");
	EXPECT_EQ(OrivaneAssetRegistryUtils::GetAssetByPath("It's_C'/Game/~Tom,Bob'/DA'.DA''").AssetName, FName("DA'"));
	EXPECT_EQ(OrivaneAssetRegistryUtils::GetAssetRegistry()->GetNumReferencers("/Game/~Tom,Bob'/DA'"), 1);
	EXPECT_EQ(Project.Check(), "");
}

TEST(ObjectFamilies, LoadEachAssetOnceAndKeepIt)
{
	FTestProject Project;
	for (int32 Index = 0; Index < 300; ++Index)
		Project.Asset("/Game/E_" + std::to_string(Index), "UserDefinedEnum").Set("Entries", R"([{"name": "Found"}])");
	FAssetSearchParams Params = MakeParams("Enum", "::Found");
	Params.MaxTotalHits = 1000;
	Params.MaxHitsPerAssetType = 1000;
	const std::string First = Render(Project.Search(Params));
	EXPECT_EQ(std::count(First.begin(), First.end(), '|'), 299);
	for (int32 Index = 0; Index < 300; ++Index)
		Project.GetFolder().Remove("Content/E_" + std::to_string(Index) + ".vasset");
	EXPECT_EQ(Render(Project.Search(Params)), First) << "the objects are in memory";
}
