#include "Quellar/Assets/AssetPathUtils.h"

#include "Assets/RepresentativeAsset.h"
#include "Core/Base/Map.h"
#include "CoreObject/Objects/PackageName.h"
#include "Quellar/Assets/AssetRegistryUtils.h"

#include <vector>

namespace
{
/** A plain prefix test: "/GameData/X" passes too. */
bool BeginsWithEngineRoot(const FString& Path)
{
	return Path.StartsWith("/Game") || Path.StartsWith("/Script") || Path.StartsWith("/Engine");
}

/** In the registry's spelling where it knows the package. Names stay for good, so what is too long for one is refused. */
bool MakeName(const FString& PackageName, FName& Out)
{
	if (PackageName.View().size() > FPackageName::MaxLongPackageNameBytes)
		return false;
	const IAssetRegistry* const Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	Out = Registry ? Registry->FindPackage(PackageName) : FName();
	if (Out.IsNone())
		Out = FName(PackageName);
	return true;
}

bool HasSlash(const FString& Path)
{
	return Path.View().find_first_of("/\\") != FStringView::npos;
}
}

bool AssetPathUtils::NormalizeToPackageName(const FString& Path, FName& Out)
{
	if (Path.IsEmpty())
		return false;
	FString PackageName;
	if (HasSlash(Path) && !BeginsWithEngineRoot(Path))
		return FPackageName::TryConvertFilenameToLongPackageName(Path, PackageName) && MakeName(PackageName, Out);
	PackageName = Path.View().substr(0, Path.View().rfind('.'));
	return BeginsWithEngineRoot(PackageName) && MakeName(PackageName, Out);
}

bool AssetPathUtils::GetRepresentativeAsset(const FName& Package, FAssetData& Out)
{
	const IAssetRegistry* Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	if (!Registry)
		return false;
	TArray<FAssetData> Assets;
	Registry->GetAssetsByPackageName(Package, Assets);
	const int32 Found =
		FindRepresentative(Package.View(), Assets.Num(), [&](int32 Index) { return Assets[Index].AssetName.View(); });
	if (Found == INDEX_NONE)
		return false;
	Out = Assets[Found];
	return true;
}

TOptional<uint32> AssetPathUtils::FindRepresentativeAsset(const FPackageGraphView& Graph, FPackageGraphView::FNode Node)
{
	const FPackageGraphView::FAssetRange Range = Graph.GetAssets(Node);
	if (Range.Begin + 1 == Range.End) // as nearly always: no names to compare
		return Graph.IsRegistryFiltered(Range.Begin) ? TOptional<uint32>() : Range.Begin;
	std::vector<uint32> Assets;
	for (uint32 Asset = Range.Begin; Asset < Range.End; ++Asset)
	{
		if (!Graph.IsRegistryFiltered(Asset))
			Assets.push_back(Asset);
	}
	const auto GetName = [&](int32 Index) { return Graph.GetAssetName(Assets[static_cast<std::size_t>(Index)]); };
	const int32 Found = FindRepresentative(Graph.GetPackageName(Node), static_cast<int32>(Assets.size()), GetName);
	return Found == INDEX_NONE ? TOptional<uint32>() : Assets[static_cast<std::size_t>(Found)];
}

bool AssetPathUtils::IsHighSignalKind(const FString& Kind)
{
	static const TSet<FString> HighSignalKinds = {"Blueprint", "WidgetBlueprint", "AnimBlueprint", "BehaviorTree", "Blackboard",
		"EnvQuery", "DataAsset", "DataTable", "Struct", "Enum", "World", "StateTree"};
	return HighSignalKinds.Contains(Kind);
}
