#include "Scan/PackageRecords.h"

#include <algorithm>

namespace
{
/** Closes the last row of a column of ranges. */
template <class T>
void Close(std::vector<uint32>& First, const std::vector<T>& Elements)
{
	if (First.empty())
		First.push_back(0);
	First.push_back(static_cast<uint32>(Elements.size()));
}
}

uint32 FPackageRecords::Add(const FPackageHeader& Header, std::string_view ShortName, const TArray<FDiagnostic>& Faults)
{
	const uint32 Record = Draft.FirstAssets.empty() ? 0 : static_cast<uint32>(Draft.FirstAssets.size() - 1);
	for (const FPackageHeader::FAsset& Asset : Header.Assets)
		AddAsset(Header, Asset, ShortName);
	for (const FPackageHeader::FDependency& Dependency : Header.Dependencies)
	{
		Draft.DependencyTargets.push_back(Texts.Add(Dependency.Package));
		Draft.DependencyFlags.push_back(Dependency.Flags);
	}
	for (const FPackageHeader::FIndexEntry& Entry : Header.IndexEntries)
		AddEntry(Entry);
	for (const FDiagnostic& Fault : Faults)
		AddFault(Record, Fault);
	Close(Draft.FirstAssets, Draft.AssetNames);
	Close(Draft.FirstDependencies, Draft.DependencyTargets);
	Close(Draft.FirstEntries, Draft.EntryTexts);
	return Record;
}

void FPackageRecords::AddAsset(const FPackageHeader& Header, const FPackageHeader::FAsset& Asset, std::string_view ShortName)
{
	Draft.AssetNames.push_back(Asset.Name == ShortName ? NoId : Texts.Add(Asset.Name));
	Draft.AssetClasses.push_back(Texts.Add(Asset.Class));
	Draft.AssetOuters.push_back(AddUnlessEmpty(Asset.Outer));
	Draft.AssetFlags.push_back(Asset.bRegistryFiltered ? EAssetFlags::RegistryFiltered : uint8{0});
	for (uint32 Tag = Asset.FirstTag; Tag < Asset.FirstTag + Asset.NumTags; ++Tag)
	{
		Draft.TagKeys.push_back(Texts.Add(Header.Tags[Tag].Key));
		Draft.TagValues.push_back(Texts.Add(Header.Tags[Tag].Value));
	}
	Close(Draft.FirstTags, Draft.TagKeys);
}

void FPackageRecords::AddEntry(const FPackageHeader::FIndexEntry& Entry)
{
	Draft.EntryCategories.push_back(Texts.Add(Entry.Category));
	Draft.EntryTexts.push_back(Texts.Add(Entry.Text));
	Draft.EntryComments.push_back(AddUnlessEmpty(Entry.Comment));
	Draft.EntryDepths.push_back(static_cast<uint16>(std::min<uint32>(Entry.Depth, UINT16_MAX)));
}

void FPackageRecords::AddFault(uint32 Record, const FDiagnostic& Fault)
{
	Draft.FaultPackages.push_back(Record);
	Draft.FaultLines.push_back(static_cast<uint32>(Fault.Line));
	Draft.FaultColumns.push_back(static_cast<uint32>(Fault.Column));
	Draft.FaultSeverities.push_back(static_cast<uint8>(Fault.Severity));
	Draft.FaultTexts.push_back(Texts.Add(Fault.Text));
	Draft.FaultRules.push_back(Texts.Add(Fault.Rule));
}

FRegistryTables FPackageRecords::View()
{
	FRegistryTables Tables = Draft.View();
	Tables.TextStarts = Texts.GetStarts();
	Tables.TextBytes = Texts.GetBytes();
	return Tables;
}
