#include "CoreObject/Packages/Loader.h"
#include "OrivaneToolkit/OrivaneSettings.h"
#include "Project/PackageMemory.h"
#include "Support/TestProject.h"

namespace
{
void SetMode(uint8 Mode)
{
	UOrivaneSettings::StaticClass()->GetDefaultObject<UOrivaneSettings>()->NiagaraSearchMode = Mode;
}

void Load(const FString& Path)
{
	PackageMemory::FLoaded Loaded;
	FString Error;
	EXPECT_TRUE(PackageMemory::Load(Path, Loaded, Error)) << *Error;
}

FTestNiagaraSystem& Describe(FTestProject& Project)
{
	Project.File("Script/FX.vscript",
		R"({"varnel_script": 1, "classes": [{"name": "SpriteRenderer", "super": "/Script/Engine.NiagaraRendererProperties"},
		{"name": "EffectKind", "super": "/Script/Engine.PrimaryDataAsset"}], "structs": [{"name": "Colour", "properties": []}]})");
	Project.Objects("/Game/ET_Fire", "/Script/FX.EffectKind", R"({"path": "ET_Fire", "class": "/Script/FX.EffectKind"})");
	return Project.NiagaraSystem("/Game/FX/NS_Sparks")
		.EffectType("/Game/ET_Fire.ET_Fire")
		.Emitter("Glow")
		.Renderer("GlowSprite", "/Script/FX.SpriteRenderer")
		.Renderer("Empty", "")
		.Renderer("GlowHalo", "/Script/FX.SpriteRenderer")
		.Handle("Lost", "null")
		.UserParameter("User.Tint", "/Script/FX.Colour")
		.UserParameter("User.Rate")
		.UserParameter("User.Target", "/Game/BP_Lamp.BP_Lamp_C");
}
}

TEST(NiagaraFamily, MatchesNamesAloneWithoutLoading)
{
	FTestProject Project;
	Describe(Project);
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "spark")), "NS_Sparks: AssetName NS_Sparks @Niagara");
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "Glow")), "");
	EXPECT_EQ(FindPackage("/Game/FX/NS_Sparks"), nullptr);
}

TEST(NiagaraFamily, ReadsSystemsInMemory)
{
	FTestProject Project;
	Describe(Project);
	Project.Open();
	SetMode(1);
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), "") << "nothing is in memory, not even a name is reported";
	EXPECT_EQ(FindPackage("/Game/FX/NS_Sparks"), nullptr);

	Load("/Game/FX");
	ExpectFound(Project, "NiagaraSystem",
		{
			{"everything, in order", "",
				"NS_Sparks: EffectType ET_Fire @Niagara; EmitterName Glow @Niagara/Emitter; RendererName GlowSprite "
				"@Niagara/Renderer; RendererType SpriteRenderer @Niagara/Renderer x2; RendererName GlowHalo @Niagara/Renderer; "
				"EmitterName Lost @Niagara/Emitter; UserParamName User.Tint @Niagara/UserParameters; UserParamType Colour "
				"@Niagara/UserParameters; UserParamName User.Rate @Niagara/UserParameters; UserParamType Invalid "
				"@Niagara/UserParameters x2; UserParamName User.Target @Niagara/UserParameters"},
			{"a type that is no class or structure", "invalid", "NS_Sparks: UserParamType Invalid @Niagara/UserParameters x2"},
			{"the own name only when nothing else matched", "NS_", "NS_Sparks: AssetName NS_Sparks @Niagara"},
		});
	EXPECT_EQ(FindPackage("/Game/ET_Fire"), nullptr) << "reading a system loads nothing";
	SetMode(2);
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), "");
}

