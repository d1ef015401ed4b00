#pragma once

#include "LinkPicker.h"
#include "OutputFolder.h"
#include "ScriptModule.h"
#include "TextFiles.h"

#include <atomic>
#include <mutex>

/** What was written, added up over all threads. */
struct FWriteTotals
{
	uint64 NumLinks = 0;
	uint64 NumMissingTargets = 0;
	uint64 PackageBytes = 0;
	uint64 TextBytes = 0;
	uint32 NumUtf16 = 0;
	std::array<uint32, RareWords.size()> NumWithRareWord = {};

	void Add(const FWriteTotals& Other);
};

/** Writes a planned project to disk. The plan decides every byte; threads only share out the files. */
class FProjectWriter
{
public:
	explicit FProjectWriter(const FProjectPlan& InPlan);

	/** Writes all files into the folder, which must hold none of them. False, with the reason in GetError, on failure. */
	bool Write(const FFolderHandle& Folder);

	const std::string& GetError() const { return Error; }
	const FWriteTotals& GetTotals() const { return Totals; }

	/** How many packages link to a package. */
	uint32 GetNumUsers(uint32 Package) const { return NumUsers[Package].load(std::memory_order_relaxed); }

private:
	/** A run of packages in one folder, or of text files. */
	struct FJob
	{
		uint32 Folder;
		FRange Items;
	};

	bool WriteOwnFiles();
	void MakeJobs();
	void RunJobs(class FProgress* Progress);
	void WritePackages(const FJob& Job, class FPackageDraft& Draft, FWriteTotals& Sum);
	void WriteTextFiles(FRange Files, FTextFile& File, FWriteTotals& Sum);
	bool WriteBelow(const std::string& FolderPath, const std::string& Name, std::string_view Content);
	void CountLinks(const FPackageDraft& Draft, FWriteTotals& Sum);
	bool Fail(const std::string& Path);

	const FProjectPlan& Plan;
	FLinkPicker Picker;
	FScriptModule Script;
	const FFolderHandle* Project = nullptr;
	std::vector<FJob> Jobs;
	std::atomic<std::size_t> NextJob = 0;
	std::vector<std::atomic<uint32>> NumUsers;

	std::mutex Lock; // guards what follows while threads run
	FWriteTotals Totals;
	std::string Error;
	std::atomic<bool> bFailed = false;
};
