#include "Quellar/Paths/AssetPathSearchJson.h"

#include "Core/Json/Json.h"

namespace
{
const char* GetWord(EAssetPathDetailMode DetailMode)
{
	switch (DetailMode)
	{
		case EAssetPathDetailMode::Files:
			return "files";
		case EAssetPathDetailMode::Both:
			return "both";
		default:
			return "directories";
	}
}

TSharedPtr<FJsonObject> MakeSummary(const FAssetPathSearchResult& Result, EAssetPathDetailMode DetailMode)
{
	auto Summary = MakeShared<FJsonObject>();
	Summary->SetNumberField("total_hits", Result.TotalHits);
	Summary->SetNumberField("total_directories", Result.TotalDirectories);
	Summary->SetBoolField("truncated", Result.bTruncated);
	Summary->SetStringField("detail_mode", GetWord(DetailMode));
	return Summary;
}

/** The path without the directory in front, where it begins with it in the same spelling. */
FString MakeRelative(const FString& Path, const FString& Directory)
{
	const FString Prefix = Directory.View().ends_with('/') ? Directory : Directory + "/";
	return Path.StartsWith(Prefix, ESearchCase::CaseSensitive) ? FString(Path.View().substr(Prefix.View().size())) : Path;
}

FJsonValue MakeDirectory(const FString& Directory, const TArray<FString>& Paths)
{
	FJsonArray Files;
	for (const FString& Path : Paths)
		Files.Add(MakeRelative(Path, Directory));
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("path", Directory);
	Json->SetNumberField("count", Paths.Num());
	Json->SetArrayField("files", std::move(Files));
	return Json;
}
}

TSharedPtr<FJsonObject> OrivaneToolUtils::MakeAssetPathSearchJson(
	const FAssetPathSearchResult& Result, EAssetPathDetailMode DetailMode)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetObjectField("summary", MakeSummary(Result, DetailMode));
	if (DetailMode != EAssetPathDetailMode::Files)
	{
		FJsonArray Directories;
		for (const auto& [Directory, Paths] : Result.Directories)
			Directories.Add(MakeDirectory(Directory, Paths));
		Json->SetArrayField("directories", std::move(Directories));
	}
	if (DetailMode != EAssetPathDetailMode::Directories)
	{
		FJsonArray Files;
		for (const FString& Path : Result.Files)
			Files.Add(Path);
		Json->SetArrayField("files", std::move(Files));
	}
	return Json;
}

void OrivaneToolUtils::WriteAssetPathSearchJson(
	const FAssetPathSearchResult& Result, FString& Out, EAssetPathDetailMode DetailMode)
{
	Out = Json::Write(*MakeAssetPathSearchJson(Result, DetailMode));
}