TEST(NiagaraFamily, ResolvesReferencesByTheRegistryWhateverIsInMemory)
{
	const struct
	{
		const char* Why;
		const char* Path;
		const char* Type;	// what a user parameter shows
		const char* Effect; // what the system shows as its effect type
	} Cases[] = {
		{"a declared structure", "/Script/FX.Colour", "Colour", "Colour"},
		{"nothing declares it", "/Script/FX.Gone", "Invalid", ""},
		{"the class of a Blueprint, spelled like its file", "/game/types/bp_lamp.BP_LAMP_c", "BP_Lamp_C", "BP_Lamp_C"},
		{"a Blueprint is no class itself", "/Game/Types/BP_Lamp.BP_Lamp", "Invalid", "BP_Lamp"},
		{"an asset without a class of its own", "/Game/Types/ET.ET_C", "Invalid", ""},
		{"a structure that is an asset", "/Game/Types/S_Tint.S_Tint", "S_Tint", "S_Tint"},
		{"an asset of another class", "/Game/Types/ET.ET", "Invalid", "ET"},
		{"no such package", "/Game/Types/Gone.Gone", "Invalid", ""},
		{"no such asset in the package", "/Game/Types/ET.Gone", "Invalid", ""},
		{"of a class that nothing declares", "/Game/Types/ET_Odd.ET_Odd", "Invalid", ""},
		{"of a Blueprint's class", "/Game/Types/ET_Made.ET_Made", "Invalid", "ET_Made"},
		{"of a class that no Blueprint makes", "/Game/Types/ET_Lost.ET_Lost", "Invalid", ""},
		{"an asset inside an asset", "/Game/Types/ET.ET:Listed", "Invalid", "Listed"},
		{"an object inside an asset that the registry does not list", "/Game/Types/ET.ET:Inner", "Invalid", ""},
		{"the registry's word counts where the body has another class", "/Game/Types/Liar.Liar", "Liar", "Liar"},
		{"an object in the system's own package", "NS_Asks:Inner", "Invalid", "Inner"},
		{"no object in the system's own package", "NS_Asks:Gone", "Invalid", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		FTestProject Project;
		Describe(Project);
		Project.Asset("/Game/Types/BP_Lamp", "Blueprint").Set("ParentClass", R"("/Script/Engine.DataAsset")");
		Project.Asset("/Game/Types/S_Tint", "UserDefinedStruct");
		Project.File(
			"Content/Types/ET.vasset", R"({"varnel_package": 1, "assets": [{"name": "ET", "class": "/Script/FX.EffectKind"},
			{"name": "Listed", "class": "/Script/FX.EffectKind", "outer": "/Game/Types/ET.ET"}],
			"objects": [{"path": "ET", "class": "/Script/FX.EffectKind"}, {"path": "ET:Inner", "class": "/Script/FX.EffectKind"},
			{"path": "ET:Listed", "class": "/Script/FX.EffectKind"}]})");
		Project.Objects(
			"/Game/Types/Liar", "/Script/Engine.UserDefinedStruct", R"({"path": "Liar", "class": "/Script/FX.EffectKind"})");
		Project.Asset("/Game/Types/ET_Odd", "/Script/FX.Undeclared");
		Project.Asset("/Game/Types/ET_Made", "/Game/Types/BP_Lamp.BP_Lamp_C");
		Project.Asset("/Game/Types/ET_Lost", "/Game/Types/BP_Gone.BP_Gone_C");
		Project.Asset("/Game/NS_Asks", "NiagaraSystem")
			.Inner("Inner", "/Script/Engine.DataAsset")
			.Set("EffectType", '"' + std::string(Case.Path) + '"')
			.Set("UserParameters", R"([{"Name": "P", "Type": ")" + std::string(Case.Path) + R"("}])");
		Project.Open();
		SetMode(1);
		Load("/Game/NS_Asks");
		const std::string Effect = *Case.Effect ? std::string("EffectType ") + Case.Effect + " @Niagara; " : "";
		const std::string Expected = "NS_Asks: " + Effect + "UserParamName P @Niagara/UserParameters; UserParamType " +
			Case.Type + " @Niagara/UserParameters";
		EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), Expected);
		EXPECT_EQ(FindPackage("/Game/Types/ET"), nullptr) << "nothing is loaded";

		Load("/Game/Types");
		EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), Expected) << "with all of it in memory";
		PackageMemory::Forget();
		UnloadAllLoadedPackages();
		Load("/Game/Types");
		Load("/Game/NS_Asks");
		EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), Expected) << "in memory when the system was read";
	}
}

TEST(NiagaraFamily, StopsAtTheHitCap)
{
	FTestProject Project;
	Describe(Project);
	Project.NiagaraSystem("/Game/FX/NS_Then").Emitter("GlowThen");
	Project.Open();
	SetMode(1);
	Load("/Game/FX/");
	const struct
	{
		int32 MaxTotal;
		const char* Expected;
	} Cases[] = {
		{1, "NS_Sparks: EmitterName Glow @Niagara/Emitter"},
		{2, "NS_Sparks: EmitterName Glow @Niagara/Emitter; RendererName GlowSprite @Niagara/Renderer"},
		{4,
			"NS_Sparks: EmitterName Glow @Niagara/Emitter; RendererName GlowSprite @Niagara/Renderer; RendererName GlowHalo "
			"@Niagara/Renderer | NS_Then: EmitterName GlowThen @Niagara/Emitter"},
	};
	for (const auto& Case : Cases)
	{
		FAssetSearchParams Params = MakeParams("NiagaraSystem", "Glow");
		Params.MaxTotalHits = Case.MaxTotal;
		EXPECT_EQ(Render(Project.Search(Params)), Case.Expected) << Case.MaxTotal;
	}
}

