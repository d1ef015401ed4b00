#include "CoreObject/Objects/PackageName.h"

#include "Core/Files/File.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>

namespace
{
/** A project with a plugin and engine content, none of which need exist. */
class PackageName : public testing::Test
{
protected:
	void SetUp() override
	{
		FPaths::SetProjectDir("/nowhere/Lantern");
		EXPECT_TRUE(FPackageName::MountRoot("/Game", "/nowhere/Lantern/Content/"));
		EXPECT_TRUE(FPackageName::MountRoot("/FogSystem", "/nowhere/Lantern/Plugins/Weather/FogSystem/Content"));
		EXPECT_TRUE(FPackageName::MountRoot("/Inner", "/nowhere/Lantern/Content/Inner/"));
		EXPECT_TRUE(FPackageName::MountRoot("/Stra\u00DFe", "/nowhere/Lantern/Plugins/Street/Content/"));
		EXPECT_TRUE(FPackageName::MountRoot("/Kit", "/nowhere/Lantern/Plugins/Kit/Content/"));
		EXPECT_TRUE(FPackageName::MountRoot("/Engine", "/elsewhere/EngineContent/"));
	}
	void TearDown() override
	{
		FPackageName::UnmountAll();
		FPaths::SetProjectDir("");
	}

	static std::string Convert(const std::string& Filename)
	{
		FString LongName = "untouched";
		const bool bConverted = FPackageName::TryConvertFilenameToLongPackageName(Filename, LongName);
		EXPECT_EQ(bConverted, !LongName.Equals("untouched")) << "the name is set exactly on success";
		return bConverted ? *LongName : "-";
	}
};
}

