#pragma once

#include "Scan/HeaderReading.h"
#include "Scan/RegistryBuilder.h"
#include "Scan/ScanScope.h"

#include <map>

/** Package names of files that gave no record; such a file holds its name all the same. */
struct FNamesWithoutRecord
{
	std::map<std::string, std::string> FileByName; // name folded; path absolute, bytes of the file system
	bool bContested = false;					   // several files had one name, whichever got it
};

/** What limits a run to the files that have changed. */
struct FScanLimits
{
	TSharedPtr<const FRegistryImage> Known; // taken in the cache file's place; null: none
	const FScanScope* Scope = nullptr;		// the files to look at, none of them for the cache file; null: all
	const FScanScope* Changed = nullptr;	// files to read anew whatever their stamps are; null: none
	uint32 MaxFiles = UINT32_MAX;			// to be found in the scope
};

/** One run of FAssetRegistry::Scan or Update. */
class FRegistryScan
{
public:
	using FClassParents = TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>;

	/** All but the last must outlive the run. */
	FRegistryScan(const FRegistryScanOptions& InOptions, const FClassParents& InClassParents, FRegistryScanReport& OutReport,
		FScanLimits InLimits = {});
	/** Null when stopped, or when there are too many files. Once. */
	TSharedPtr<const FRegistryImage> Run();
	/** After the run. */
	FNamesWithoutRecord TakeNamesWithoutRecord() { return std::move(NamesWithoutRecord); }

private:
	void FindCache(const FListedFiles& Files);
	TSharedPtr<const FRegistryImage> Update(const FListedFiles& Files);
	std::vector<uint32> TakeFilesToRead();
	void ReportCachedFaults(const FListedFiles& Files) const;
	bool IsCacheRight(const std::vector<FCandidate>& Candidates, const FReadHeaders& Headers) const;
	TSharedPtr<const FRegistryImage> Build(
		const FListedFiles& Files, const std::vector<FCandidate>& Candidates, FReadHeaders& Headers);
	void GatherNamesWithoutRecord(const FNameHolders& Holders, const FReadHeaders& Headers, const FListedFiles& Files);
	void WriteCache(const FRegistryImage& Image);

	const FRegistryScanOptions& Options;
	const FClassParents& ClassParents;
	FRegistryScanReport& Report;
	const FScanLimits Limits;
	const FImageKey Key;
	FNamesWithoutRecord NamesWithoutRecord;
	FCacheComparison Cached;
	std::vector<uint32> Respelled; // files that did not change and are read again, ascending
};
