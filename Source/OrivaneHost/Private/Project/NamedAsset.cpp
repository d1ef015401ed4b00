#include "Project/NamedAsset.h"

#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "CoreObject/Objects/PackageName.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Assets/AssetPathUtils.h"

#include <algorithm>

namespace
{
constexpr int32 MaxListed = 10; // assets of one name in a sentence
constexpr FStringView GeneratedSuffix = "_C";

bool StartsWithFolded(FStringView Text, FStringView Start)
{
	return Text.size() >= Start.size() && Unicode::EqualsFolded(Text.substr(0, Start.size()), Start);
}

/** What leads from an asset at AssetPath to an object at Path: "" when they are one; none when there is no way. */
TOptional<FStringView> GetWayInto(FStringView AssetPath, FStringView Path)
{
	if (!StartsWithFolded(Path, AssetPath))
		return {};
	const FStringView Rest = Path.substr(AssetPath.size());
	if (Rest.empty() || Unicode::EqualsFolded(Rest, GeneratedSuffix))
		return FStringView();
	return Rest[0] == ':' || Rest[0] == '.' ? TOptional<FStringView>(Rest.substr(1)) : TOptional<FStringView>();
}

TOptional<FNamedAsset> FindInPackage(FName Package, FStringView Path)
{
	TArray<FAssetData> Assets;
	GetProjectRegistry().GetAssetsByPackageName(Package, Assets, false, false);
	TOptional<FNamedAsset> Nearest; // assets may lie in one another
	std::size_t NearestLength = 0;
	for (const FAssetData& Asset : Assets)
	{
		const FString AssetPath = Asset.GetObjectPathString();
		const TOptional<FStringView> Way = GetWayInto(AssetPath, Path);
		if (!Way || AssetPath.View().size() < NearestLength)
			continue;
		Nearest = FNamedAsset{.Asset = Asset, .SubPath = *Way};
		NearestLength = AssetPath.View().size();
	}
	return Nearest;
}

TOptional<FNamedAsset> FindRepresentativeOf(FName Package)
{
	FNamedAsset Found;
	if (AssetPathUtils::GetRepresentativeAsset(Package, Found.Asset))
		return Found;
	TArray<FAssetData> Hidden;
	GetProjectRegistry().GetAssetsByPackageName(Package, Hidden, false, false);
	return Hidden.IsEmpty() ? TOptional<FNamedAsset>() : FNamedAsset{.Asset = Hidden[0], .SubPath = {}};
}

TOptional<FNamedAsset> FindAtPath(FStringView Path)
{
	FString OfFile;
	const bool bIsFile = FPackageName::TryConvertPackageFileToLongPackageName(Path, OfFile);
	const FString LongName = bIsFile ? OfFile : FPackageName::ObjectPathToPackageName(Path);
	const FName Package = GetProjectRegistry().FindPackage(LongName);
	if (Package.IsNone())
		return {};
	return bIsFile || LongName.View().size() == Path.size() ? FindRepresentativeOf(Package) : FindInPackage(Package, Path);
}

TOptional<FNamedAsset> FindByName(FStringView Name, FString& OutError)
{
	const TArray<FAssetData> Found = FindAssetsByName(Name, MaxListed + 1);
	if (Found.Num() == 1)
		return FNamedAsset{.Asset = Found[0], .SubPath = {}};
	if (Found.IsEmpty())
		return {};
	TArray<FString> Paths;
	for (int32 Index = 0; Index < std::min(Found.Num(), MaxListed); ++Index)
		Paths.Add(Found[Index].GetObjectPathString());
	OutError = FString("Several assets are named '") + Name + "': " + FString::Join(Paths, ", ") +
		(Found.Num() > MaxListed ? ", ..." : "") + "; give the path of one";
	return {};
}
}

TOptional<FNamedAsset> FindNamedAsset(const FString& Text, FString& OutError)
{
	OutError = FString("Asset does not exist: ") + Text;
	const FStringView Path = FPackageName::ExportTextPathToObjectPath(Text);
	if (Path.find_first_of("/\\.") == FStringView::npos)
		return FindByName(Path, OutError);
	TOptional<FNamedAsset> Found = FindAtPath(Path);
	return Found || Path.starts_with('/') ? Found : FindAtPath(FPaths::ConvertRelativePathToFull(Path));
}

TArray<FAssetData> FindAssetsByName(FStringView Name, int32 MaxAssets, EHiddenAssets Hidden)
{
	TArray<FAssetData> Found;
	GetProjectRegistry().EnumerateAssets(
		{},
		[&](const FAssetData& Asset)
		{
			if (Unicode::EqualsFolded(Asset.AssetName.View(), Name))
				Found.Add(Asset);
			return Found.Num() < MaxAssets && !IsStopRequested();
		},
		Hidden == EHiddenAssets::Skip);
	return Found;
}
