#pragma once

#include "AssetRegistry/IAssetRegistry.h"
#include "Core/Program/Log.h"
#include "CoreObject/Reflection/Class.h"

DECLARE_LOG_CATEGORY(LogAssetRegistryUtils); // for callers of these helpers, which write nothing themselves

/** The module's way to the asset registry. Nothing here loads an asset. */
namespace OrivaneAssetRegistryUtils
{
/** Null while the registry's module has not been loaded. Any thread. */
IAssetRegistry* GetAssetRegistry();
/** Every asset of the class or of a class derived from it, in registry order, or by object path without regard to case. */
TArray<FAssetData> FindAssetsByClass(UClass* Class, bool bSorted);
/** The same for several classes; null entries are skipped. */
TArray<FAssetData> FindAssetsByClasses(const TArray<UClass*>& Classes, bool bSorted);
/** An invalid record when the path names no asset. */
FAssetData GetAssetByPath(const FString& ObjectPath);
}

/** Whether the registry knows an asset at that object path. Kept for callers. */
bool RegistryHasAsset(const FString& ObjectPath);
