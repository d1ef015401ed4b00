#include "Console/ExploreAssetGraphCommand.h"

#include "Console/ConsoleWords.h"
#include "Core/Program/Console.h"
#include "Graph/AssetGraphJson.h"
#include "Quellar/Tools/ToolArguments.h"

namespace
{
constexpr const char* Help = "Explore asset dependency/referencer graph. Usage: Orivane.ExploreAssetGraph asset=\"/Game/...\" "
							 "[relation=Dependencies|Referencers|Both] [depth=1] [max_nodes=150]";

void ReadRelation(const FString& Word, EAssetGraphDirection& Out)
{
	if (Word == "Referencers")
		Out = EAssetGraphDirection::Referencers;
	else if (Word == "Dependencies")
		Out = EAssetGraphDirection::Dependencies;
	else if (Word == "Both")
		Out = EAssetGraphDirection::Both;
}

/** The document is made and dropped: the command shows that an exploration goes through, and how long it takes. */
void ExploreAssetGraph(const TArray<FString>& Words)
{
	const FExploreAssetGraphParams Params = ReadExploreAssetGraphWords(Words);
	if (Params.AssetPath.IsEmpty())
		return;
	FExploreAssetGraphResult Result;
	UAssetGraphService::ExploreGraph(Params, Result);
	WriteAssetGraphConsoleJson(Result);
}
}

FExploreAssetGraphParams ReadExploreAssetGraphWords(const TArray<FString>& Words)
{
	FExploreAssetGraphParams Params;
	FString Value;
	for (const FString& Word : Words)
	{
		if (ReadWord(Word, "asset=", Value))
			Params.AssetPath = Value;
		else if (ReadWord(Word, "relation=", Value))
			ReadRelation(Value, Params.Direction);
		else if (ReadWord(Word, "depth=", Value))
			Params.Depth = Value.ToInt();
		else if (ReadWord(Word, "max_nodes=", Value))
			Params.MaxNodes = Value.ToInt();
		else if (ReadWord(Word, "max_fanout=", Value))
			Params.MaxFanoutPerNode = Value.ToInt();
	}
	return Params;
}

void RegisterExploreAssetGraphCommand()
{
	IConsoleManager::Get().RegisterConsoleCommand(AssetGraphConsoleCommand, Help, ExploreAssetGraph);
}
