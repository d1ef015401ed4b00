#include "Tools/ToolOutput.h"

#include "Core/Files/File.h"
#include "Project/NamedAsset.h"
#include "Tools/HostTools.h"
#include "Tools/ToolCaller.h"
#include "Tools/ToolRemarks.h"

#include <algorithm>

namespace
{
constexpr int32 MaxSuggestions = 5;

/** "hero", "Hero.vasset" and "/Game/Old/Hero.Hero" all name assets called Hero. */
FStringView GetAssetName(const FString& Path)
{
	const FStringView FileName = FPaths::GetCleanFilename(Path);
	return FileName.substr(0, FileName.find('.'));
}
}

FString ToolOutput::GetPrintable(const FJsonObject& Object, const char* Key)
{
	FString Text;
	Object.TryGetStringField(Key, Text);
	return Terminal::Sanitize(Text);
}

const FJsonArray& ToolOutput::GetArray(const FJsonObject& Object, const char* Key)
{
	static const FJsonArray None;
	const FJsonArray* Array = nullptr;
	return Object.TryGetArrayField(Key, Array) ? *Array : None;
}

TSharedPtr<FJsonObject> ToolOutput::GetContent(const Orivane::FToolResult& Result, const char* Key)
{
	const Orivane::FToolResult::FPayload* Payload = Result.GetData().Find(Key);
	return Payload ? MakePayloadJson(*Payload).AsObject() : nullptr;
}

FString ToolOutput::Pad(const FString& Text, int32 Width)
{
	return Text + FString(std::string(static_cast<std::size_t>(std::max(Width - Text.Len(), 0)), ' '));
}

void ToolOutput::PrintProblems(const char* Command, const Orivane::FToolResult& Result)
{
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
	{
		const bool bTold = Message.Type == Orivane::EToolMessage::Warning && !Result.GetRemarks().IsEmpty();
		if (Message.Type != Orivane::EToolMessage::Success && !bTold)
			Terminal::PrintError(FString("orivane ") + Command + ": " + Terminal::Sanitize(Message.Text) + "\n");
	}
}

FString ToolOutput::DescribeRemarks(const char* ToolName, const Orivane::FToolResult& Result)
{
	FString Lines;
	for (const Orivane::FToolRemark& Remark : Result.GetRemarks())
		Lines += Terminal::Sanitize(DescribeRemarkForShell(Remark, *FindTool(ToolName))) + "\n";
	return Lines;
}

void ToolOutput::PrintSuggestions(const FString& AskedFor)
{
	const TArray<FAssetData> Named = FindAssetsByName(GetAssetName(AskedFor), MaxSuggestions, EHiddenAssets::Skip);
	for (const FAssetData& Asset : Named)
		Terminal::PrintError(FString("  did you mean ") + Terminal::Sanitize(Asset.PackageName.ToString()) + "?\n");
	const TArray<FAssetData> Hidden =
		Named.IsEmpty() ? FindAssetsByName(GetAssetName(AskedFor), MaxSuggestions, EHiddenAssets::Include) : TArray<FAssetData>();
	for (const FAssetData& Asset : Hidden)
		Terminal::PrintError(
			"  " + Terminal::Sanitize(Asset.PackageName.ToString()) + " is hidden from queries, by its file's own word\n");
	if (Named.IsEmpty() && Hidden.IsEmpty())
		Terminal::PrintError("  an asset is named by its package, such as /Game/UI/W_Menu; find it with: orivane paths NAME\n");
}
