#include "OrivaneToolkit/OrivaneSettings.h"
#include "Support/TestProject.h"

namespace
{
void SetMode(uint8 Mode)
{
	UOrivaneSettings::StaticClass()->GetDefaultObject<UOrivaneSettings>()->MaterialSearchMode = Mode;
}

/** A master material, an instance of an instance, a function. */
void Describe(FTestProject& Project)
{
	Project.Material("/Game/Mat/M_Wall")
		.Scalar("Wetness", "2")
		.Scalar("Roughness", "0.1")
		.Scalar("Hidden", "null")
		.Vector("Tint", R"({"R": 1, "G": 0.5, "B": 0, "A": 1})")
		.Texture("BaseColour");
	Project.MaterialInstance("/Game/Mat/MI_Wet", "/Game/Mat/M_Wall").Scalar("Wetness", "0.25").Scalar("Drops", "7.5");
	Project.MaterialInstance("/Game/Quay/MI_Quay", "/Game/Mat/MI_Wet");
	Project.Material("/Game/Mat/MF_Edges", "/Script/Engine.MaterialFunction");
}
}

TEST(MaterialFamily, MatchesNamesAloneWithoutLoading)
{
	FTestProject Project;
	Describe(Project);
	Project.Header("/Game/Mat/M_NoBody", "/Script/Engine.Material");
	Project.Header("/Game/Mat/MI_Plain", "/Script/Engine.MaterialInstance");
	Project.Material("/Game/Saved/M_Backup");
	ExpectFound(Project, "Material",
		{
			{"every class of the family under one container", "M",
				"M_NoBody: AssetName M_NoBody @Material | M_Wall: AssetName M_Wall @Material | MF_Edges: AssetName MF_Edges "
				"@Material "
				"| MI_Wet: AssetName MI_Wet @Material | MI_Quay: AssetName MI_Quay @Material"},
			{"no parameters", "Wetness", ""},
			{"no folders", "Quay/", ""},
		});
	EXPECT_EQ(FindPackage("/Game/Mat/M_Wall"), nullptr);
}

TEST(MaterialFamily, LoadsParentsAndParameters)
{
	FTestProject Project;
	Describe(Project);
	Project.Open();
	SetMode(1);
	ExpectFound(Project, "Material",
		{
			{"a parameter is found in every instance; the parent's name comes first", "wet",
				"M_Wall: ScalarParameter Wetness @Material/Parameters | MI_Wet: ScalarParameter Wetness @Material/Parameters | "
				"MI_Quay: Parent MI_Wet @Material/Parent; ParentPath /Game/Mat/MI_Wet.MI_Wet @Material/Parent; ScalarParameter "
				"Wetness @Material/Parameters"},
			{"the value in force, which an instance may override", "2.0", "M_Wall: ScalarValue 2.0 @Material/Parameters"},
			{"inherited values", "0.25",
				"MI_Wet: ScalarValue 0.25 @Material/Parameters | MI_Quay: ScalarValue 0.25 @Material/Parameters"},
			{"a 32-bit 0.1 reads 0.1", "0.1",
				"M_Wall: ScalarValue 0.1 @Material/Parameters | MI_Wet: ScalarValue 0.1 @Material/Parameters | MI_Quay: "
				"ScalarValue "
				"0.1 @Material/Parameters"},
			{"a value that cannot be read leaves the name", "Hidden",
				"M_Wall: ScalarParameter Hidden @Material/Parameters | MI_Wet: ScalarParameter Hidden @Material/Parameters | "
				"MI_Quay: ScalarParameter Hidden @Material/Parameters"},
			{"colours", "R=1.000 G=0.500 B=0.000 A=1.000",
				"M_Wall: VectorValue R=1.000 G=0.500 B=0.000 A=1.000 @Material/Parameters | MI_Wet: VectorValue R=1.000 G=0.500 "
				"B=0.000 A=1.000 @Material/Parameters | MI_Quay: VectorValue R=1.000 G=0.500 B=0.000 A=1.000 "
				"@Material/Parameters"},
			{"textures by parameter", "BaseCol",
				"M_Wall: TextureParameter BaseColour @Material/Parameters | MI_Wet: TextureParameter BaseColour "
				"@Material/Parameters | MI_Quay: TextureParameter BaseColour @Material/Parameters"},
			{"the parent's folder", "/Game/Mat/MI", "MI_Quay: ParentPath /Game/Mat/MI_Wet.MI_Wet @Material/Parent"},
			{"a material's own name is no hit", "MI_Quay", ""},
			{"a function's own name is", "MF_", "MF_Edges: AssetName MF_Edges @MaterialFunction"},
		});
}

