#include "Quellar/Assets/AssetRegistryUtils.h"

#include <mutex>

DEFINE_LOG_CATEGORY(LogAssetRegistryUtils);

namespace
{
std::mutex CachedRegistryLock;
IAssetRegistry* CachedRegistry = nullptr; // the registry object lives as long as the program once its module was loaded

/** Makes each path once: comparisons are many. */
TArray<FAssetData> SortByObjectPath(TArray<FAssetData> Assets)
{
	TArray<std::pair<FString, FAssetData>> Keyed;
	Keyed.Reserve(Assets.Num());
	for (FAssetData& Asset : Assets)
		Keyed.Add({Asset.GetObjectPathString(), std::move(Asset)});
	Keyed.StableSort([](const auto& A, const auto& B) { return A.first < B.first; });
	Assets.Reset();
	for (auto& [Path, Asset] : Keyed)
		Assets.Add(std::move(Asset));
	return Assets;
}

TArray<FAssetData> QueryByClassPaths(FARFilter Filter, bool bSorted)
{
	TArray<FAssetData> Assets;
	const IAssetRegistry* Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	if (!Registry || Filter.ClassPaths.IsEmpty())
		return Assets;
	Filter.bRecursiveClasses = true;
	Registry->GetAssets(Filter, Assets);
	return bSorted ? SortByObjectPath(std::move(Assets)) : Assets;
}
}

IAssetRegistry* OrivaneAssetRegistryUtils::GetAssetRegistry()
{
	std::lock_guard Guard(CachedRegistryLock);
	if (!CachedRegistry && FModuleManager::Get().IsModuleLoaded("AssetRegistry"))
		CachedRegistry = &FModuleManager::Get().GetModuleChecked<FAssetRegistryModule>("AssetRegistry").Get();
	return CachedRegistry;
}

TArray<FAssetData> OrivaneAssetRegistryUtils::FindAssetsByClass(UClass* Class, bool bSorted)
{
	return FindAssetsByClasses({Class}, bSorted);
}

TArray<FAssetData> OrivaneAssetRegistryUtils::FindAssetsByClasses(const TArray<UClass*>& Classes, bool bSorted)
{
	FARFilter Filter;
	for (const UClass* Class : Classes)
	{
		if (Class)
			Filter.ClassPaths.Add(Class->GetStructPathName());
	}
	return QueryByClassPaths(std::move(Filter), bSorted);
}

FAssetData OrivaneAssetRegistryUtils::GetAssetByPath(const FString& ObjectPath)
{
	const IAssetRegistry* Registry = GetAssetRegistry();
	return Registry && !ObjectPath.IsEmpty() ? Registry->GetAssetByObjectPath(FSoftObjectPath(ObjectPath.View()), false, true)
											 : FAssetData();
}

bool RegistryHasAsset(const FString& ObjectPath)
{
	return OrivaneAssetRegistryUtils::GetAssetByPath(ObjectPath).IsValid();
}
