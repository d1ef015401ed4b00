#include "Families/FamilyScan.h"

#include "Core/Text/Unicode.h"
#include "Quellar/Assets/OrivaneFindUtils.h"

bool PassesPathFilter(const FString& Path, const FAssetSearchParams& Params)
{
	return Path.Contains(Params.PathContains, Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase);
}

bool IsInScope(const FAssetData& Asset)
{
	return Asset.IsValid() && !FOrivaneFindUtils::ShouldExcludeFilePath(Asset.GetObjectPathString());
}

TArray<FAssetData> ListAssetsInScope(const TArray<UClass*>& Classes)
{
	TArray<FAssetData> Assets = OrivaneAssetRegistryUtils::FindAssetsByClasses(Classes, false);
	Assets.RemoveAll([](const FAssetData& Asset) { return !IsInScope(Asset); });
	return Assets;
}

FAssetScan::FAssetScan(
	const FString& Name, ETextOrigin InOrigin, std::function<TArray<FAssetData>()> List, const FAssetSearchParams& InParams)
	: Texts(FAssetTexts::Get(Name, InOrigin, std::move(List)))
	, Origin(InOrigin)
	, Params(InParams)
	, FoldedTerm(Unicode::Fold(InParams.Term.View()))
{
	Texts.Refresh();
	Candidates = Texts.FindCandidates(Params.Term);
	if (Origin == ETextOrigin::Package)
		Prefetch.emplace([this] { return FindNextPackage(); });
}

bool FAssetScan::Next()
{
	while (NumDone < Candidates.size() && !IsStopRequested())
	{
		Place = Candidates[NumDone++];
		if (PassesPathFilter(GetAsset()))
			return true;
	}
	return false;
}

bool FAssetScan::PassesPathFilter(const FAssetData& Asset) const
{
	return Params.PathContains.IsEmpty() || ::PassesPathFilter(Asset.PackagePath.ToString(), Params);
}

void FAssetScan::AddIfUnread(TArray<FUnreadFile>& Out) const
{
	const FName Package = GetAsset().PackageName;
	if (Origin == ETextOrigin::Package && !IsStopRequested() && !FindPackage(Package))
		Out.Add({Package.ToString(), FUnreadFile::EReason::Unloadable});
}

/** For the prefetch, which may be ahead of the scan. */
FName FAssetScan::FindNextPackage()
{
	while (NumAhead < Candidates.size() && !IsStopRequested())
	{
		const FAssetData& Asset = Texts.GetAssets()[Candidates[NumAhead++]];
		if (PassesPathFilter(Asset))
			return Asset.PackageName;
	}
	return {};
}