TEST(MaterialFamily, FindsWhatEachMaterialOfALongLineHas)
{
	FTestProject Project;
	const auto PathOf = [](int32 Level) { return "/Game/L" + std::to_string(Level) + "/M" + std::to_string(Level); };
	Project.Material(PathOf(0)).Scalar("A", "1").Scalar("B", "2").Scalar("C", "3");
	for (int32 Level = 1; Level < 150; ++Level)
	{
		FTestMaterial& Instance = Project.MaterialInstance(PathOf(Level), PathOf(Level - 1));
		if (Level == 70 || Level == 130)
			Instance.Scalar("b", Level == 70 ? "42" : "7");
		if (Level == 100)
			Instance.Scalar("D", "42").Scalar("C", "42");
	}
	Project.Open();
	SetMode(1);
	const std::string B = "ScalarParameter B @Material/Parameters; ScalarValue 42.0 @Material/Parameters";
	const struct
	{
		int32 Level;
		const char* Term;
		std::string Expected;
	} Cases[] = {
		{149, "42.0", "M149: ScalarValue 42.0 @Material/Parameters x2"},
		{110, "42.0", "M110: ScalarValue 42.0 @Material/Parameters x3"},
		{99, "42.0", "M99: ScalarValue 42.0 @Material/Parameters"},
		{69, "42.0", ""},
		{69, "2.0", "M69: ScalarValue 2.0 @Material/Parameters"},
		{140, "7.0", "M140: ScalarValue 7.0 @Material/Parameters"},
		{110, "",
			"M110: Parent M109 @Material/Parent; ParentPath /Game/L109/M109.M109 @Material/Parent; ScalarParameter A "
			"@Material/Parameters; ScalarValue 1.0 @Material/Parameters; " +
				B + " x3; ScalarParameter C @Material/Parameters; ScalarParameter D @Material/Parameters"},
	};
	for (const auto& Case : Cases)
	{
		FAssetSearchParams Params = MakeParams("Material", Case.Term);
		Params.MaxHitsPerAssetType = 1000;
		Params.PathContains = ("/Game/L" + std::to_string(Case.Level)).c_str();
		EXPECT_EQ(Render(Project.Search(Params)), Case.Expected) << Case.Level << " " << Case.Term;
		FAssetSearchParams Everywhere = Params;
		Everywhere.PathContains = "";
		Everywhere.MaxTotalHits = 10000;
		const std::string All = Render(Project.Search(Everywhere));
		const std::string Own = Case.Expected.empty() ? "M" + std::to_string(Case.Level) + ":" : Case.Expected;
		EXPECT_EQ(All.find(Own) != std::string::npos, !Case.Expected.empty()) << "beside all others: " << Own;
	}
}

TEST(MaterialFamily, FollowsTheSettingAtEachSearch)
{
	FTestProject Project;
	Describe(Project);
	Project.Settings("[/Script/OrivaneToolkit.OrivaneSettings]\nMaterialSearchMode=1");
	EXPECT_EQ(RenderAssets(Project.Search("Material", "Drops")), "MI_Wet MI_Quay") << "from the project's file";
	SetMode(0);
	EXPECT_EQ(RenderAssets(Project.Search("Material", "Drops")), "");
	EXPECT_EQ(RenderAssets(Project.Search("Material", "M_Wall")), "M_Wall");
	for (const uint8 Other : {uint8{2}, uint8{255}})
	{
		SetMode(Other);
		EXPECT_EQ(RenderAssets(Project.Search("Material", "")), "") << int32{Other};
	}
}

