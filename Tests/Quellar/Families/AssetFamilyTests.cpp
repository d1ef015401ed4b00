#include "Quellar/Families/AssetFamily.h"

#include "Core/Program/Console.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Reflection/Class.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Console/ConsoleSearch.h"
#include "Quellar/Tools/ToolArguments.h"
#include "Support/TestProject.h"

namespace
{
int32 CountFound(const FAssetFamily& Family)
{
	FAssetSearchParams Params;
	Params.Term = "Lamp";
	int32 NumFound = -1;
	Family.Search(Params, [&](const FAssetSearchResult& Found) { NumFound = Found.Results.Num(); });
	FGameThread::Get().RunUntil([&] { return NumFound >= 0; }, std::chrono::seconds(60));
	return NumFound;
}

TArray<FString> GetFamilyChoices()
{
	for (const FToolArgument& Argument : FindToolDeclaration(ToolNames::AssetSearch)->Arguments)
	{
		if (FString(Argument.Key) == "include_asset_families")
			return Argument.Choices;
	}
	return {};
}
}

TEST(AssetFamily, RowsAreKnownWhereverFamiliesAre)
{
	FTestProject Project;
	for (const FAssetFamily& Family : GetAssetFamilies())
	{
		for (UClass* (*const Class)() : Family.Classes)
			Project.Asset("/Game/Lamp_" + Class()->GetName().ToStdString(), Class()->GetPathName().ToStdString());
	}
	Project.File("Lamp.txt", "Lamp");
	Project.Open();
	const TArray<FString> Choices = GetFamilyChoices();
	ASSERT_EQ(Choices.Num(), GetAssetFamilies().Num());
	for (int32 Index = 0; Index < Choices.Num(); ++Index)
	{
		const FAssetFamily& Family = GetAssetFamilies()[Index];
		SCOPED_TRACE(Family.Name);
		EXPECT_EQ(Choices[Index], FString(Family.Name));
		EXPECT_EQ(CountFound(Family), std::max(Family.Classes.Num(), 1)) << "a class of the row that its search does not know";
		EXPECT_TRUE(IConsoleManager::Get().FindConsoleCommand(Family.Command.Name));
		const FAssetSearchParams OfCommand = FConsoleSearches::ReadParams(Family.Command.Name, {});
		ASSERT_EQ(OfCommand.IncludeAssetFamilies.Num(), 1);
		EXPECT_EQ(OfCommand.IncludeAssetFamilies[0], FString(Family.Name));
		for (const FAssetFamily::FType& Type : Family.Types)
		{
			EXPECT_STREQ(*GetAssetTypeColor(Type.Name), Type.Color);
			for (const FName Class : Type.ClassNames)
				EXPECT_STREQ(*AssetTypeFromClassName(Class), Type.Name);
		}
		for (const char* Class : Family.GroupedClasses)
			EXPECT_STREQ(*GetAssetTypeGroup(Class), Family.Name);
	}
}
