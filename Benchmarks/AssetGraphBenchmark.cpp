// Explorations of a large project's dependency graph, as the tool explore_asset_graph runs them: 10,000 packages drawn with a
// fixed seed, each explored once, so that no walk finds what another has just touched. Reported per exploration, in microseconds:
// median, 99th percentile and maximum, and the mean number of relations. "service" is UAssetGraphService::ExploreGraph alone,
// "tool" the whole operation with its check of existence, messages and JSON.

#include "BenchmarkProject.h"
#include "Core/Json/Json.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Graph/AssetGraphService.h"
#include "Quellar/Tools/AssetGraphOperation.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <random>

namespace
{
constexpr int32 NumExplorations = 10'000;
constexpr uint32 Seed = 7;

int32 Count(const TArray<FAssetRelation>& Relations)
{
	int32 Total = Relations.Num();
	for (const FAssetRelation& Relation : Relations)
		Total += Count(Relation.Relations);
	return Total;
}

/** Packages that stand for the whole project, in an order without locality. */
const std::vector<FString>& GetRoots()
{
	static const std::vector<FString> Roots = []
	{
		TArray<FAssetData> Assets;
		OrivaneAssetRegistryUtils::GetAssetRegistry()->GetAssets({}, Assets, false);
		std::mt19937 Random(Seed);
		std::vector<FString> Drawn;
		for (int32 Index = 0; Index < NumExplorations; ++Index)
			Drawn.push_back(Assets[static_cast<int32>(Random() % static_cast<uint32>(Assets.Num()))].PackageName.ToString());
		return Drawn;
	}();
	return Roots;
}

void Report(benchmark::State& State, std::vector<double>& Microseconds, int64 NumRelations)
{
	std::sort(Microseconds.begin(), Microseconds.end());
	const auto At = [&](double Share) { return Microseconds[static_cast<std::size_t>(Share * double(Microseconds.size() - 1))]; };
	State.counters["median_us"] = At(0.5);
	State.counters["p99_us"] = At(0.99);
	State.counters["max_us"] = At(1);
	State.counters["relations"] = double(NumRelations) / double(Microseconds.size());
}

/** One iteration explores all roots; TExplore returns the number of relations. */
template <class TExplore>
void Explore(benchmark::State& State, TExplore&& ExploreOne)
{
	const std::vector<FString>& Roots = GetRoots();
	std::vector<double> Microseconds;
	int64 NumRelations = 0;
	for (auto _ : State)
	{
		for (const FString& Root : Roots)
		{
			const auto Start = std::chrono::steady_clock::now();
			NumRelations += ExploreOne(Root);
			const std::chrono::duration<double, std::micro> Elapsed = std::chrono::steady_clock::now() - Start;
			Microseconds.push_back(Elapsed.count());
		}
	}
	Report(State, Microseconds, NumRelations);
}

void Service(benchmark::State& State, EAssetGraphDirection Direction, int32 Depth, bool bHighSignalOnly)
{
	Explore(State,
		[&](const FString& Root)
		{
			FExploreAssetGraphResult Result;
			UAssetGraphService::ExploreGraph(
				{.Direction = Direction, .AssetPath = Root, .Depth = Depth, .bHighSignalOnly = bHighSignalOnly}, Result);
			return Count(Result.Relations);
		});
}

void Tool(benchmark::State& State, int32 Depth, bool bHighSignalOnly)
{
	Explore(State,
		[&](const FString& Root)
		{
			FJsonObject Args;
			Args.SetStringField("asset_path", Root);
			Args.SetNumberField("depth", Depth);
			Args.SetBoolField("high_signal_only", bHighSignalOnly);
			Orivane::FToolResult Result({"1", "explore_asset_graph", ""});
			FAssetGraphOperation::Execute(Args, Result);
			return 0;
		});
}

using EDirection = EAssetGraphDirection;
BENCHMARK_CAPTURE(Service, dependencies_default, EDirection::Dependencies, 1, true)->Iterations(1);
BENCHMARK_CAPTURE(Service, dependencies_depth2, EDirection::Dependencies, 2, true)->Iterations(1);
BENCHMARK_CAPTURE(Service, dependencies_depth2_all, EDirection::Dependencies, 2, false)->Iterations(1);
BENCHMARK_CAPTURE(Service, referencers_default, EDirection::Referencers, 1, true)->Iterations(1);
BENCHMARK_CAPTURE(Service, referencers_depth2_all, EDirection::Referencers, 2, false)->Iterations(1);
BENCHMARK_CAPTURE(Tool, default, 1, true)->Iterations(1);
BENCHMARK_CAPTURE(Tool, depth2_all, 2, false)->Iterations(1);
}

int main(int NumArguments, char** Arguments)
{
	benchmark::Initialize(&NumArguments, Arguments);
	const FHeadlessEngine Engine;
	if (!OpenBenchmarkProject())
		return 1;
	benchmark::RunSpecifiedBenchmarks();
	return 0;
}