TEST_F(PackageName, ConvertsFilesAndLongNames)
{
	const TCase<std::string> Cases[] = {
		{"absolute file", "/nowhere/Lantern/Content/UI/W_Menu.vasset", "/Game/UI/W_Menu"},
		{"file relative to the project", "Content/UI/W_Menu.vasset", "/Game/UI/W_Menu"},
		{"a file in another case", "CONTENT/ui/W_Menu.VASSET", "/Game/ui/W_Menu"},
		{"backslashes", "Content\\UI\\W_Menu.vasset", "/Game/UI/W_Menu"},
		{"file of a plugin, whose folder was mounted without a slash", "Plugins/Weather/FogSystem/Content/M_Fog.vasset",
			"/FogSystem/M_Fog"},
		{"the innermost mounted folder owns the file", "Content/Inner/A.vasset", "/Inner/A"},
		{"engine content outside the project", "/elsewhere/EngineContent/Cube.vasset", "/Engine/Cube"},
		{"dots within the mounted folder", "Content/UI/../AI/./BT_Guard.vasset", "/Game/AI/BT_Guard"},
		{"dots that leave the folder and come back", "Content/../Content/A.vasset", "/Game/A"},
		{"dots that leave the mounted folder", "Content/../Secret/A.vasset", "-"},
		{"dots that leave the project", "../../etc/A.vasset", "-"},
		{"more dots than folders", "/../../../nowhere/Lantern/Content/A.vasset", "/Game/A"},
		{"a folder whose name begins like the mounted one", "/nowhere/Lantern/ContentOld/A.vasset", "-"},
		{"file of another kind", "Content/UI/Notes.txt", "-"},
		{"a file needs its extension", "Content/UI/W_Menu", "-"},
		{"an extension alone is no name", "Content/UI/.vasset", "-"},
		{"a dot in the name cannot be part of a long name", "Content/UI/W.Menu.vasset", "-"},
		{"a character that long names refuse", "Content/UI/W Menu?.vasset", "-"},
		{"marks that are no separators", "Content/It's & more!/~W,Menu (old).vasset", "/Game/It's & more!/~W,Menu (old)"},
		{"blanks and other scripts are fine", "Content/Карты/L Порт.vasset", "/Game/Карты/L Порт"},
		{"long name", "/Game/UI/W_Menu", "/Game/UI/W_Menu"},
		{"object path", "/FogSystem/M_Fog.M_Fog", "/FogSystem/M_Fog"},
		{"path of a sub-object", "/Game/UI/W_Menu.W_Menu:Tree.Button", "/Game/UI/W_Menu"},
		{"the root's own spelling counts", "/gAmE/UI/W_Menu", "/Game/UI/W_Menu"},
		{"export form", "World'/Game/UI/W_Menu.W_Menu'", "/Game/UI/W_Menu"},
		{"export form with the class's path", "/Script/Engine.World'/Game/UI/W_Menu.W_Menu'", "/Game/UI/W_Menu"},
		{"a root whose letters take other bytes in another case", "/Stra\u1E9Ee/M_Kerb", "/Stra\u00DFe/M_Kerb"},
		{"the Kelvin sign is a k", "/\u212Ait/M_Bolt", "/Kit/M_Bolt"},
		{"long name with backslashes", "\\Game\\UI\\W_Menu", "/Game/UI/W_Menu"},
		{"long name whose dots stay inside", "/Game/UI/../W_Menu", "/Game/W_Menu"},
		{"long name whose dots lead out", "/Game/../Other/W_Menu", "-"},
		{"a root alone", "/Game", "-"},
		{"a root that is only a prefix", "/GameData/X", "-"},
		{"a root that nobody mounted", "/Water/M_Basin", "-"},
		{"declared classes are no files", "/Script/Engine.Actor", "-"},
		{"longer than any path", "/Game/" + std::string(5000, 'a'), "-"},
		{"a folder", "/Game/UI/", "-"},
		{"a slash behind the asset's dot", "/Game/UI.old/W_Menu", "-"},
		{"a bare name", "W_Menu", "-"},
		{"nothing", "", "-"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Convert(Case.Given), Case.Expected);
}

TEST_F(PackageName, RelativeFilesNeedAProject)
{
	FPaths::SetProjectDir("");
	FPackageName::MountRoot("/Current", FPaths::ConvertRelativePathToFull("."));
	EXPECT_EQ(Convert("Content/UI/W_Menu.vasset"), "-");
	EXPECT_EQ(Convert("/nowhere/Lantern/Content/UI/W_Menu.vasset"), "/Game/UI/W_Menu");
}

TEST_F(PackageName, MountsEachRootOnce)
{
	const TCase<const char*, bool> Cases[] = {
		{"new root", "/Water", true},
		{"mounted already", "/Game", false},
		{"mounted already but for case", "/gamE", false},
		{"declared classes live there", "/Script", false},
		{"two segments", "/Game/UI", false},
		{"no slash before it", "Plugin", false},
		{"a slash behind it", "/Plugin/", false},
		{"a dot would end the package's name", "/Plugin.v2", false},
		{"no name", "/", false},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(FPackageName::MountRoot(Case.Given, "/elsewhere/Other/"), Case.Expected);
	EXPECT_EQ(Convert("/elsewhere/Other/A.vasset"), "/Water/A");
	EXPECT_EQ(Convert("/nowhere/Lantern/Content/A.vasset"), "/Game/A");
}

TEST(LongPackageName, IsValidInOneFormOnly)
{
	const TCase<std::string_view, bool> Cases[] = {
		{"usual", "/Game/UI/W_Menu", true},
		{"one segment behind the root", "/Script/Engine", true},
		{"blanks, digits, signs", "/Game/My Maps/L_01 (old) #2+$@[]{}=;^`%-'&!~,", true},
		{"other scripts", "/Game/Übung/Ёж", true},
		{"root alone", "/Game", false},
		{"ends with a slash", "/Game/UI/", false},
		{"empty segment", "/Game//UI", false},
		{"begins with two slashes", "//Game/UI", false},
		{"no slash at the start", "Game/UI", false},
		{"dot segment", "/Game/../UI", false},
		{"object path", "/Game/UI.UI", false},
		{"sub-object separator", "/Game/UI:A", false},
		{"backslash", "/Game/U\\I", false},
		{"what file systems refuse", "/Game/U\"I", false},
		{"", "/Game/U*I", false},
		{"", "/Game/U|I", false},
		{"", "/Game/U<I", false},
		{"control character", "/Game/U\tI", false},
		{"zero byte", std::string_view("/Game/U\0I", 9), false},
		{"empty", "", false},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(FPackageName::IsValidLongPackageName(Case.Given), Case.Expected);
}
