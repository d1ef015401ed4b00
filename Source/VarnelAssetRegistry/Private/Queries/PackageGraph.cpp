#include "AssetRegistry/PackageGraph.h"

#include "Queries/RegistrySnapshot.h"

namespace
{
FPackageGraphView::FNeighbours GetNeighbours(
	uint32 Node, std::span<const uint32> First, std::span<const uint32> Neighbours, std::span<const uint8> Flags)
{
	const FRowRange Range = FRegistryTables::RangeOf(First, Node);
	return {Neighbours.subspan(Range.Begin, Range.Num()), Flags.subspan(Range.Begin, Range.Num())};
}
}

FPackageGraphView::FNode FPackageGraphView::FindNode(FName PackageName) const
{
	return Snapshot ? Snapshot->Names.FindNode(PackageName) : NoNode;
}

FPackageGraphView::FNeighbours FPackageGraphView::GetDependencies(FNode Node) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	return GetNeighbours(Node, Tables.FirstDependencies, Tables.DependencyTargets, Tables.DependencyFlags);
}

FPackageGraphView::FNeighbours FPackageGraphView::GetReferencers(FNode Node) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	return GetNeighbours(Node, Tables.FirstReferencers, Tables.ReferencerSources, Tables.ReferencerFlags);
}

FStringView FPackageGraphView::GetPackageName(FNode Node) const
{
	return Snapshot->Image->GetTables().GetText(EZone::Nodes, Node);
}

FPackageGraphView::FAssetRange FPackageGraphView::GetAssets(FNode Node) const
{
	if (Node >= Snapshot->Image->NumPackages())
		return {};
	const FRowRange Assets = FRegistryTables::RangeOf(Snapshot->Image->GetTables().FirstAssets, Node);
	return {Assets.Begin, Assets.End};
}

bool FPackageGraphView::IsRegistryFiltered(uint32 Asset) const
{
	return Snapshot->Image->IsFiltered(Asset);
}

FStringView FPackageGraphView::GetAssetName(uint32 Asset) const
{
	return Snapshot->Image->GetAssetName(Asset);
}

FTopLevelAssetPath FPackageGraphView::GetAssetClass(uint32 Asset) const
{
	return Snapshot->Names.GetClass(Snapshot->Image->GetTables().AssetClasses[Asset]);
}

void FPackageGraphView::AppendObjectPath(uint32 Asset, FString& Out) const
{
	Snapshot->Image->AppendObjectPath(Asset, Out);
}
