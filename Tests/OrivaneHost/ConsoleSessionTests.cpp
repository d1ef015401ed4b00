#include "Console/ConsoleSession.h"

#include "CoreObject/Loader.h"
#include "Support/TestProject.h"

TEST(ConsoleSession, ObeysSettingsThatAreEditedMeanwhile)
{
	FTestProject Project;
	Project.Asset("/Game/Tides/E_Tide", "UserDefinedEnum").Set("Entries", R"([{"name": "Ebb"}])");
	Project.Open();
	FConsoleSession Session(std::chrono::seconds(60));
	const auto WriteSettings = [&](const std::string& Lines)
	{ Project.GetFolder().Write("Config/DefaultGame.ini", "[/Script/Quellar.QuellarSettings]\n" + Lines); };
	EXPECT_EQ(Session.Run("Orivane.EnumSearch term=Ebb"), 0);
	WriteSettings("+ExcludedDirectories=Tides\n");
	EXPECT_EQ(Session.Run("Orivane.EnumSearch term=Ebb"), 1);
	WriteSettings("+ExcludedDirectories=Tidal\n"); // the same size, and perhaps the same tick of the clock
	EXPECT_EQ(Session.Run("Orivane.EnumSearch term=Ebb"), 0);
	WriteSettings("+ExcludedDirectories=Tides\n");
	EXPECT_EQ(Session.Run("Orivane.EnumSearch term=Ebb"), 1);
	Project.GetFolder().Remove("Config/DefaultGame.ini");
	EXPECT_EQ(Session.Run("Orivane.EnumSearch term=Ebb"), 0) << "without the file they have their defaults";
}

TEST(ConsoleSession, EvictsObjectsBetweenCommands)
{
	FTestProject Project;
	Project.Asset("/Game/E_Tide", "UserDefinedEnum").Set("Entries", R"([{"name": "Ebb"}])");
	Project.Open();
	FConsoleSession Session(std::chrono::seconds(60));
	const auto Search = [&](const char* Line)
	{
		EXPECT_EQ(Session.Run(Line), 0);
		return FindPackage("/Game/E_Tide") != nullptr;
	};
	EXPECT_TRUE(Search("Orivane.EnumSearch term=Ebb")) << "objects stay for the next command";
	SetObjectMemoryLimit(1);
	EXPECT_FALSE(Search("Orivane.EnumSearch term=Ebb")) << "beyond the limit they go when it is done";
	EXPECT_FALSE(Session.Run("load /Game/E_Tide")) << "what was asked for stays";
	EXPECT_TRUE(Search("Orivane.EnumSearch term=Ebb"));
	SetObjectMemoryLimit(0);
}
