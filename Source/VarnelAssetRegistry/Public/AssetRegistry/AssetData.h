#pragma once

#include "Core/Base/Containers.h"
#include "CoreObject/Objects/ObjectPath.h"

class FRegistryImage;
struct FRegistryPart;
class UObject;

/**
 * The registry's record of one asset: a small value of names and a view of its tags. Copies are cheap and stay valid as long as
 * anybody holds one, also across a rescan.
 */
class FAssetData
{
public:
	FName PackageName; // "/Game/Data/DT_Items"
	FName PackagePath; // "/Game/Data"
	FName AssetName;   // "DT_Items"
	FTopLevelAssetPath AssetClassPath;
	FName OuterPath; // object path of the outer for an asset inside another object, else None

	/** Package name and asset name are set. */
	bool IsValid() const { return !PackageName.IsNone() && !AssetName.IsNone(); }
	/** "/Game/A.A"; for an asset inside another object the outer's path, ":" (or "." where that has a ":"), and the name. */
	FString GetObjectPathString() const;
	FSoftObjectPath GetSoftObjectPath() const;
	/** False when the asset has no such tag; keys compare without regard to case. */
	bool GetTagValue(FStringView Key, FString& OutValue) const;
	/** Tags in file order. Kept for callers. */
	TArray<std::pair<FString, FString>> GetTags() const;
	/** The asset's object, loading its package if need be; null when it cannot be had. Game thread. */
	UObject* GetAsset() const;

private:
	friend struct FRegistryPart;
	TSharedPtr<const FRegistryImage> Image; // owner of the tags
	uint32 Row = 0;
};

/** Tags that the engine writes for Blueprints. */
namespace FBlueprintTags
{
inline constexpr const char* GeneratedClassPath = "GeneratedClass";
inline constexpr const char* ParentClassPath = "ParentClass";
inline constexpr const char* NativeParentClassPath = "NativeParentClass";
}
