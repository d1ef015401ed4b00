#include "Commands/AssetCommands.h"

#include "Core/Files/File.h"
#include "Quellar/Assets/AssetRegistryUtils.h"

namespace
{
constexpr int32 MaxSuggestions = 5;

/** "hero", "Hero.vasset" and "/Game/Old/Hero.Hero" all name assets called Hero. */
FString GetAssetName(const FString& Path)
{
	const FStringView FileName = FPaths::GetCleanFilename(Path);
	return FString(FileName.substr(0, FileName.find('.')));
}

bool IsStandardOutput(const FString& File)
{
	return File.IsEmpty() || File.View() == "-";
}
}

void PrintSuggestions(const FString& AskedFor)
{
	const FName Name = GetAssetName(AskedFor);
	TArray<FString> Packages;
	OrivaneAssetRegistryUtils::GetAssetRegistry()->EnumerateAssets({},
		[&](const FAssetData& Asset)
		{
			if (Asset.AssetName == Name)
				Packages.Add(Asset.PackageName.ToString());
			return Packages.Num() < MaxSuggestions;
		});
	for (const FString& Package : Packages)
		Terminal::PrintError(FString("  did you mean ") + Terminal::Sanitize(Package) + "?\n");
	if (Packages.IsEmpty())
		Terminal::PrintError("  an asset is named by its package, such as /Game/UI/W_Menu; find it with: orivane paths NAME\n");
}

bool UsesColor(EColor Color, const FString& OutputFile)
{
	return Terminal::UsesColor(Color) && IsStandardOutput(OutputFile);
}

bool WriteOutput(const char* Command, const FString& Text, const FString& OutputFile)
{
	if (IsStandardOutput(OutputFile))
		return Terminal::Print(Text);
	FString Error;
	if (FFileHelper::WriteUserFile(Text, OutputFile, Error))
		return true;
	Terminal::PrintError(
		FString("orivane ") + Command + ": cannot write " + Terminal::Sanitize(OutputFile + ": " + Error) + "\n");
	return false;
}
