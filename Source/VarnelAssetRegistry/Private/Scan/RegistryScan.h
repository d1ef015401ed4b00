#pragma once

#include "Scan/HeaderReading.h"
#include "Scan/RegistryBuilder.h"

/** One run of FAssetRegistry::Scan. */
class FRegistryScan
{
public:
	using FClassParents = TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>;

	FRegistryScan(const FRegistryScanOptions& InOptions, const FClassParents& InClassParents, FRegistryScanReport& OutReport);
	/** Null when stopped. */
	TSharedPtr<const FRegistryImage> Run();

private:
	void FindCache(const FListedFiles& Files);
	TSharedPtr<const FRegistryImage> Update(const FListedFiles& Files);
	std::vector<uint32> TakeFilesToRead();
	bool IsCacheRight(const std::vector<FCandidate>& Candidates, const FReadHeaders& Headers) const;
	TSharedPtr<const FRegistryImage> Build(
		const FListedFiles& Files, const std::vector<FCandidate>& Candidates, FReadHeaders& Headers);
	void WriteCache(const FRegistryImage& Image);

	const FRegistryScanOptions& Options;
	const FClassParents& ClassParents;
	FRegistryScanReport& Report;
	const FImageKey Key;
	FCacheComparison Cached;
	std::vector<uint32> Respelled; // files that did not change and are read again, ascending
};
