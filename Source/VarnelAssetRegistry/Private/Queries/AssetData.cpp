#include "AssetRegistry/AssetData.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/Object.h"
#include "CoreObject/Packages/Loader.h"
#include "Image/AssetObjectPath.h"
#include "Image/RegistryImage.h"

FString FAssetData::GetObjectPathString() const
{
	FString Path;
	AppendAssetObjectPath(Path, PackageName.View(), OuterPath.IsNone() ? FStringView() : OuterPath.View(), AssetName.View());
	return Path;
}

FSoftObjectPath FAssetData::GetSoftObjectPath() const
{
	return IsValid() ? FSoftObjectPath(GetObjectPathString()) : FSoftObjectPath();
}

bool FAssetData::GetTagValue(FStringView Key, FString& OutValue) const
{
	if (!Image)
		return false;
	const FRegistryTables& Tables = Image->GetTables();
	const FRowRange Tags = FRegistryTables::RangeOf(Tables.FirstTags, Row);
	for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
	{
		if (!Unicode::EqualsFolded(Tables.GetText(EZone::TagKeys, Tables.TagKeys[Tag]), Key))
			continue;
		OutValue = Tables.GetText(EZone::TagValues, Tables.TagValues[Tag]);
		return true;
	}
	return false;
}

TArray<std::pair<FString, FString>> FAssetData::GetTags() const
{
	TArray<std::pair<FString, FString>> Result;
	if (!Image)
		return Result;
	const FRegistryTables& Tables = Image->GetTables();
	const FRowRange Tags = FRegistryTables::RangeOf(Tables.FirstTags, Row);
	for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
		Result.Add(
			{Tables.GetText(EZone::TagKeys, Tables.TagKeys[Tag]), Tables.GetText(EZone::TagValues, Tables.TagValues[Tag])});
	return Result;
}

UObject* FAssetData::GetAsset() const
{
	return IsValid() ? StaticLoadObject(UObject::StaticClass(), nullptr, GetObjectPathString()) : nullptr;
}
