#include "OrivaneToolkit/AssetOperationBase.h"

#include "Core/Text/Name.h"
#include "Support/TestProject.h"

TEST(AssetExists, KnowsPackagesObjectsAndFiles)
{
	FTestProject Project;
	Project.Header("/Game/UI/WBP_Menu", "/Script/Engine.WidgetBlueprint");
	Project.Links("/Game/Hidden", {"Hidden World filtered"}, {});
	Project.File("Plugins/Fog/Fog.uplugin", "{}");
	Project.File("Plugins/Fog/Content/M_Fog.vasset",
		R"({"varnel_package": 1, "assets": [{"name": "M_Fog", "class": "/Script/Engine.Material"}]})");
	Project.File("Docs/Design.Notes.md", "x").File("LICENSE", "x").File("Tools/v1.2/run.py", "x").File(".config/a/b.yml", "x");
	Project.File("Content/AI/Notes.md", "x").File("Content/AI/logo.png", "x").File("Content/UI/WBP_Menu.bak", "x");
	Project.File("Odd\\name/a\x01 b.txt", "x").File("Docs/caf\xE9.txt", "x").File("Pictures.d/a.png", "x");
	Project.GetFolder().MakeFolder("Empty.d/inner");
	Project.GetFolder().MakeFolder("Content/ai");
	Project.Open();
	const std::string Root = Project.GetFolder().GetRoot();

	const TCase<std::string, bool> Cases[] = {
		{"a package, any case", "/game/ui/wbp_MENU", true},
		{"an object path", "/Game/UI/WBP_Menu.wbp_menu", true},
		{"another object of the package", "/Game/UI/WBP_Menu.Other", false},
		{"an unknown package", "/Game/UI/WBP_Other", false},
		{"a package whose only asset is filtered", "/Game/Hidden", false},
		{"that asset by its whole path", "/Game/Hidden.Hidden", true},
		{"export form", "WidgetBlueprint'/Game/UI/WBP_Menu.WBP_Menu'", true},
		{"export form of another object", "WidgetBlueprint'/Game/UI/WBP_Menu.Other'", false},
		{"an object below another root", "/Fog/M_Fog.M_Fog", true},
		{"with what explorations tidy up", "\\Fog\\\\M_Fog", true},
		{"another object there", "/Fog/M_Fog.Other", false},
		{"explorations would not tidy this up", "/Game//UI/WBP_Menu", false},
		{"and would cut this at its last dot", "/Game/UI/WBP_Menu.WBP_Menu.uasset", false},
		{"nor backslashes behind an engine root", "/Game\\UI\\WBP_Menu", false},
		{"a package's file", Root + "/Content/UI/WBP_Menu.vasset", true},
		{"a package's file, relative to the project", "Content/UI/WBP_Menu.vasset", true},
		{"a package's file in another case", "content/ui/wbp_menu.VASSET", true},
		{"a package's file without its extension", "Content/UI/WBP_Menu", false},
		{"a missing package's file", Root + "/Content/UI/WBP_Other.vasset", false},
		{"a text file, cut at its first dot", "Docs/Design", true},
		{"any case, folders too", "dOCS/dESIGN", true},
		{"not cut", "Docs/Design.Notes", false},
		{"a file without a dot is no text file", "LICENSE", false},
		{"nor is a picture", "Content/AI/logo", false},
		{"any of several folders that differ in case", "content/ai/notes", true},
		{"also as one of them is spelled", "Content/ai/Notes", true},
		{"a backslash and a control character in names", "Odd\\name/a\x01 b", true},
		{"a name that is not UTF-8 has a repaired form", "Docs/caf\uFFFD", true},
		{"the first dot may stand in a folder's name", "Tools/v1", true},
		{"or at its start", "", true},
		{"a dotted folder without a file in it", "Empty", false},
		{"a dotted folder without a text file in it", "Pictures", false},
		{"a folder", "Docs", false},
		{"outside the project", "../" + Root.substr(Root.rfind('/') + 1) + "/LICENSE", false},
		{"an absolute path of a text file", Root + "/LICENSE", false},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(FAssetOperationBase::AssetExists(Case.Given), Case.Expected) << Case.Given;
}

TEST(AssetExists, FollowsNoLinks)
{
	FScratchFolder Outside;
	Outside.Write("secret.txt", "x");
	FTestProject Project;
	Project.Open();
	Project.GetFolder().Link(Outside.GetRoot(), "linked");
	Project.GetFolder().Link(Outside.GetRoot() + "/secret.txt", "link.txt");
	EXPECT_FALSE(FAssetOperationBase::AssetExists("linked/secret"));
	EXPECT_FALSE(FAssetOperationBase::AssetExists("link"));
}

// What agents ask for must not stay in memory for good, as names do.
TEST(AssetExists, KeepsNothingOfUnknownPaths)
{
	FTestProject Project;
	Project.Header("/Game/A", "/Script/Engine.World");
	Project.Open();
	const auto Ask = [](int32 Number)
	{
		const FString Text = FString(std::string(200, 'x')) + FString::FromInt(Number);
		for (const char* Start : {"/Game/", "/Game/A.", "/Fog/", "World'/Game/A.", "Docs/", ""})
			EXPECT_FALSE(FAssetOperationBase::AssetExists(Start + Text));
	};
	Ask(0);
	const int64 Before = FName::GetNumBytes();
	for (int32 Number = 1; Number < 100; ++Number)
		Ask(Number);
	EXPECT_EQ(FName::GetNumBytes(), Before);
}

TEST(AssetExists, FollowsChangesOnDisk)
{
	FTestProject Project;
	Project.File("Docs/a.txt", "x");
	Project.Open();
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/a"));
	Project.GetFolder().Rename("Docs/a.txt", "Docs/b.txt");
	EXPECT_FALSE(FAssetOperationBase::AssetExists("Docs/a"));
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/b"));
	std::filesystem::last_write_time(Project.GetFolder().Path("Docs").ToStdString(), std::filesystem::file_time_type());
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/b"));
	Project.GetFolder().Write("Docs/c.txt", "x");
	std::filesystem::last_write_time(Project.GetFolder().Path("Docs").ToStdString(), std::filesystem::file_time_type());
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/c")) << "the folder's time was put back";
	{
		const FAssetExistsScope Scope;
		EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/b"));
		Project.GetFolder().Remove("Docs");
		const FAssetExistsScope Inner;
		EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/c")) << "a folder is looked at once in a scope";
	}
	EXPECT_FALSE(FAssetOperationBase::AssetExists("Docs/b"));
	const FAssetExistsScope Next;
	EXPECT_FALSE(FAssetOperationBase::AssetExists("Docs/c")) << "and again in the next one";
}
