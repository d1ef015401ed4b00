#include "Families/FamilyScan.h"

#include "Quellar/Assets/OrivaneFindUtils.h"

bool PassesPathFilter(const FString& Path, const FAssetSearchParams& Params)
{
	return Path.Contains(Params.PathContains, Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase);
}

bool IsInScope(const FAssetData& Asset, const FAssetSearchParams& Params)
{
	return Asset.IsValid() && !FOrivaneFindUtils::ShouldExcludeFilePath(Asset.GetObjectPathString()) &&
		PassesPathFilter(Asset.PackagePath.ToString(), Params);
}

std::function<FName()> ListPackagesInScope(const TArray<FAssetData>& Assets, const FAssetSearchParams& Params)
{
	return [&Assets, &Params, Place = 0]() mutable
	{
		while (Place < Assets.Num() && !IsStopRequested())
		{
			const FAssetData& Asset = Assets[Place++];
			if (IsInScope(Asset, Params))
				return Asset.PackageName;
		}
		return FName();
	};
}
