#include "CoreObject/Loader.h"
#include "OrivaneToolkit/OrivaneSettings.h"
#include "PackageMemory.h"
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
	const struct
	{
		const char* Why;
		const char* Term;
		const char* Expected;
	} Cases[] = {
		{"everything, in order", "",
			"NS_Sparks: EffectType ET_Fire @Niagara; EmitterName Glow @Niagara/Emitter; RendererName GlowSprite "
			"@Niagara/Renderer; RendererType SpriteRenderer @Niagara/Renderer x2; RendererName GlowHalo @Niagara/Renderer; "
			"EmitterName Lost @Niagara/Emitter; UserParamName User.Tint @Niagara/UserParameters; UserParamType Colour "
			"@Niagara/UserParameters; UserParamName User.Rate @Niagara/UserParameters; UserParamType Invalid "
			"@Niagara/UserParameters; UserParamName User.Target @Niagara/UserParameters; UserParamType BP_Lamp_C "
			"@Niagara/UserParameters"},
		{"a type that is no class or structure", "invalid", "NS_Sparks: UserParamType Invalid @Niagara/UserParameters"},
		{"the own name only when nothing else matched", "NS_", "NS_Sparks: AssetName NS_Sparks @Niagara"},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Why);
		EXPECT_EQ(Render(Project.Search("NiagaraSystem", Case.Term)), Case.Expected);
	}
	EXPECT_EQ(FindPackage("/Game/ET_Fire"), nullptr) << "reading a system loads nothing";
	SetMode(2);
	EXPECT_EQ(Render(Project.Search("NiagaraSystem", "")), "");
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
		"NS_Heavy: RendererName R999 @Niagara/Renderer x100 | NS_Odd: RendererName R999 @Niagara/Renderer")
		<< "emitters of other packages are read once these are in memory";
}
