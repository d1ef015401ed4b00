#include "Scan/HeaderReading.h"

#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/PackageName.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <numeric>
#include <optional>

namespace
{
constexpr int32 FilesPerChunk = 64; // mostly of one folder, which then stays open

/** Keeps threads from reading many large files at a time. */
class FLargeFileGate
{
public:
	/** Inside as long as it lives. */
	class FPass
	{
	public:
		/** Waits until there is room for a file of that size, or no other thread is inside. */
		FPass(FLargeFileGate& InGate, uint64 InNumBytes) : Gate(InGate), NumBytes(InNumBytes)
		{
			std::unique_lock Guard(Gate.Lock);
			Gate.Left.wait(Guard, [this] { return Gate.BytesInside == 0 || Gate.BytesInside + NumBytes <= MaxBytesInside; });
			Gate.BytesInside += NumBytes;
		}
		~FPass()
		{
			const std::lock_guard Guard(Gate.Lock);
			Gate.BytesInside -= NumBytes;
			Gate.Left.notify_all();
		}
		FPass(const FPass&) = delete;
		FPass& operator=(const FPass&) = delete;

	private:
		FLargeFileGate& Gate;
		const uint64 NumBytes;
	};

private:
	static constexpr uint64 MaxBytesInside = 16 * 1024 * 1024;
	std::mutex Lock;
	std::condition_variable Left;
	uint64 BytesInside = 0;
};

/** What one thread needs to read headers. */
class FHeaderReader
{
public:
	FHeaderReader(
		const FListedFiles& InFiles, const FRegistryScanOptions& InOptions, FPackageRecords& InRecords, FLargeFileGate& InGate)
		: Files(InFiles)
		, Options(InOptions)
		, Records(InRecords)
		, Gate(InGate)
		, Formats(static_cast<std::size_t>(InOptions.Sources.Num()))
	{
	}

	/** The place of the file's record; NoId when there is none. */
	uint32 Read(const FCandidate& Candidate);
	int32 GetNumRead() const { return NumRead; }

private:
	uint32 ReadWithin(const FCandidate& Candidate);
	EFileRead ReadBytes(uint32 File, uint64 MaxBytes, std::size_t Padding);
	void Report(uint32 File, EFileRead Outcome, uint64 MaxBytes) const;

	const FListedFiles& Files;
	const FRegistryScanOptions& Options;
	FPackageRecords& Records;
	FLargeFileGate& Gate;
	std::vector<TUniquePtr<IPackageReader>> Formats; // by source, made when needed
	uint32 OpenRoot = NoId;
	std::optional<FFileTreeReader> Tree; // of the open root
	std::string Bytes;
	FPackageHeader Header;
	int32 NumRead = 0;
};

uint32 FHeaderReader::Read(const FCandidate& Candidate)
{
	const uint64 NumBytes = Files.GetStamp(Candidate.File).Size;
	if (NumBytes <= LargePackageBytes)
		return ReadWithin(Candidate);
	const FLargeFileGate::FPass Pass(Gate, NumBytes);
	const uint32 Record = ReadWithin(Candidate);
	Formats[Files.GetSource(Candidate.File)] = nullptr; // with its buffers
	Bytes = std::string();
	return Record;
}

uint32 FHeaderReader::ReadWithin(const FCandidate& Candidate)
{
	const uint8 SourceIndex = Files.GetSource(Candidate.File);
	const IPackageSource& Source = *Options.Sources[SourceIndex];
	TUniquePtr<IPackageReader>& Format = Formats[SourceIndex];
	if (!Format)
		Format = Source.MakeReader();
	const EFileRead Outcome = ReadBytes(Candidate.File, Source.GetMaxFileBytes(), Format->GetPadding());
	if (Outcome != EFileRead::Ok)
	{
		Report(Candidate.File, Outcome, Source.GetMaxFileBytes());
		return NoId;
	}
	++NumRead;
	Header.Reset();
	FDiagnosticSink Sink; // of the file alone: its record holds them too
	const bool bUsable = Format->ReadHeader(Bytes, Files.GetDisplayName(Candidate.File), Header, &Sink);
	const TArray<FDiagnostic> Faults = Sink.GetSorted();
	for (int32 Index = 0; Options.Diagnostics && Index < Faults.Num(); ++Index)
		Options.Diagnostics->Add(Faults[Index]);
	return bUsable ? Records.Add(Header, FPackageName::GetShortName(Candidate.LongName), Faults) : NoId;
}

EFileRead FHeaderReader::ReadBytes(uint32 File, uint64 MaxBytes, std::size_t Padding)
{
	const uint32 RootIndex = Files.GetRootIndex(File);
	const FListedFiles::FRoot& Root = Files.GetRoots()[RootIndex];
	if (OpenRoot != RootIndex)
		Tree.emplace(Root.Tree);
	OpenRoot = RootIndex;
	return Tree->Read(static_cast<int32>(File - Root.FirstFile), Bytes, MaxBytes, Padding);
}

void FHeaderReader::Report(uint32 File, EFileRead Outcome, uint64 MaxBytes) const
{
	if (!Options.Diagnostics || Outcome == EFileRead::Missing)
		return;
	FDiagnostic Diagnostic{.File = Files.GetDisplayName(File),
		.Text = "the file cannot be read, so its package is missing",
		.Rule = "unreadable-file"};
	if (Outcome == EFileRead::TooLarge)
	{
		Diagnostic.Text =
			FString::Printf("the file is larger than %d MiB, so its package is missing", static_cast<int>(MaxBytes >> 20));
		Diagnostic.Rule = "too-large";
	}
	Options.Diagnostics->Add(std::move(Diagnostic));
}

/** Candidates in the order of their files, so that a folder is opened once. */
std::vector<uint32> SortByFile(const std::vector<FCandidate>& Candidates)
{
	std::vector<uint32> Order(Candidates.size());
	std::iota(Order.begin(), Order.end(), 0);
	std::sort(Order.begin(), Order.end(), [&Candidates](uint32 A, uint32 B) { return Candidates[A].File < Candidates[B].File; });
	return Order;
}
}

FReadHeaders ReadHeaders(
	const std::vector<FCandidate>& Candidates, const FListedFiles& Files, const FRegistryScanOptions& Options)
{
	FReadHeaders Out;
	Out.Places.resize(Candidates.size());
	const int32 NumThreads = Options.NumThreads > 0 ? Options.NumThreads : GetNumWorkers();
	Out.Readers.resize(static_cast<std::size_t>(NumThreads));
	std::deque<FHeaderReader> Readers;
	FLargeFileGate Gate;
	for (FPackageRecords& Records : Out.Readers)
		Readers.emplace_back(Files, Options, Records, Gate);
	const std::vector<uint32> Order = SortByFile(Candidates);
	const auto ReadChunk = [&](int32 Begin, int32 End, int32 Worker)
	{
		for (int32 Index = Begin; Index < End && !Options.Stop.stop_requested(); ++Index)
		{
			const uint32 Candidate = Order[static_cast<std::size_t>(Index)];
			const uint32 Record = Readers[static_cast<std::size_t>(Worker)].Read(Candidates[Candidate]);
			if (Record != NoId)
				Out.Places[Candidate] = {static_cast<uint32>(Worker), Record};
			if (Options.NumDone)
				++*Options.NumDone;
		}
	};
	ParallelFor(static_cast<int32>(Order.size()), FilesPerChunk, ReadChunk, NumThreads);
	for (const FHeaderReader& Reader : Readers)
		Out.NumRead += Reader.GetNumRead();
	return Out;
}
