#include "OrivaneToolkit/AssetOperationBase.h"

#include "AssetRegistry/IAssetRegistry.h"
#include "CoreObject/PackageName.h"
#include "TextFileLookup.h"

namespace
{
bool PackageHasAsset(const IAssetRegistry& Registry, const FString& PackageName)
{
	TArray<FAssetData> Assets;
	Registry.GetAssetsByPackageName(PackageName, Assets);
	return !Assets.IsEmpty();
}

bool RegistryKnows(const IAssetRegistry& Registry, const FString& Path)
{
	if (Path.StartsWith("/") && PackageHasAsset(Registry, Path))
		return true;
	const FSoftObjectPath ObjectPath(Path.View());
	if (ObjectPath.IsValid())
		return Registry.GetAssetByObjectPath(ObjectPath).IsValid();
	FString PackageName;
	return FPackageName::TryConvertFilenameToLongPackageName(Path, PackageName) && PackageHasAsset(Registry, PackageName);
}
}

bool FAssetOperationBase::AssetExists(const FString& Path)
{
	auto* Module = static_cast<FAssetRegistryModule*>(FModuleManager::Get().GetModule("AssetRegistry"));
	return (Module && RegistryKnows(Module->Get(), Path)) || TextFileExists(Path);
}

FString FAssetOperationBase::SerializeJson(const TSharedPtr<FJsonObject>& Object)
{
	return Object ? Json::Write(*Object) : FString("{}");
}
