#include "OrivaneToolkit/AssetOperationBase.h"

#include "Support/TestProject.h"

TEST(AssetExists, KnowsPackagesObjectsAndFiles)
{
	FTestProject Project;
	Project.Header("/Game/UI/WBP_Menu", "/Script/Engine.WidgetBlueprint");
	Project.File("Content/Hidden.vasset",
		R"({"varnel_package": 1, "assets": [{"name": "Hidden", "class": "/Script/Engine.World", "registry_filtered": true}]})");
	Project.File("Docs/Design.Notes.md", "x").File("LICENSE", "x").File("Tools/v1.2/run.py", "x").File(".config/a/b.yml", "x");
	Project.GetFolder().MakeFolder("Empty.d/inner");
	Project.Open();
	const std::string Root = Project.GetFolder().GetRoot();

	const struct
	{
		const char* Why;
		std::string Path;
		bool bExpected;
	} Cases[] = {
		{"a package, any case", "/game/ui/wbp_MENU", true},
		{"an object path", "/Game/UI/WBP_Menu.wbp_menu", true},
		{"another object of the package", "/Game/UI/WBP_Menu.Other", false},
		{"an unknown package", "/Game/UI/WBP_Other", false},
		{"a package whose only asset is filtered", "/Game/Hidden", false},
		{"a package's file", Root + "/Content/UI/WBP_Menu.vasset", true},
		{"a package's file, relative to the project", "Content/UI/WBP_Menu.vasset", true},
		{"a missing package's file", Root + "/Content/UI/WBP_Other.vasset", false},
		{"a text file, cut at its first dot", "Docs/Design", true},
		{"any case, folders too", "dOCS/dESIGN", true},
		{"not cut", "Docs/Design.Notes", false},
		{"a file without a dot", "LICENSE", true},
		{"the first dot may stand in a folder's name", "Tools/v1", true},
		{"or at its start", "", true},
		{"a dotted folder without a file in it", "Empty", false},
		{"a folder", "Docs", false},
		{"outside the project", "../" + Root.substr(Root.rfind('/') + 1) + "/LICENSE", false},
		{"an absolute path of a text file", Root + "/LICENSE", false},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Why);
		EXPECT_EQ(FAssetOperationBase::AssetExists(Case.Path), Case.bExpected) << Case.Path;
	}
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

TEST(AssetExists, FollowsChangesOnDisk)
{
	FTestProject Project;
	Project.File("Docs/a.txt", "x");
	Project.Open();
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/a"));
	Project.GetFolder().Rename("Docs/a.txt", "Docs/b.txt");
	EXPECT_FALSE(FAssetOperationBase::AssetExists("Docs/a"));
	EXPECT_TRUE(FAssetOperationBase::AssetExists("Docs/b"));
	Project.GetFolder().Remove("Docs");
	EXPECT_FALSE(FAssetOperationBase::AssetExists("Docs/b"));
}
