#include "Quellar/Assets/OrivaneFindUtils.h"
#include "Quellar/Assets/QuellarSettings.h"
#include "Support/TestProject.h"

namespace
{
struct FCase
{
	const char* Why;
	const char* Path;
	bool bExpected;
};

void ExpectAll(std::initializer_list<FCase> Cases)
{
	for (const FCase& Case : Traced(Cases))
		EXPECT_EQ(FOrivaneFindUtils::ShouldExcludeFilePath(Case.Path), Case.bExpected);
}
}

TEST(AssetPathExclusion, DefaultRules)
{
	FTestProject Project;
	Project.Open();
	ExpectAll({
		{"an empty path never is", "", false},
		{"backslashes and case do not matter", "C:\\Proj\\Intermediate\\x.txt", true},
		{"at the start", "saved/logs/a.log", true},
		{"at the end", "/proj/Saved", true},
		{"inside", "/proj/saved/x", true},
		{"only whole segments", "/proj/savedgames/x", false},
		{"only whole segments, a later one fits", "/proj/savedgames/saved/x", true},
		{"the bare name is neither start, inside nor end", "saved", false},
		{"an excluded plugin", "/Game/Plugins/Niagara/Content/X.X", true},
		{"plugin names ignore case", "/plugins/WATER/x", true},
		{"another plugin", "/Game/Plugins/MyPlugin/X", false},
		{"an empty plugin name", "/Plugins//X", false},
		{"a plugin folder without content behind it", "/Plugins/Niagara", false},
		{"without a leading slash the plugin rule does not apply", "plugins/Niagara/x", false},
		{"only the first plugins segment counts", "/Plugins/Mine/Plugins/Water/x", false},
	});
}

TEST(AssetPathExclusion, ReadsTheSettingsInForce)
{
	FTestProject Project;
	Project.Settings(
		"ExcludedDirectories=Archive\\Old\n+ExcludedDirectories=\n+ExcludedPluginNames=FogSystem\n-ExcludedPluginNames=Water");
	Project.Open();
	ExpectAll({
		{"the first mention replaces the defaults", "/proj/saved/x", false},
		{"a directory may be several segments, with either slash", "/Game/archive/old/X.X", true},
		{"an empty entry excludes nothing", "/Game//X.X", false},
		{"an added plugin", "/Plugins/FogSystem/X", true},
		{"a first mention with + replaces the default list", "/Plugins/Niagara/X", false},
		{"a removed plugin", "/Plugins/Water/X", false},
	});

	Project.Settings("bExcludeEnginePlugins=False");
	Project.Open();
	ExpectAll({{"the plugin rule can be switched off", "/Plugins/FogSystem/X", false}});
}

TEST(QuellarSettings, AreKnownWithoutAHost)
{
	EXPECT_NE(FindClass("/Script/Quellar.QuellarSettings"), nullptr);
}

TEST(QuellarSettings, NamesAndDefaults)
{
	FTestProject Project;
	Project.Open();
	UClass& Class = *UQuellarSettings::StaticClass();
	const auto& Settings = *Class.GetDefaultObject<UQuellarSettings>();
	std::string Told = Class.GetMetaData("ToolTip").ToStdString();
	for (const FProperty* Property : PropertiesOf(Class))
		Told += "\n" + Join({Property->GetName(), Property->GetMetaData("Category"), Property->GetMetaData("ToolTip")}, "|");
	EXPECT_EQ(Told,
		R"(Project settings for Orivane/Quellar behaviors.
Exposed at: Project Settings → Plugins → Orivane Settings
ExcludedDirectories|Search|Additional directories to exclude from Asset/Text searches (relative segments).
bExcludeEnginePlugins|Search|Exclude Engine plugins (CommonUI, EnhancedInput, etc.) but keep project plugins.
ExcludedPluginNames|Search|Additional plugin names to exclude (e.g., "CommonUI", "EnhancedInput").
TextSearchExtensions|Search|File extensions to include in text-based searches (lowercase, no dot). Editable in Project Settings.
bEnableHighSignalFiltering|References|Enable high-signal kind filtering for reference queries (focus on code/logic/config assets).
DefaultMaxReferences|References|Default maximum results for AssetFindReferences queries.
DefaultMaxGraphNodes|Graph|Default maximum nodes for ExploreAssetGraph queries.
DefaultMaxFanoutPerNode|Graph|Default maximum fanout per node (hub protection).)");
	EXPECT_EQ(Join({Class.GetPathName(), Settings.GetCategoryName(), Settings.GetSectionName()}, "|"),
		"/Script/Quellar.QuellarSettings|Plugins|Orivane Settings");
	EXPECT_EQ(
		Join(Settings.ExcludedDirectories), "Intermediate DerivedDataCache Saved Binaries .git .svn .vs .idea node_modules");
	EXPECT_EQ(Join(Settings.ExcludedPluginNames), "Niagara Water GeometryCollectionPlugin ChaosSolverPlugin");
	EXPECT_EQ(Join(Settings.TextSearchExtensions), "uproject uplugin txt md bat py xml yaml yml html css js ts config ini cfg");
	EXPECT_TRUE(Settings.bExcludeEnginePlugins && Settings.bEnableHighSignalFiltering);
	EXPECT_EQ(Settings.DefaultMaxReferences, 200);
	EXPECT_EQ(Settings.DefaultMaxGraphNodes, 150);
	EXPECT_EQ(Settings.DefaultMaxFanoutPerNode, 50);
}
