#pragma once

#include "Core/Text/Name.h"
#include "Core/Text/String.h"

/** Path of an object that lies directly in a package: "/Script/Engine.DataTable", "/Game/Data/DT_Items.DT_Items". */
struct FTopLevelAssetPath
{
	FName PackageName;
	FName AssetName;

	FTopLevelAssetPath() = default;
	FTopLevelAssetPath(FName InPackageName, FName InAssetName) : PackageName(InPackageName), AssetName(InAssetName) {}
	/** Invalid (both names None) unless Text has the form "/Package.Asset" without a sub-object. */
	explicit FTopLevelAssetPath(FStringView Text);

	bool IsValid() const { return !PackageName.IsNone() && !AssetName.IsNone(); }
	/** "" when invalid. */
	FString ToString() const;
	friend bool operator==(const FTopLevelAssetPath&, const FTopLevelAssetPath&) = default;
};

uint64 GetTypeHash(const FTopLevelAssetPath& Path);

/** Path of any object: "/Game/A.A", "/Game/A.A:Sub.Deeper". A package alone ("/Game/A") has no asset name. */
struct FSoftObjectPath
{
	FTopLevelAssetPath Asset;
	FString SubPath; // after the ":", "" for the asset itself

	FSoftObjectPath() = default;
	FSoftObjectPath(FTopLevelAssetPath InAsset, FString InSubPath) : Asset(InAsset), SubPath(std::move(InSubPath)) {}
	/** Accepts the export form Class'/Game/A.A' too. Null unless Text begins with "/" and names a package. */
	explicit FSoftObjectPath(FStringView Text);

	/** The null path. */
	bool IsNull() const { return Asset.PackageName.IsNone(); }
	/** Package and asset are named. */
	bool IsValid() const { return Asset.IsValid(); }
	FString ToString() const;
	friend bool operator==(const FSoftObjectPath&, const FSoftObjectPath&) = default;
};

/** Path of a class. Kept for callers. */
struct FSoftClassPath : FSoftObjectPath
{
	using FSoftObjectPath::FSoftObjectPath;
};
