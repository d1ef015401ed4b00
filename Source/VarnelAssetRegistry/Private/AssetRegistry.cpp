#include "AssetRegistry/AssetRegistry.h"

#include "AssetRegistry/BlueprintIndex.h"
#include "Core/Text/Unicode.h"
#include "Queries/RegistryDump.h"
#include "Queries/RegistryQuery.h"
#include "Queries/RegistrySnapshot.h"
#include "Scan/RegistryScan.h"

#include <mutex>

namespace
{
bool IsHidden(const FRegistryImage& Image, uint32 Asset, bool bSkipARFilteredAssets)
{
	return bSkipARFilteredAssets && Image.IsFiltered(Asset);
}

bool AppendNeighbours(const FRegistrySnapshot& State, FName PackageName, std::span<const uint32> First,
	std::span<const uint32> Neighbours, std::span<const uint8> Flags, TArray<FPackageDependency>& Out)
{
	const uint32 Node = State.Names.FindNode(PackageName);
	if (Node == NoId)
		return false;
	const FRowRange Range = FRegistryTables::RangeOf(First, Node);
	Out.Reserve(Out.Num() + static_cast<int32>(Range.Num()));
	for (uint32 Edge = Range.Begin; Edge < Range.End; ++Edge)
		Out.Add({State.Names.GetNode(Neighbours[Edge]), Flags[Edge]});
	return true;
}

int32 CountNeighbours(const FRegistrySnapshot& State, FName PackageName, std::span<const uint32> First)
{
	const uint32 Node = State.Names.FindNode(PackageName);
	return Node == NoId ? 0 : static_cast<int32>(FRegistryTables::RangeOf(First, Node).Num());
}
}

struct FAssetRegistry::FState
{
	using FSnapshotPtr = TSharedPtr<const FRegistrySnapshot>;

	/** A query works on what it took here, whatever a scan does meanwhile. */
	FSnapshotPtr Take() const
	{
		const std::lock_guard Guard(Lock);
		return Current;
	}
	void Set(FSnapshotPtr New)
	{
		const std::lock_guard Guard(Lock);
		Current.swap(New); // the old one is freed behind the lock
	}

	std::mutex ScanLock; // one scan at a time; guards ClassParents
	FRegistryScan::FClassParents ClassParents;

private:
	mutable std::mutex Lock;
	FSnapshotPtr Current = MakeShared<FRegistrySnapshot>(FRegistryImage::MakeEmpty(), FRegistryScanOptions());
};

FAssetRegistry::FAssetRegistry() : State(MakeUnique<FState>())
{
}

FAssetRegistry::~FAssetRegistry() = default;

bool FAssetRegistry::Scan(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport)
{
	const std::lock_guard Guard(State->ScanLock);
	TSharedPtr<const FRegistryImage> Image = FRegistryScan(Options, State->ClassParents, OutReport).Run();
	if (!Image)
		return false;
	State->Set(MakeShared<FRegistrySnapshot>(std::move(Image), Options));
	return true;
}

void FAssetRegistry::SetClassParents(const TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>& ChildAndParent)
{
	const std::lock_guard Guard(State->ScanLock);
	State->ClassParents = ChildAndParent;
	// The cache must not depend on the order in which a program happens to list its classes.
	State->ClassParents.StableSort(
		[](const auto& A, const auto& B) { return Unicode::CompareFolded(A.first.ToString(), B.first.ToString()) < 0; });
}

int32 FAssetRegistry::NumPackages() const
{
	return static_cast<int32>(State->Take()->Image->NumPackages());
}

int32 FAssetRegistry::NumAssets() const
{
	return static_cast<int32>(State->Take()->Image->NumAssets());
}

int64 FAssetRegistry::NumDependencies() const
{
	return static_cast<int64>(State->Take()->Image->GetTables().DependencyTargets.size());
}

int64 FAssetRegistry::GetImageBytes() const
{
	return static_cast<int64>(State->Take()->Image->GetBytes().size());
}

TArray<std::pair<FTopLevelAssetPath, int32>> FAssetRegistry::CountAssetsByClass() const
{
	const auto Current = State->Take();
	TArray<std::pair<FTopLevelAssetPath, int32>> Counts;
	for (uint32 Class = 0; Class < Current->Image->NumClasses(); ++Class)
	{
		if (const uint32 Num = FRegistryTables::RangeOf(Current->Image->GetTables().FirstClassAssets, Class).Num(); Num > 0)
			Counts.Add({Current->Names.GetClass(Class), static_cast<int32>(Num)});
	}
	return Counts;
}