TEST(NiagaraFamily, CountsSharedEmittersAsIfEachWereRead)
{
	FTestProject Project;
	FTestNiagaraSystem& System = Project.NiagaraSystem("/Game/NS_Shared").Emitter("GlowA");
	System.Renderer("Empty", "").Renderer("GlowSprite", "/Script/Engine.NiagaraRendererProperties");
	System.Renderer("GlowHalo", "/Script/Engine.NiagaraRendererProperties");
	System.Handle("GlowB", R"("NS_Shared:GlowA")").Handle("GlowNone", "null").Handle("GlowC", R"("NS_Shared:GlowA")");
	System.Handle("GlowD", R"("NS_Shared:GlowA")");
	Project.Open();
	SetMode(1);
	Load("/Game/NS_Shared");
	const std::string First = "NS_Shared: EmitterName GlowA @Niagara/Emitter; RendererName GlowSprite @Niagara/Renderer";
	const std::string Halo = "; RendererName GlowHalo @Niagara/Renderer";
	const TCase<int32, std::string> Cases[] = {
		{"reached by a renderer", 2, First},
		{"reached when the first emitter has been read", 3, First + Halo},
		{"reached by the second handle, which then reads one renderer", 4,
			First + " x2" + Halo + "; EmitterName GlowB @Niagara/Emitter"},
		{"reached by a handle without an emitter: the next one is read still", 5,
			First + " x3" + Halo + " x2; EmitterName GlowB @Niagara/Emitter; EmitterName GlowNone @Niagara/Emitter"},
		{"not reached", 200,
			First + " x4" + Halo +
				" x4; EmitterName GlowB @Niagara/Emitter; EmitterName GlowNone @Niagara/Emitter; EmitterName GlowC "
				"@Niagara/Emitter; EmitterName GlowD @Niagara/Emitter"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params = MakeParams("NiagaraSystem", "Glow");
		Params.MaxTotalHits = Case.Given;
		EXPECT_EQ(Render(Project.Search(Params)), Case.Expected);
	}
}

TEST(NiagaraFamily, SurvivesWhatIsFaulty)
{
	FTestProject Project;
	FTestNiagaraSystem& Heavy = Project.NiagaraSystem("/Game/NS_Heavy").Emitter("First");
	for (int32 Index = 0; Index < 1000; ++Index)
		Heavy.Renderer("R" + std::to_string(Index), "/Script/Engine.NiagaraRendererProperties");
	for (int32 Index = 0; Index < 10000; ++Index) // ten million renderers, were all of them read
		Heavy.Handle("Again", R"("NS_Heavy:First")");
	Project.NiagaraSystem("/Game/NS_Odd")
		.Handle("Away", R"("/Game/NS_Heavy.NS_Heavy:First")")
		.Handle("Gone", R"("NS_Odd:Gone")")
		.Handle("Wrong", R"("NS_Odd")")
		.EffectType("NS_Odd:Nothing")
		.UserParameter("User.A", "/Script/Test.Gone")
		.UserParameter("User.A")
		.UserParameter("User.B", "/Game/NS_Mesh.NS_Mesh");
	Project.Objects(
		"/Game/NS_Mesh", "/Script/Engine.NiagaraSystem", R"({"path": "NS_Mesh", "class": "/Script/Engine.StaticMesh"})");
	Project.Open();
	SetMode(1);
	Load("/Game/NS_Odd");
	Load("/Game/NS_Mesh");
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")),
		"NS_Odd: EmitterName Away @Niagara/Emitter; EmitterName Gone @Niagara/Emitter; EmitterName "
		"Wrong @Niagara/Emitter; UserParamName User.A @Niagara/UserParameters x2; UserParamType Invalid @Niagara/UserParameters "
		"x3; UserParamName User.B @Niagara/UserParameters");
	Load("/Game/NS_Heavy");
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "R999")),
		"NS_Heavy: RendererName R999 @Niagara/Renderer x10001 | NS_Odd: RendererName R999 @Niagara/Renderer")
		<< "emitters of other packages are read once these are in memory";
}
