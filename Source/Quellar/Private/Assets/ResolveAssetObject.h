#pragma once

#include "AssetRegistry/AssetData.h"
#include "CoreObject/Packages/Loader.h"

enum class ELoad : uint8
{
	Never,
	IfMissing,
};

/**
 * The object of an asset: found in its package when that is in memory and complete, else, with ELoad::IfMissing, after loading
 * the package. Null when it is not to be had. Game thread.
 */
UObject* ResolveAssetObject(const FAssetData& Asset, ELoad Load);

/** For objects that are looked at and never run: nothing is compiled, and what they need is loaded no earlier than it is asked
 * for.
 */
constexpr uint32 ReadingLoadFlags =
	ELoadFlags::DisableDependencyPreloading | ELoadFlags::DeferDependencyLoads | ELoadFlags::DisableCompileOnLoad;

/** The object at an asset's path, loading its package if need be; null when it is not to be had or no T. Game thread. */
template <class T>
T* LoadAssetForReading(const FAssetData& Asset)
{
	return static_cast<T*>(StaticLoadObject(T::StaticClass(), nullptr, Asset.GetObjectPathString(), ReadingLoadFlags));
}
