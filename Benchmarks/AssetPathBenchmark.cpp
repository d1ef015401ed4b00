// Path searches over a large project: the service alone, and the whole tool operation with its JSON. ORIVANE_BENCHMARK_TERMS
// lists the terms, with commas between them. ORIVANE_BENCHMARK_DUMP names a file to which the object paths of all assets are
// written, for other programs to search (see path_search_versus_others.py).

#include "BenchmarkProject.h"
#include "Core/Json/Json.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Quellar/Tools/AssetPathSearchOperation.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fstream>

namespace
{
void Service(benchmark::State& State, const FString& Term)
{
	FAssetPathSearchResult Found;
	for (auto _ : State)
		UAssetSearchService::Get().AssetPathSearch({.Term = Term}, Found);
	State.counters["hits"] = Found.TotalHits;
}

void Tool(benchmark::State& State, const FString& Term)
{
	FJsonObject Args;
	Args.SetStringField("term", Term);
	for (auto _ : State)
	{
		Orivane::FToolResult Result({"1", "asset_path_search", ""});
		FAssetPathSearchOperation::Execute(Args, Result);
		benchmark::DoNotOptimize(Result.GetData().Num());
	}
}

void DumpPaths(const char* FileName)
{
	const FAssetPathView Paths = OrivaneAssetRegistryUtils::GetAssetRegistry()->GetAssetPaths();
	std::ofstream File(FileName);
	FString Path;
	for (int32 Asset = 0; Asset < Paths.NumAssets(); ++Asset)
	{
		Path.Empty();
		Paths.AppendObjectPath(Asset, Path);
		File << Path.View() << '\n';
	}
}
}

int main(int NumArguments, char** Arguments)
{
	benchmark::Initialize(&NumArguments, Arguments);
	const FHeadlessEngine Engine;
	if (!OpenBenchmarkProject())
		return 1;
	if (const char* const FileName = std::getenv("ORIVANE_BENCHMARK_DUMP"))
		DumpPaths(FileName);
	const char* const Terms = std::getenv("ORIVANE_BENCHMARK_TERMS");
	for (const FString& Term : FString(Terms ? Terms : "p1,p299.p,zzz").ParseIntoArray(","))
	{
		benchmark::RegisterBenchmark(("Service/" + Term.ToStdString()).c_str(), Service, Term)->Unit(benchmark::kMicrosecond);
		benchmark::RegisterBenchmark(("Tool/" + Term.ToStdString()).c_str(), Tool, Term)->Unit(benchmark::kMicrosecond);
	}
	benchmark::RunSpecifiedBenchmarks();
	return 0;
}
