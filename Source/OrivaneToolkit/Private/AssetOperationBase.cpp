#include "OrivaneToolkit/AssetOperationBase.h"

#include "AssetRegistry/IAssetRegistry.h"
#include "CoreObject/Objects/PackageName.h"
#include "TextFileLookup.h"

#include <algorithm>

namespace
{
bool PackageHasAsset(const IAssetRegistry& Registry, FStringView PackageName)
{
	TArray<FAssetData> Assets;
	if (const FName Package = Registry.FindPackage(PackageName); !Package.IsNone())
		Registry.GetAssetsByPackageName(Package, Assets);
	return !Assets.IsEmpty();
}

/** Also an asset that queries skip: who writes its whole path knows of it. */
bool HasAssetAt(const IAssetRegistry& Registry, FStringView ObjectPath)
{
	TArray<FAssetData> Assets;
	if (const FName Package = Registry.FindPackage(FPackageName::ObjectPathToPackageName(ObjectPath)); !Package.IsNone())
		Registry.GetAssetsByPackageName(Package, Assets, false, false);
	return Assets.ContainsByPredicate(
		[ObjectPath](const FAssetData& Asset) { return Asset.GetObjectPathString() == FString(ObjectPath); });
}

/** Explorations take such a path for a name as it is, and anything else for what converts to one. */
bool BeginsWithEngineRoot(const FString& Path)
{
	return Path.StartsWith("/Game") || Path.StartsWith("/Script") || Path.StartsWith("/Engine");
}

bool RegistryKnowsName(const IAssetRegistry& Registry, FStringView Name)
{
	const auto NumDots = std::count(Name.begin(), Name.end(), '.');
	return NumDots == 0 ? PackageHasAsset(Registry, Name) : NumDots == 1 && HasAssetAt(Registry, Name);
}

bool RegistryKnows(const IAssetRegistry& Registry, const FString& Path)
{
	if (BeginsWithEngineRoot(Path))
		return RegistryKnowsName(Registry, Path);
	FString PackageName;
	const FStringView Name = FPackageName::ExportTextPathToObjectPath(Path);
	if (FPackageName::TryConvertPackageFileToLongPackageName(Name, PackageName))
		return PackageHasAsset(Registry, PackageName);
	if (!FPackageName::TryConvertFilenameToLongPackageName(Path, PackageName))
		return false;
	const std::size_t Dot = Name.find('.', Name.find_last_of("/\\") + 1);
	return Dot == FStringView::npos ? PackageHasAsset(Registry, PackageName)
									: HasAssetAt(Registry, PackageName + Name.substr(Dot));
}
}

bool FAssetOperationBase::AssetExists(const FString& Path)
{
	const bool bLikelyText = !Path.StartsWith("/"); // text files are found faster, and come by the thousand
	if (bLikelyText && TextFileExists(Path))
		return true;
	auto* Module = static_cast<FAssetRegistryModule*>(FModuleManager::Get().GetModule("AssetRegistry"));
	return (Module && RegistryKnows(Module->Get(), Path)) || (!bLikelyText && TextFileExists(Path));
}

FAssetExistsScope::FAssetExistsScope()
{
	BeginLookingOnce();
}

FAssetExistsScope::~FAssetExistsScope()
{
	EndLookingOnce();
}

void FAssetOperationBase::SetTextFileRule(FIsTextFile Rule)
{
	::SetTextFileRule(Rule);
}

void FAssetOperationBase::ForgetTextFiles()
{
	ForgetTextFileFolders();
}

FString FAssetOperationBase::SerializeJson(const TSharedPtr<FJsonObject>& Object)
{
	return Object ? Json::Write(*Object) : FString("{}");
}
