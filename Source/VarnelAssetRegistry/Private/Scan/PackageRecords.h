#pragma once

#include "CoreObject/Packages/PackageSource.h"
#include "Image/TextTable.h"

/**
 * What the headers of many packages say, in the columns of a registry: one collection for each thread that reads. All zones of
 * its tables are the same: one table of texts. Targets of dependencies and classes are therefore ids of their texts. Grows only.
 */
class FPackageRecords
{
public:
	/** Copies a header and what is wrong with it; its place among the records. ShortName is the package's name without its
	 * folder. */
	uint32 Add(const FPackageHeader& Header, std::string_view ShortName, const TArray<FDiagnostic>& Faults);
	/** Valid until the next record is added. */
	FRegistryTables View();

private:
	void AddAsset(const FPackageHeader& Header, const FPackageHeader::FAsset& Asset, std::string_view ShortName);
	void AddEntry(const FPackageHeader::FIndexEntry& Entry);
	void AddFault(uint32 Record, const FDiagnostic& Fault);
	uint32 AddUnlessEmpty(std::string_view Text) { return Text.empty() ? NoId : Texts.Add(Text); }

	FTextTable Texts{ESearchCase::CaseSensitive};
	FRegistryDraft Draft;
};
