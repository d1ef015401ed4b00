#include "AssetRegistry/PackageGraph.h"

#include "Queries/RegistrySnapshot.h"

FPackageGraphView::FNode FPackageGraphView::NumNodes() const
{
	return Snapshot ? Snapshot->NumNodes() : 0;
}

FPackageGraphView::FNode FPackageGraphView::FindNode(FName PackageName) const
{
	return Snapshot ? Snapshot->FindNode(PackageName) : NoNode;
}

FPackageGraphView::FNeighbours FPackageGraphView::GetDependencies(FNode Node) const
{
	const auto [Nodes, Flags] = Snapshot->GetDependencies(Node);
	return {Nodes, Flags};
}

FPackageGraphView::FNeighbours FPackageGraphView::GetReferencers(FNode Node) const
{
	const auto [Nodes, Flags] = Snapshot->GetReferencers(Node);
	return {Nodes, Flags};
}

FStringView FPackageGraphView::GetPackageName(FNode Node) const
{
	return Snapshot->GetNodeText(Node);
}

bool FPackageGraphView::HasFile(FNode Node) const
{
	return Snapshot->FindPackage(Node).Row != NoId;
}

FPackageGraphView::FAssetRange FPackageGraphView::GetAssets(FNode Node) const
{
	const FRowRange Assets = Snapshot->GetAssets(Snapshot->FindPackage(Node));
	return {Assets.Begin, Assets.End};
}

bool FPackageGraphView::IsRegistryFiltered(uint32 Asset) const
{
	return Snapshot->IsFiltered(Asset);
}

FStringView FPackageGraphView::GetAssetName(uint32 Asset) const
{
	const FRegistrySnapshot::FRow Row = Snapshot->GetAsset(Asset);
	return Row.Part.Image->GetAssetName(Row.Row);
}

FTopLevelAssetPath FPackageGraphView::GetAssetClass(uint32 Asset) const
{
	return Snapshot->GetClassPath(Snapshot->GetClassOf(Asset));
}

uint32 FPackageGraphView::GetClassNumber(uint32 Asset) const
{
	return Snapshot->GetClassOf(Asset);
}

uint32 FPackageGraphView::NumClasses() const
{
	return Snapshot ? Snapshot->NumClasses() : 0;
}

FTopLevelAssetPath FPackageGraphView::GetClassPath(uint32 Class) const
{
	return Snapshot->GetClassPath(Class);
}

uint32 FPackageGraphView::GetFolderNumber(uint32 Asset) const
{
	return Snapshot->GetFolderOf(Asset);
}

uint32 FPackageGraphView::NumFolders() const
{
	return Snapshot ? Snapshot->NumFolders() : 0;
}

FStringView FPackageGraphView::GetFolderPath(uint32 Folder) const
{
	return Snapshot->GetFolderPath(Folder);
}

void FPackageGraphView::AppendObjectPath(uint32 Asset, FString& Out) const
{
	Snapshot->AppendObjectPath(Asset, Out);
}
