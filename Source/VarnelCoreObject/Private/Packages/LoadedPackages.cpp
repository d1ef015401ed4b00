#include "Packages/LoadedPackages.h"

#include "Core/Base/Map.h"
#include "Objects/ObjectTable.h"

#include <algorithm>

namespace
{
/** What an object takes beside its own bytes: its places in the tables and the allocator's share. */
constexpr int64 BytesAroundObject = 96;

/** Found without counting as use. */
UPackage* FindQuietly(FName Name)
{
	return static_cast<UPackage*>(FObjectTable::Get().Find(nullptr, Name));
}

/** An estimate: texts, lists and declarations take about what they take in the file. */
int64 EstimateBytes(const UPackage& Package, std::size_t NumFileBytes)
{
	int64 NumBytes = static_cast<int64>(NumFileBytes) + Package.GetClass()->GetPropertiesSize() + BytesAroundObject;
	ForEachNested(
		Package, [&NumBytes](const UObject& Object) { NumBytes += Object.GetClass()->GetPropertiesSize() + BytesAroundObject; });
	return NumBytes;
}
}

void FLoadedPackages::Add(const UPackage& Package, std::size_t NumFileBytes, std::vector<FName> References)
{
	std::sort(References.begin(), References.end(), [](FName A, FName B) { return A.GetComparisonId() < B.GetComparisonId(); });
	References.erase(std::unique(References.begin(), References.end()), References.end());
	References.shrink_to_fit();
	const int64 PackageBytes = EstimateBytes(Package, NumFileBytes);
	NumBytes += PackageBytes;
	Entries.push_back({Package.GetFName(), PackageBytes, std::move(References)});
}

/** A package that was unloaded and loaded again has an earlier entry that no longer counts. */
void FLoadedPackages::ForgetUnloaded()
{
	THashSet<FName, FKeyHash> Seen;
	const auto FirstCounting = std::stable_partition(Entries.rbegin(), Entries.rend(),
		[&Seen](const FEntry& Entry) { return FindQuietly(Entry.Name) && Seen.insert(Entry.Name).second; });
	Entries.erase(Entries.begin(), FirstCounting.base());
	NumBytes = 0;
	for (const FEntry& Entry : Entries)
		NumBytes += Entry.NumBytes;
}

std::vector<FLoadedPackageUse> FLoadedPackages::MakeUses() const
{
	THashMap<FName, int32, FKeyHash> Places;
	for (const FEntry& Entry : Entries)
		Places.emplace(Entry.Name, static_cast<int32>(Places.size()));

	std::vector<FLoadedPackageUse> Uses;
	for (const FEntry& Entry : Entries)
	{
		FLoadedPackageUse& Use = Uses.emplace_back(
			FLoadedPackageUse{Entry.NumBytes, FindQuietly(Entry.Name)->GetLastUse(), Pinned.contains(Entry.Name), {}});
		for (const FName Reference : Entry.References)
		{
			if (const auto Found = Places.find(Reference); Found != Places.end())
				Use.References.push_back(Found->second);
		}
	}
	return Uses;
}

int32 FLoadedPackages::KeepOnly(const std::vector<uint8>& Kept)
{
	TArray<UObject*> Gone;
	for (std::size_t Place = 0; Place < Entries.size(); ++Place)
	{
		if (!Kept[Place])
			Gone.Add(FindQuietly(Entries[Place].Name));
	}
	DestroyObjects(Gone);
	ForgetUnloaded();
	return Gone.Num();
}

int32 FLoadedPackages::Evict()
{
	if (MaxBytes <= 0 || NumBytes <= MaxBytes)
		return 0;
	ForgetUnloaded();
	return KeepOnly(ChooseKeptPackages(MakeUses(), MaxBytes));
}

int32 FLoadedPackages::Drop(const std::function<bool(FName PackageName)>& HasChanged)
{
	ForgetUnloaded();
	std::vector<uint8> Kept;
	for (const FEntry& Entry : Entries)
		Kept.push_back(!HasChanged(Entry.Name) && std::none_of(Entry.References.begin(), Entry.References.end(), HasChanged));
	DropReferencers(MakeUses(), Kept);
	return KeepOnly(Kept);
}

void FLoadedPackages::UnloadAll()
{
	ForgetUnloaded();
	TArray<UObject*> Packages;
	for (const FEntry& Entry : Entries)
		Packages.Add(FindQuietly(Entry.Name));
	Entries.clear();
	NumBytes = 0;
	DestroyObjects(Packages);
}

void FLoadedPackages::UnloadSince(std::size_t NumBefore)
{
	TArray<UObject*> Gone;
	for (std::size_t Place = NumBefore; Place < Entries.size(); ++Place)
	{
		if (UPackage* const Package = FindQuietly(Entries[Place].Name))
			Gone.Add(Package);
	}
	if (Gone.IsEmpty())
		return;
	DestroyObjects(Gone);
	ForgetUnloaded();
}
