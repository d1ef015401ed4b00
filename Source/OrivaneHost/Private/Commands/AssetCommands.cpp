#include "Commands/AssetCommands.h"

#include "Core/Files/File.h"

namespace
{
bool IsStandardOutput(const FString& File)
{
	return File.IsEmpty() || File.View() == "-";
}
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
