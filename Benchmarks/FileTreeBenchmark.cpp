// Measures what the kernel's part of a text search and of a warm start costs: listing, listing with stamps, reading every file.
// The folder comes from the environment variable FILE_TREE_FOLDER, else it is /usr/share/doc. The page cache is warm after the
// first round.

#include "Core/Files/FileTree.h"
#include "Core/Threads/Tasks.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <vector>

namespace
{
constexpr uint64 MaxFileBytes = 256ull * 1024 * 1024;

const char* GetFolder()
{
	const char* Chosen = std::getenv("FILE_TREE_FOLDER");
	return Chosen ? Chosen : "/usr/share/doc";
}

FFileTreeOptions MakeOptions(const benchmark::State& State)
{
	FFileTreeOptions Options;
	Options.NumThreads = static_cast<int32>(State.range(0));
	return Options;
}

void ReportFiles(benchmark::State& State, int32 NumFiles)
{
	State.counters["files"] = NumFiles;
	State.SetItemsProcessed(static_cast<int64>(State.iterations()) * NumFiles);
}

void List(benchmark::State& State, bool bWithStamps)
{
	FFileTreeOptions Options = MakeOptions(State);
	Options.bWithStamps = bWithStamps;
	int32 NumFiles = 0;
	for (auto _ : State)
		NumFiles = FFileTree::List(GetFolder(), Options).Num();
	ReportFiles(State, NumFiles);
}

/** Reads the range with Read(Index, Buffer) and returns the bytes. */
template <class TRead>
uint64 ReadRange(int32 Begin, int32 End, std::string& Buffer, TRead&& Read)
{
	uint64 NumBytes = 0;
	for (int32 Index = Begin; Index < End; ++Index)
	{
		if (Read(Index, Buffer) == EFileRead::Ok)
			NumBytes += Buffer.size();
	}
	return NumBytes;
}

void ReadAll(benchmark::State& State, bool bKeepsFolderOpen)
{
	const FFileTreeOptions Options = MakeOptions(State);
	const FFileTree Tree = FFileTree::List(GetFolder(), Options);
	std::vector<std::string> Buffers(static_cast<std::size_t>(Options.NumThreads));
	std::atomic<uint64> NumBytes = 0;
	for (auto _ : State)
	{
		NumBytes = 0;
		const auto ReadChunk = [&](int32 Begin, int32 End, int32 Worker)
		{
			std::string& Buffer = Buffers[static_cast<std::size_t>(Worker)];
			FFileTreeReader Reader(Tree);
			const auto ByReader = [&](int32 Index, std::string& Into) { return Reader.Read(Index, Into, MaxFileBytes); };
			const auto ByTree = [&](int32 Index, std::string& Into) { return Tree.Read(Index, Into, MaxFileBytes); };
			NumBytes += bKeepsFolderOpen ? ReadRange(Begin, End, Buffer, ByReader) : ReadRange(Begin, End, Buffer, ByTree);
		};
		ParallelFor(Tree.Num(), 64, ReadChunk, Options.NumThreads);
	}
	ReportFiles(State, Tree.Num());
	State.SetBytesProcessed(State.iterations() * static_cast<int64>(NumBytes.load()));
}
}

BENCHMARK_CAPTURE(List, Paths, false)->Arg(1)->Arg(2)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(List, PathsAndStamps, true)
	->Arg(1)
	->Arg(2)
	->MeasureProcessCPUTime()
	->UseRealTime()
	->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadAll, ByPath, false)->Arg(1)->Arg(2)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadAll, ByReader, true)->Arg(1)->Arg(2)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
