#include "EngineFixture.h"

#include "CoreObject/Declarations/ScriptModule.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blueprint.h"
#include "Engine/DataTable.h"
#include "Engine/Material.h"
#include "Engine/UserDefinedStruct.h"
#include "Engine/WidgetBlueprint.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{
namespace Files = std::filesystem;

std::string ReadFile(const Files::path& Path)
{
	std::ifstream Stream(Path, std::ios::binary);
	std::ostringstream Text;
	Text << Stream.rdbuf();
	return Text.str();
}

/** The sample project, its packages as they lie on disk. */
class SampleProject : public FEngineFixture
{
protected:
	SampleProject()
	{
		AddFolder(Files::path(SAMPLE_PROJECT) / "Content", "/Game");
		for (const auto& Plugin : Files::directory_iterator(Files::path(SAMPLE_PROJECT) / "Plugins"))
			AddFolder(Plugin.path() / "Content", "/" + Plugin.path().filename().string());
		TArray<FScriptModuleFile> Modules;
		for (const auto& Module : Files::directory_iterator(Files::path(SAMPLE_PROJECT) / "Script"))
			Modules.Add({Module.path().stem().string(), "Script/" + Module.path().filename().string(), ReadFile(Module.path())});
		DeclareScriptModules(Modules, Faults.get());
	}

	void AddFolder(const Files::path& Folder, const std::string& Root)
	{
		for (const auto& Entry : Files::recursive_directory_iterator(Folder))
			if (Entry.path().extension() == ".vasset")
				FEngineFixture::Files[Root + "/" + Files::relative(Entry.path(), Folder).replace_extension().generic_string()] =
					ReadFile(Entry.path());
	}
};
}

TEST_F(SampleProject, LoadsWithoutAFault)
{
	int32 NumObjects = 0;
	for (const auto& [Name, Text] : FEngineFixture::Files)
	{
		const UPackage* const Package = LoadPackage(FName(FStringView(Name)));
		ASSERT_TRUE(Package) << Name;
		TArray<UObject*> Objects;
		GetObjectsWithOuter(Package, Objects, true);
		NumObjects += Objects.Num();
		EXPECT_GT(Objects.Num(), 0) << Name;
	}
	EXPECT_GT(NumObjects, 200);
	EXPECT_EQ(TakeFaults(), "");
}

TEST_F(SampleProject, CanBeLoadedInAnyOrderAndAgain)
{
	for (int32 Round = 0; Round < 2; ++Round)
	{
		for (auto File = FEngineFixture::Files.rbegin(); File != FEngineFixture::Files.rend(); ++File)
			EXPECT_TRUE(LoadPackage(FName(FStringView(File->first))));
		EXPECT_EQ(TakeFaults(), "");
		for (const auto& [Name, Text] : FEngineFixture::Files)
			UnloadPackage(FindPackage(FName(FStringView(Name))));
		UnloadAllLoadedPackages();
	}
}

TEST_F(SampleProject, HoldsWhatItsFilesSay)
{
	const auto* const Tree = LoadObject<UBehaviorTree>("/Game/AI/BT_Guard.BT_Guard");
	ASSERT_TRUE(Tree && Tree->RootNode.Get());
	ASSERT_EQ(Tree->RootNode->Children.Num(), 3);
	const FBTCompositeChild& Second = Tree->RootNode->Children[1];
	ASSERT_TRUE(Second.ChildTask.Get());
	EXPECT_EQ(Second.ChildTask->GetNodeName(), "Look around");
	EXPECT_EQ(Second.Decorators[0]->GetClass()->GetName(), "BTDecorator_Blackboard");
	const auto* const Run = Cast<UBTTask_RunBehavior>(Second.ChildTask.Get());
	ASSERT_TRUE(Run);
	EXPECT_EQ(FindPackage("/Game/AI/BT_Investigate"), nullptr) << "nobody has asked for it yet";
	EXPECT_EQ(Run->BehaviorAsset->GetName(), "BT_Investigate");

	const auto* const Wave = LoadObject<UUserDefinedStruct>("/Game/Data/Structs/S_BossWave.S_BossWave");
	ASSERT_TRUE(Wave && Wave->GetSuperStruct());
	EXPECT_EQ(Wave->GetSuperStruct()->GetName(), "S_SpawnWave");
	EXPECT_EQ(Wave->GetOwnProperties()[1]->GetAuthoredName(), "Arena Fog");

	UClass* const Character = LoadObject<UClass>("/Game/Characters/BP_FogWarden.BP_FogWarden_C");
	ASSERT_TRUE(Character);
	EXPECT_TRUE(Character->IsChildOf(FindClass("/Script/Engine.Character")));
	EXPECT_TRUE(Character->IsChildOf(FindClass("/Game/Characters/BP_EnemyBase.BP_EnemyBase_C")));

	const auto* const Widget = LoadObject<UWidgetBlueprint>("/Game/UI/WBP_HealthBar.WBP_HealthBar");
	ASSERT_TRUE(Widget && Widget->WidgetTree.Get());
	TArray<UWidget*> Widgets;
	Widget->WidgetTree->GetAllWidgets(Widgets);
	ASSERT_EQ(Widgets.Num(), 4);
	EXPECT_EQ(Widgets[3]->GetName(), "HealthText");

	const auto* const Quay = LoadObject<UMaterialInstance>("/Game/Materials/MI_Brick_Wet_Quay.MI_Brick_Wet_Quay");
	ASSERT_TRUE(Quay);
	float Roughness = 0;
	EXPECT_TRUE(Quay->GetScalarParameterValue({"Roughness"}, Roughness));
	EXPECT_GT(Roughness, 0);
	EXPECT_EQ(
		LoadObject<UDataTable>("/Game/Data/Tables/DT_WeaponUpgrades.DT_WeaponUpgrades")->RowStruct->GetName(), "S_WeaponUpgrade");
}