FString FAssetRegistry::GetPackageFileName(FName PackageName, const IPackageSource*& OutSource) const
{
	const auto Current = State->Take();
	const uint32 Package = Current->Names.FindPackage(PackageName);
	OutSource = nullptr;
	if (Package == NoId)
		return {};
	const FRegistryTables& Tables = Current->Image->GetTables();
	const uint32 File = Tables.PackageFiles[Package];
	if (const int32 Source = Tables.FileSources[File]; Current->Sources.IsValidIndex(Source))
		OutSource = Current->Sources[Source];
	return Current->RootFolders[Current->Image->GetRootOfFile(File)] + Current->Image->GetRelativePath(File);
}

FAssetPathView FAssetRegistry::GetAssetPaths() const
{
	return FAssetPathView(State->Take());
}

FBlueprintIndexView FAssetRegistry::GetBlueprintIndex() const
{
	return FBlueprintIndexView(State->Take());
}

void FAssetRegistry::Dump(const std::function<void(FStringView Line)>& Write) const
{
	DumpRegistry(*State->Take()->Image, Write);
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
	const auto Current = State->Take();
	VisitAssets(*Current->Image, Current->Names, Filter,
		[&](uint32 Asset)
		{ return IsHidden(*Current->Image, Asset, bSkipARFilteredAssets) || Visit(Current->MakeAssetData(Asset)); });
}

FAssetData FAssetRegistry::GetAssetByObjectPath(const FSoftObjectPath& ObjectPath, bool, bool bSkipARFilteredAssets) const
{
	const auto Current = State->Take();
	const uint32 Package = Current->Names.FindPackage(ObjectPath.Asset.PackageName);
	if (Package == NoId || !ObjectPath.IsValid())
		return {};
	const FRegistryImage& Image = *Current->Image;
	const FRowRange Assets = FRegistryTables::RangeOf(Image.GetTables().FirstAssets, Package);
	for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
	{
		const bool bInside = Image.GetTables().AssetOuters[Asset] != NoId;
		if (bInside == ObjectPath.SubPath.IsEmpty() || IsHidden(Image, Asset, bSkipARFilteredAssets))
			continue;
		if (!bInside && !Unicode::EqualsFolded(Image.GetAssetName(Asset), ObjectPath.Asset.AssetName.View()))
			continue;
		FAssetData Data = Current->MakeAssetData(Asset);
		if (!bInside || Data.GetSoftObjectPath() == ObjectPath)
			return Data;
	}
	return {};
}

void FAssetRegistry::GetAssetsByPackageName(
	FName PackageName, TArray<FAssetData>& OutAssets, bool, bool bSkipARFilteredAssets) const
{
	const auto Current = State->Take();
	const uint32 Package = Current->Names.FindPackage(PackageName);
	if (Package == NoId)
		return;
	const FRowRange Assets = FRegistryTables::RangeOf(Current->Image->GetTables().FirstAssets, Package);
	for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
	{
		if (!IsHidden(*Current->Image, Asset, bSkipARFilteredAssets))
			OutAssets.Add(Current->MakeAssetData(Asset));
	}
}

FName FAssetRegistry::FindPackage(FStringView LongName) const
{
	const auto Current = State->Take();
	const uint32 Package = Current->Image->FindPackage(LongName);
	return Package == NoId ? FName() : Current->Names.GetNode(Package);
}

bool FAssetRegistry::GetDependencies(FName PackageName, TArray<FPackageDependency>& OutDependencies) const
{
	const auto Current = State->Take();
	const FRegistryTables& Tables = Current->Image->GetTables();
	return AppendNeighbours(
		*Current, PackageName, Tables.FirstDependencies, Tables.DependencyTargets, Tables.DependencyFlags, OutDependencies);
}

bool FAssetRegistry::GetReferencers(FName PackageName, TArray<FPackageDependency>& OutReferencers) const
{
	const auto Current = State->Take();
	const FRegistryTables& Tables = Current->Image->GetTables();
	return AppendNeighbours(
		*Current, PackageName, Tables.FirstReferencers, Tables.ReferencerSources, Tables.ReferencerFlags, OutReferencers);
}

int32 FAssetRegistry::GetNumDependencies(FName PackageName) const
{
	const auto Current = State->Take();
	return CountNeighbours(*Current, PackageName, Current->Image->GetTables().FirstDependencies);
}

int32 FAssetRegistry::GetNumReferencers(FName PackageName) const
{
	const auto Current = State->Take();
	return CountNeighbours(*Current, PackageName, Current->Image->GetTables().FirstReferencers);
}

FPackageGraphView FAssetRegistry::GetPackageGraph() const
{
	return FPackageGraphView(State->Take());
}

void FAssetRegistry::GetAncestorClasses(const FTopLevelAssetPath& ClassPath, TArray<FTopLevelAssetPath>& OutAncestors) const
{
	const auto Current = State->Take();
	const std::span<const uint32> Parents = Current->Image->GetTables().ClassParents;
	uint32 Class = Current->Image->FindClass(ClassPath.ToString());
	while (Class != NoId && (Class = Parents[Class]) != NoId)
		OutAncestors.Add(Current->Names.GetClass(Class));
}
