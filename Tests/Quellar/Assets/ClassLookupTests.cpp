#include "Quellar/Assets/ClassLookupUtils.h"

#include "Engine/DataTable.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Support/TestProject.h"

namespace
{
std::string RenderPaths(const TArray<FAssetData>& Assets)
{
	TArray<FString> Paths;
	for (const FAssetData& Asset : Assets)
		Paths.Add(Asset.GetObjectPathString());
	return Join(Paths);
}
}

TEST(ClassLookup, NormalizesClassPaths)
{
	const std::pair<const char*, const char*> Cases[] = {
		{"Class'/Script/Engine.Actor'", "/Script/Engine.Actor"},
		{"cLASS'/Script/Engine.Actor'", "/Script/Engine.Actor"},
		{"/Script/Engine.Actor", "/Script/Engine.Actor"},
		{"Class'/Script/Engine.Actor", ""},
		{"Class'", ""},
		{"Actor", ""},
		{"", ""},
	};
	for (const auto& [In, Expected] : Cases)
		EXPECT_EQ(OrivaneClassLookupUtils::NormalizeClassPath(In).View(), Expected) << In;
}

TEST(ClassLookup, FindsBlueprintsByTheirNativeParentTag)
{
	FTestProject Project;
	Project.Header("/Game/BP_Plain", "/Script/Engine.Blueprint", R"({"NativeParentClass": "/Script/Engine.Actor"})");
	Project.Header("/Game/BP_Wrapped", "/Script/Engine.Blueprint", R"({"NativeParentClass": "Class'/Script/Engine.actor'"})");
	Project.Header("/Game/BP_Derived", "/Script/Engine.Blueprint", R"({"NativeParentClass": "/Script/Engine.Pawn"})");
	Project.Header("/Game/WBP_Widget", "/Script/Engine.WidgetBlueprint", R"({"NativeParentClass": "/Script/Engine.UserWidget"})");
	Project.Header("/Game/BP_Untagged", "/Script/Engine.Blueprint");
	Project.Header("/Game/BP_Empty", "/Script/Engine.Blueprint", R"({"NativeParentClass": ""})");
	Project.Header("/Game/BP_Odd", "/Script/Engine.Blueprint", R"({"NativeParentClass": "Actor"})");
	Project.Open();

	TArray<FString> Paths;
	EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent("/Script/Engine.Actor", Paths, true), 2);
	EXPECT_EQ(Join(Paths), "/Game/BP_Plain.BP_Plain /Game/BP_Wrapped.BP_Wrapped") << "the tag names the very class";
	EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent("/Script/Engine.UserWidget", Paths, true), 1);
	for (const char* NoPath : {"", "Pawn", "Class'Actor'"})
	{
		EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent(NoPath, Paths, false), 2) << NoPath;
		EXPECT_EQ(Join(Paths), "/Game/BP_Empty.BP_Empty /Game/BP_Odd.BP_Odd") << "what names no class equals what names none";
	}

	FString Native = "unchanged";
	EXPECT_TRUE(OrivaneClassLookupUtils::GetBlueprintNativeParent("/Game/BP_Derived.BP_Derived", Native));
	EXPECT_EQ(Native.View(), "/Script/Engine.Pawn");
	EXPECT_FALSE(OrivaneClassLookupUtils::GetBlueprintNativeParent("/Game/BP_Untagged.BP_Untagged", Native));
	EXPECT_FALSE(OrivaneClassLookupUtils::GetBlueprintNativeParent("/Game/Nowhere.Nowhere", Native));
	EXPECT_EQ(Native.View(), "/Script/Engine.Pawn");
}

TEST(ClassLookup, LoadsUntaggedBlueprintsWhenAllowed)
{
	FTestProject Project;
	Project.Asset("/Game/BP_Untagged", "Blueprint").Set("ParentClass", R"("/Script/Engine.Character")");
	Project.Open();
	TArray<FString> Paths;
	EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent("/Script/Engine.Pawn", Paths, true), 0);
	EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent("/Script/Engine.Pawn", Paths, false), 1)
		<< "a loaded Blueprint's parent may derive from the class";
	EXPECT_EQ(OrivaneClassLookupUtils::FindBlueprintsByNativeParent("Pawn", Paths, false), 0) << "a bare name is not a path";
}

TEST(AssetRegistryUtils, FindsAssetsByClass)
{
	FTestProject Project;
	Project.Header("/Game/b/DT_B", "/Script/Engine.DataTable");
	Project.Header("/Game/A/BP_A", "/Script/Engine.Blueprint");
	Project.Header("/Game/a/WBP_Z", "/Script/Engine.WidgetBlueprint");
	Project.Header("/Game/C/Mesh", "/Script/Engine.StaticMesh");
	Project.Open();

	using namespace OrivaneAssetRegistryUtils;
	UClass* const Blueprint = FindClass("/Script/Engine.Blueprint");
	EXPECT_EQ(RenderPaths(FindAssetsByClass(Blueprint, true)), "/Game/A/BP_A.BP_A /Game/a/WBP_Z.WBP_Z");
	EXPECT_EQ(RenderPaths(FindAssetsByClasses({nullptr, UDataTable::StaticClass(), Blueprint}, true)),
		"/Game/A/BP_A.BP_A /Game/a/WBP_Z.WBP_Z /Game/b/DT_B.DT_B");
	EXPECT_EQ(RenderPaths(FindAssetsByClasses({}, false)), "");
	EXPECT_EQ(RenderPaths(FindAssetsByClasses({nullptr}, false)), "") << "no class is no question, not every asset";
	EXPECT_TRUE(RegistryHasAsset("/game/c/mesh.MESH"));
	EXPECT_FALSE(RegistryHasAsset("/Game/C/Mesh.Other"));
	EXPECT_FALSE(RegistryHasAsset("/Game/C/Mesh"));
	EXPECT_FALSE(RegistryHasAsset(""));
}
