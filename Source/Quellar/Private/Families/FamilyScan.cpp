#include "Families/FamilyScan.h"

#include "Quellar/AssetPathExclusion.h"

bool PassesPathFilter(const FString& Path, const FAssetSearchParams& Params)
{
	return Path.Contains(Params.PathContains, Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase);
}

bool IsInScope(const FAssetData& Asset, const FAssetSearchParams& Params)
{
	return Asset.IsValid() && !FOrivaneFindUtils::ShouldExcludeFilePath(Asset.GetObjectPathString()) &&
		PassesPathFilter(Asset.PackagePath.ToString(), Params);
}
