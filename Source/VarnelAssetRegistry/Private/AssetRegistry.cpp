#include "AssetRegistry/AssetRegistry.h"

#include "AssetRegistry/BlueprintIndex.h"
#include "Core/Text/Unicode.h"
#include "Queries/RegistryDump.h"
#include "Queries/RegistryOverlay.h"
#include "Queries/RegistryQuery.h"
#include "Scan/LiveRegistry.h"

namespace
{
bool AppendNeighbours(
	const FRegistrySnapshot& Snapshot, const FRegistrySnapshot::FNeighbours& Neighbours, TArray<FPackageDependency>& Out)
{
	Out.Reserve(Out.Num() + static_cast<int32>(Neighbours.Nodes.size()));
	for (std::size_t Edge = 0; Edge < Neighbours.Nodes.size(); ++Edge)
		Out.Add({Snapshot.GetNodeName(Neighbours.Nodes[Edge]), Neighbours.Flags[Edge]});
	return true;
}

FRegistrySnapshot::FRow FindRow(const FRegistrySnapshot& Snapshot, FName Name)
{
	const uint32 Node = Snapshot.FindNode(Name);
	return Node == NoId ? FRegistrySnapshot::FRow{*Snapshot.Base, NoId} : Snapshot.FindPackage(Node);
}
}

FAssetRegistry::FAssetRegistry() : Live(MakeUnique<FLiveRegistry>())
{
}

FAssetRegistry::~FAssetRegistry() = default;

bool FAssetRegistry::Scan(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport)
{
	return Live->Scan(Options, OutReport);
}

ERegistryUpdate FAssetRegistry::Update(const FRegistryScanOptions& Options, std::span<const std::string> Files,
	std::span<const std::string> Folders, FRegistryScanReport& OutReport)
{
	return Live->Update(Options, Files, Folders, OutReport);
}

void FAssetRegistry::SetClassParents(const TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>& ChildAndParent)
{
	FRegistryScan::FClassParents Parents = ChildAndParent;
	// The cache must not depend on the order in which a program happens to list its classes.
	Parents.StableSort(
		[](const auto& A, const auto& B) { return Unicode::CompareFolded(A.first.ToString(), B.first.ToString()) < 0; });
	Live->SetClassParents(std::move(Parents));
}

int32 FAssetRegistry::NumPackages() const
{
	return static_cast<int32>(Live->Take()->NumPackages());
}

int32 FAssetRegistry::NumAssets() const
{
	return static_cast<int32>(Live->Take()->NumAssets());
}

int64 FAssetRegistry::NumDependencies() const
{
	return Live->Take()->NumDependencies();
}

int64 FAssetRegistry::GetImageBytes() const
{
	const auto Current = Live->Take();
	const std::size_t NumOverlay = Current->Overlay ? Current->Overlay->Part->Image->GetBytes().size() : 0;
	return static_cast<int64>(Current->Base->Image->GetBytes().size() + NumOverlay);
}

TArray<std::pair<FTopLevelAssetPath, int32>> FAssetRegistry::CountAssetsByClass() const
{
	const auto Current = Live->Take();
	const std::vector<int32> Counts = Current->CountAssetsByClass();
	TArray<std::pair<FTopLevelAssetPath, int32>> Result;
	for (uint32 Class = 0; Class < Counts.size(); ++Class)
	{
		if (Counts[Class] > 0)
			Result.Add({Current->GetClassPath(Class), Counts[Class]});
	}
	Result.StableSort(
		[](const auto& A, const auto& B) { return Unicode::CompareFolded(A.first.ToString(), B.first.ToString()) < 0; });
	return Result;
}

TArray<FName> FAssetRegistry::ListPackages() const
{
	TArray<FName> Names;
	Live->Take()->ForEachPackage(
		[&Names](const FRegistrySnapshot::FRow& Package) { Names.Add(Package.Part.Names.GetNode(Package.Row)); });
	return Names;
}

FString FAssetRegistry::GetPackageFileName(FName PackageName, const IPackageSource*& OutSource) const
{
	const auto Current = Live->Take();
	const FRegistrySnapshot::FRow Package = FindRow(*Current, PackageName);
	return Package.Part.GetFileName(Package.Row, OutSource);
}

FAssetPathView FAssetRegistry::GetAssetPaths() const
{
	return FAssetPathView(Live->Take());
}

FBlueprintIndexView FAssetRegistry::GetBlueprintIndex() const
{
	return FBlueprintIndexView(Live->Take());
}

void FAssetRegistry::Dump(const std::function<void(FStringView Line)>& Write) const
{
	DumpRegistry(*Live->Take()->Base->Image, Write);
}

