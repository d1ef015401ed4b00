#include "Assets/ResolveAssetObject.h"

namespace
{
UObject* FindInPackage(const FAssetData& Asset, UPackage* Package)
{
	if (Asset.OuterPath.IsNone())
		return StaticFindObjectFast(UObject::StaticClass(), Package, Asset.AssetName);
	return StaticFindObject(UObject::StaticClass(), Asset.GetObjectPathString());
}
}

UObject* ResolveAssetObject(const FAssetData& Asset, ELoad Load)
{
	UPackage* Package = FindPackage(Asset.PackageName);
	if (Package && Package->IsFullyLoaded())
		return FindInPackage(Asset, Package);
	if (Load == ELoad::Never)
		return nullptr;
	Package = LoadPackage(Asset.PackageName);
	return Package ? FindInPackage(Asset, Package) : nullptr;
}
