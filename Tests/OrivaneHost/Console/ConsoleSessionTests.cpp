#include "Console/ConsoleSession.h"

#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/Loader.h"
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

TEST(ConsoleSession, ASearchThatIsGivenUpNeverWrites)
{
	std::string Entries;
	for (int32 Index = 0; Index < 200000; ++Index)
		Entries += (Index ? "," : "") + (R"({"category":"Var","text":"Health)" + std::to_string(Index)) + "\"}";
	FTestProject Project;
	Project.Blueprint("/Game/BP_Door", Entries);
	Project.File("Docs/Long.txt", std::string(100 * 1024 * 1024, '-'));
	Project.Asset("/Game/E_Tide", "UserDefinedEnum").Set("Entries", R"([{"name": "Ebb"}])");
	Project.Open();
	EXPECT_EQ(FConsoleSession(std::chrono::hours(1)).Run("Orivane.BlueprintSearch term="), 2) << "it would never end";
	const TCase<> Cases[] = {
		{"one that goes on in the background", "Orivane.BlueprintSearch term=Health", "Saved/Quellar/blueprint_search.json"},
		{"one that holds the game thread", "Orivane.TextSearch term=absent", "Saved/Quellar/text_search.json"},
	};
	for (const auto& Case : Traced(Cases))
	{
		{
			FConsoleSession Hasty(std::chrono::milliseconds(1));
			EXPECT_EQ(Hasty.Run(Case.Given), 1);
		}
		FConsoleSession Patient(std::chrono::seconds(60));
		EXPECT_EQ(Patient.Run("Orivane.EnumSearch term=Ebb"), 0);
		FGameThread::Get().RunUntil([] { return false; }, std::chrono::milliseconds(150));
		EXPECT_EQ(Project.GetFolder().Read(Case.Expected).size(), 0U) << "nor in the middle of a later command";
	}
}