void FAssetRegistry::GetAssets(const FARFilter& Filter, TArray<FAssetData>& OutAssets, bool bSkipARFilteredAssets) const
{
	EnumerateAssets(
		Filter,
		[&OutAssets](const FAssetData& Asset)
		{
			OutAssets.Add(Asset);
			return true;
		},
		bSkipARFilteredAssets);
}

void FAssetRegistry::EnumerateAssets(
	const FARFilter& Filter, const std::function<bool(const FAssetData&)>& Visit, bool bSkipARFilteredAssets) const
{
	const auto Current = Live->Take();
	VisitAssets(*Current, Filter,
		[&](uint32 Asset)
		{ return (bSkipARFilteredAssets && Current->IsFiltered(Asset)) || Visit(Current->MakeAssetData(Asset)); });
}

FAssetData FAssetRegistry::GetAssetByObjectPath(const FSoftObjectPath& ObjectPath, bool, bool bSkipARFilteredAssets) const
{
	const auto Current = Live->Take();
	const FRegistrySnapshot::FRow Package = FindRow(*Current, ObjectPath.Asset.PackageName);
	if (Package.Row == NoId || !ObjectPath.IsValid())
		return {};
	const FRegistryImage& Image = *Package.Part.Image;
	const FRowRange Assets = FRegistryTables::RangeOf(Image.GetTables().FirstAssets, Package.Row);
	for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
	{
		const bool bInside = Image.GetTables().AssetOuters[Asset] != NoId;
		if (bInside == ObjectPath.SubPath.IsEmpty() || (bSkipARFilteredAssets && Image.IsFiltered(Asset)))
			continue;
		if (!bInside && !Unicode::EqualsFolded(Image.GetAssetName(Asset), ObjectPath.Asset.AssetName.View()))
			continue;
		FAssetData Data = Package.Part.MakeAssetData(Asset);
		if (!bInside || Data.GetSoftObjectPath() == ObjectPath)
			return Data;
	}
	return {};
}

void FAssetRegistry::GetAssetsByPackageName(
	FName PackageName, TArray<FAssetData>& OutAssets, bool, bool bSkipARFilteredAssets) const
{
	const auto Current = Live->Take();
	const FRowRange Assets = Current->GetAssets(FindRow(*Current, PackageName));
	for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
	{
		if (!bSkipARFilteredAssets || !Current->IsFiltered(Asset))
			OutAssets.Add(Current->MakeAssetData(Asset));
	}
}

FName FAssetRegistry::FindPackage(FStringView LongName) const
{
	const auto Current = Live->Take();
	const uint32 Node = Current->FindNode(LongName);
	return Node == NoId || Current->FindPackage(Node).Row == NoId ? FName() : Current->GetNodeName(Node);
}

bool FAssetRegistry::GetDependencies(FName PackageName, TArray<FPackageDependency>& OutDependencies) const
{
	const auto Current = Live->Take();
	const uint32 Node = Current->FindNode(PackageName);
	return Node != NoId && AppendNeighbours(*Current, Current->GetDependencies(Node), OutDependencies);
}

bool FAssetRegistry::GetReferencers(FName PackageName, TArray<FPackageDependency>& OutReferencers) const
{
	const auto Current = Live->Take();
	const uint32 Node = Current->FindNode(PackageName);
	return Node != NoId && AppendNeighbours(*Current, Current->GetReferencers(Node), OutReferencers);
}

int32 FAssetRegistry::GetNumDependencies(FName PackageName) const
{
	const auto Current = Live->Take();
	const uint32 Node = Current->FindNode(PackageName);
	return Node == NoId ? 0 : static_cast<int32>(Current->GetDependencies(Node).Nodes.size());
}

int32 FAssetRegistry::GetNumReferencers(FName PackageName) const
{
	const auto Current = Live->Take();
	const uint32 Node = Current->FindNode(PackageName);
	return Node == NoId ? 0 : static_cast<int32>(Current->GetReferencers(Node).Nodes.size());
}

FPackageGraphView FAssetRegistry::GetPackageGraph() const
{
	return FPackageGraphView(Live->Take());
}

uint64 FAssetRegistry::GetStateNumber() const
{
	return Live->GetStateNumber();
}

void FAssetRegistry::GetAncestorClasses(const FTopLevelAssetPath& ClassPath, TArray<FTopLevelAssetPath>& OutAncestors) const
{
	const auto Current = Live->Take();
	uint32 Class = Current->FindClass(ClassPath.ToString());
	while (Class != NoId && (Class = Current->GetParentClass(Class)) != NoId)
		OutAncestors.Add(Current->GetClassPath(Class));
}