TEST(MaterialFamily, StopsAtTheHitCap)
{
	FTestProject Project;
	Project.Material("/Game/M_A").Scalar("WetA", "1").Scalar("WetB", "1").Vector("WetC", "null").Texture("WetD");
	Project.MaterialInstance("/Game/M_B_Wet", "/Game/M_A");
	Project.MaterialInstance("/Game/M_C", "/Game/M_B_Wet");
	Project.Open();
	SetMode(1);
	const struct
	{
		int32 MaxTotal;
		const char* Expected;
	} Cases[] = {
		{1, "M_A: ScalarParameter WetA @Material/Parameters"},
		{3,
			"M_A: ScalarParameter WetA @Material/Parameters; ScalarParameter WetB @Material/Parameters; VectorParameter WetC "
			"@Material/Parameters"},
		{5,
			"M_A: ScalarParameter WetA @Material/Parameters; ScalarParameter WetB @Material/Parameters; VectorParameter WetC "
			"@Material/Parameters; TextureParameter WetD @Material/Parameters | M_B_Wet: ScalarParameter WetA "
			"@Material/Parameters"},
	};
	for (const auto& Case : Cases)
	{
		FAssetSearchParams Params = MakeParams("Material", "Wet");
		Params.MaxTotalHits = Case.MaxTotal;
		EXPECT_EQ(Render(Project.Search(Params)), Case.Expected) << Case.MaxTotal;
	}
	FAssetSearchParams Params = MakeParams("Material", "M_B");
	Params.MaxTotalHits = 1;
	EXPECT_EQ(Render(Project.Search(Params)), "M_C: Parent M_B_Wet @Material/Parent");
}

TEST(MaterialFamily, SurvivesWhatIsFaulty)
{
	FTestProject Project;
	Project.MaterialInstance("/Game/MI_1", "/Game/MI_2").Scalar("Old", "1");
	Project.MaterialInstance("/Game/MI_2", "/Game/MI_1").Scalar("B", "2");
	Project.MaterialInstance("/Game/MI_3", "/Game/MI_3").Scalar("Old", "3").Scalar("Old", "4");
	Project.MaterialInstance("/Game/MI_4", "/Game/MI_Gone").Scalar("Old", "1e39").Scalar("C", "-0.0000001");
	Project.Material("/Game/M_5").Scalar("Old", "1e999").Vector("V", R"({"R": 3e38, "B": 1e39})");
	Project.Objects("/Game/M_6", "/Script/Engine.Material", R"({"path": "M_6", "class": "/Script/Engine.StaticMesh"})");
	for (int32 Level = 1; Level <= 200; ++Level)
		Project.MaterialInstance("/Game/Deep/D_" + std::to_string(Level), "/Game/Deep/D_" + std::to_string(Level - 1))
			.Scalar("D" + std::to_string(Level) + "_", "1");
	Project.Open();
	SetMode(1);
	const TCase<> Cases[] = {
		{"cycles, a parent that is gone, values out of range", "Old",
			"M_5: ScalarParameter Old @Material/Parameters | MI_1: ScalarParameter Old @Material/Parameters | MI_3: "
			"ScalarParameter Old @Material/Parameters | MI_4: ScalarParameter Old @Material/Parameters"},
		{"its own parent", "MI_3", "MI_3: Parent MI_3 @Material/Parent"},
		{"huge and unreadable channels", "R=300000000549775575777803994281145270272.000 G=0.000 B=0.000 A=1.000",
			"M_5: VectorValue R=300000000549775575777803994281145270272.000 G=0.000 B=0.000 A=1.000 @Material/Parameters"},
		{"a tiny number has no sign", "0.0", "MI_4: ScalarValue 0.0 @Material/Parameters"},
		{"the first of a repeated name", "3.0", "MI_3: ScalarValue 3.0 @Material/Parameters"},
		{"", "4.0", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params = MakeParams("Material", Case.Given);
		Params.bExact = true;
		EXPECT_EQ(Render(Project.Search(Params)), Case.Expected);
	}
	FAssetSearchParams Deep = MakeParams("Material", "D100_");
	Deep.MaxHitsPerAssetType = 200;
	EXPECT_EQ(Project.Search(Deep).Results.Num(), 101) << "D_100 and all levels below it";
}
