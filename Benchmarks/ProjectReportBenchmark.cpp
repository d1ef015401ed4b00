// Reports on a large project's dependency graph: each report alone, and the whole tool operation with its roots, file lines and
// JSON. Impact and ways start from packages drawn with a fixed seed, one for each iteration; impact also from the package with
// the most referencers, and ways from the first level to it.

#include "BenchmarkProject.h"
#include "Core/Json/Json.h"
#include "Project/HeadlessEngine.h"
#include "Project/ProjectRegistry.h"
#include "Reports/AssetRoots.h"
#include "Reports/ProjectReportOperation.h"
#include "Reports/ProjectReports.h"

#include <benchmark/benchmark.h>
#include <random>

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr int32 MaxRows = 200;
constexpr uint32 Seed = 7;

const FPackageGraphView& GetGraph()
{
	static const FPackageGraphView Graph = GetProjectRegistry().GetPackageGraph();
	return Graph;
}

const std::vector<FNode>& GetRoots()
{
	static const std::vector<FNode> Roots = AssetRoots::FindDefault(GetGraph());
	return Roots;
}

/** A root, where the project has one. */
FNode GetStart()
{
	return GetRoots().empty() ? 0 : GetRoots().front();
}

/** With a file, and the most referencers. */
FNode GetHub()
{
	static const FNode Hub = []
	{
		FNode Most = 0;
		for (FNode Node = 0; Node < GetGraph().NumNodes(); ++Node)
		{
			if (GetGraph().HasFile(Node) && GetGraph().GetReferencers(Node).Num() > GetGraph().GetReferencers(Most).Num())
				Most = Node;
		}
		return Most;
	}();
	return Hub;
}

/** In an order without locality; some are missing, or native code. */
class FDraw
{
public:
	FNode operator()() { return static_cast<FNode>(Random() % GetGraph().NumNodes()); }

private:
	std::mt19937 Random{Seed};
};

template <class TReport>
void Run(benchmark::State& State, TReport&& Report)
{
	int64 NumRows = 0;
	for (auto _ : State)
		NumRows = Report().NumRows;
	State.counters["rows"] = double(NumRows);
}

void Broken(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindBrokenReferences(GetGraph(), MaxRows); });
}

void Unused(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindUnusedAssets(GetGraph(), GetRoots(), MaxRows); });
}

void UnusedWithoutRoots(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindUnusedAssets(GetGraph(), {}, MaxRows); });
}

void Cycles(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindCycles(GetGraph(), MaxRows); });
}

void Impact(benchmark::State& State)
{
	Run(State, [Draw = FDraw()]() mutable { return ProjectReports::FindImpact(GetGraph(), Draw(), MaxRows); });
}

void ImpactOfHub(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindImpact(GetGraph(), GetHub(), MaxRows); });
}

void Ways(benchmark::State& State)
{
	FDraw Draw;
	Run(State,
		[&]
		{
			const FNode From = Draw();
			return ProjectReports::FindWays(GetGraph(), From, Draw(), MaxRows);
		});
}

void WaysToHub(benchmark::State& State)
{
	Run(State, [] { return ProjectReports::FindWays(GetGraph(), GetStart(), GetHub(), MaxRows); });
}

void Tool(benchmark::State& State, const char* Report)
{
	const FString Hub(GetGraph().GetPackageName(GetHub()));
	const FString Root(GetGraph().GetPackageName(GetStart()));
	for (auto _ : State)
	{
		FJsonObject Args;
		Args.SetStringField("report", Report);
		Args.SetStringField("asset_path", FString(Report) == "path" ? Root : Hub);
		Args.SetStringField("target_path", Hub);
		Orivane::FToolResult Result({"1", FProjectReportOperation::ToolName, ""});
		FProjectReportOperation::Execute(Args, Result);
	}
}

BENCHMARK(Broken)->Unit(benchmark::kMillisecond);
BENCHMARK(Unused)->Unit(benchmark::kMillisecond);
BENCHMARK(UnusedWithoutRoots)->Unit(benchmark::kMillisecond);
BENCHMARK(Cycles)->Unit(benchmark::kMillisecond);
BENCHMARK(Impact)->Unit(benchmark::kMillisecond);
BENCHMARK(ImpactOfHub)->Unit(benchmark::kMillisecond);
BENCHMARK(Ways)->Unit(benchmark::kMillisecond);
BENCHMARK(WaysToHub)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Tool, broken, "broken")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Tool, unused, "unused")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Tool, cycles, "cycles")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Tool, impact, "impact")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Tool, path, "path")->Unit(benchmark::kMillisecond);
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
