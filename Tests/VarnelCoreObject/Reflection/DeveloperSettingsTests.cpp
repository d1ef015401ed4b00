#include "CoreObject/Reflection/DeveloperSettings.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "DiagnosticText.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>

namespace
{
class UTestSettings : public UDeveloperSettings
{
public:
	static UClass* StaticClass();

	TArray<FString> Folders = {"Saved", "Temp"};
	bool bDeep = true;
	int32 Limit = 10;
	uint8 Mode = 1;
	float Ratio = 0.5f;
	FString Title = "title";
};

UClass* UTestSettings::StaticClass()
{
	static UClass* const Class = TClassBuilder<UTestSettings>("/Script/Test.TestSettings", UDeveloperSettings::StaticClass())
									 .Member("Folders", &UTestSettings::Folders)
									 .Member("bDeep", &UTestSettings::bDeep)
									 .Member("Limit", &UTestSettings::Limit)
									 .Member("Mode", &UTestSettings::Mode)
									 .Member("Ratio", &UTestSettings::Ratio)
									 .Member("Title", &UTestSettings::Title)
									 .Build();
	return Class;
}

std::string Render(const UTestSettings& Settings)
{
	std::string Out;
	for (const FString& Folder : Settings.Folders)
		Out += *Folder + std::string(",");
	return Out + (Settings.bDeep ? " deep " : " flat ") + std::to_string(Settings.Limit) + " " + std::to_string(Settings.Mode) +
		" " + *FString::SanitizeFloat(Settings.Ratio) + " " + *Settings.Title;
}
}

TEST(DeveloperSettings, AreReadOverTheConstructorsValues)
{
	constexpr const char* Defaults = "Saved,Temp, deep 10 1 0.5 title";
	const struct
	{
		const char* Why;
		const char* Lines; // below the section's head; "[" starts another section
		const char* Settings;
		const char* Faults;
	} Cases[] = {
		{"nothing said", "", Defaults, ""},
		{"each kind of value", "bDeep=False\nLimit=-3\nMode=255\nRatio=2\nTitle=\"a b\"\n", "Saved,Temp, flat -3 255 2.0 a b",
			""},
		{"names ignore case, the last line counts", "LIMIT=1\nlimit=2\n", "Saved,Temp, deep 2 1 0.5 title", ""},
		{"the first mention of a list replaces the defaults", "+Folders=A\nFolders=B\n", "A,B, deep 10 1 0.5 title", ""},
		{"out of range: the default stays", "Mode=256\n", Defaults, "2:6 warning setting-type"},
		{"no value of the type", "bDeep=perhaps\nLimit=1.5\nRatio=\n", Defaults,
			"2:7 warning setting-type\n3:7 warning setting-type\n4:7 warning setting-type"},
		{"a single value is no list", "+Limit=3\n", Defaults, "2 warning setting-type"},
		{"unknown setting", "Depth=3\nLimit=4\n", "Saved,Temp, deep 4 1 0.5 title", "2 warning unknown-setting"},
		{"unknown section below /Script", "[/Script/Test.Nobody]\nA=1\n", Defaults, "3 warning unknown-section"},
		{"a class without settings", "[/Script/CoreObject.Object]\nA=1\n", Defaults, "3 warning unknown-section"},
		{"the abstract base", "[/Script/CoreObject.DeveloperSettings]\nA=1\n", Defaults, "3 warning unknown-section"},
		{"other sections are somebody else's", "[Other]\nA=1\n", Defaults, ""},
	};
	const auto* const Settings = UTestSettings::StaticClass()->GetDefaultObject<UTestSettings>();
	for (const auto& Case : Traced(Cases))
	{
		FDiagnosticSink Sink;
		const FConfigFile File = FConfigFile::Parse(FString("[/Script/Test.TestSettings]\n") + Case.Lines, "Game.ini", nullptr);
		LoadDeveloperSettings(File, "Game.ini", &Sink);
		EXPECT_EQ(Render(*Settings), Case.Settings);
		std::string Faults = RenderFaults(Sink);
		for (std::size_t Zero = Faults.find(":0 "); Zero != std::string::npos; Zero = Faults.find(":0 "))
			Faults.erase(Zero, 2);
		EXPECT_EQ(Faults, Case.Faults);
	}
}
