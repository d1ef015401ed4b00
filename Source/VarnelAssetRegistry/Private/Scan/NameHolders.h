#pragma once

#include "Scan/CacheComparison.h"

/** A file whose header is to be read. */
struct FCandidate
{
	uint32 File = 0;		   // among the listed files
	std::string_view LongName; // of its package
};

/**
 * Names the packages of files, and decides who gets a name that several files have: the first in byte order of the absolute path.
 * The others, and files whose path makes no package name, are reported. Whether a file can be read plays no part.
 */
class FNameHolders
{
public:
	FNameHolders(const FListedFiles& InFiles, FDiagnosticSink* InDiagnostics) : Files(InFiles), Diagnostics(InDiagnostics) {}

	/** Called once. Packages that are to be carried over from the cache and lose their name are taken out of InOutCached. */
	void Choose(const std::vector<uint32>& FilesToRead, FCacheComparison& InOutCached);
	/** In registry order. The names live as long as this object. */
	const std::vector<FCandidate>& GetCandidates() const { return Candidates; }
	/** Some file did not get the name that it has. */
	bool AreNamesContested() const { return bContested; }

private:
	void AddNames(const std::vector<uint32>& FilesToRead);
	void AddName(uint32 File);
	void FoldNames(std::string& OutFolded, std::vector<std::string_view>& OutNames) const;
	void ChooseOne(std::span<const uint32> SameName, FCacheComparison& Cached, std::vector<FCandidate>& Chosen);
	bool LiesBefore(uint32 FileA, uint32 FileB) const;
	void ReportTaken(uint32 File, uint32 Holder);
	void Report(uint32 File, const char* Rule, FString Text) const;

	const FListedFiles& Files;
	FDiagnosticSink* const Diagnostics;
	std::string Names;
	std::vector<FCandidate> Candidates;
	bool bContested = false;
};
