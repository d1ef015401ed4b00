#include "BenchmarkProject.h"

#include "Project/Project.h"
#include "Project/ProjectRegistry.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

namespace
{
std::filesystem::path WriteSmallProject()
{
	const std::filesystem::path Folder = std::filesystem::temp_directory_path() / "orivane_benchmark_project";
	std::filesystem::create_directories(Folder / "Content");
	std::ofstream(Folder / "Small.uproject") << "{}";
	constexpr int32 NumPackages = 300;
	std::mt19937 Random(7);
	for (int32 Index = 0; Index < NumPackages; ++Index)
	{
		const std::string Name = "P" + std::to_string(Index);
		std::ofstream File(Folder / "Content" / (Name + ".vasset"));
		File << R"({"varnel_package": 1, "assets": [{"name": ")" << Name << R"(", "class": "/Script/Engine.Blueprint"}], )"
			 << R"("dependencies": [{"package": "/Game/P)" << Random() % NumPackages
			 << R"("}], "blueprint_index": [], "objects": []})";
	}
	return Folder;
}
}

bool OpenBenchmarkProject()
{
	const char* const Given = std::getenv("ORIVANE_BENCHMARK_PROJECT");
	FProjectOptions Options;
	Options.Path = FString::FromExternal(Given ? std::string(Given) : WriteSmallProject().string());
	Options.Cache = std::getenv("ORIVANE_BENCHMARK_NO_CACHE") ? ERegistryCache::Ignore : ERegistryCache::Use;
	FDiagnosticSink Diagnostics;
	FString Error;
	if (!FProject::Open(Options, Diagnostics, Error))
	{
		std::fprintf(stderr, "error: %s\n", *Error);
		return false;
	}
	const FAssetRegistry& Registry = GetProjectRegistry();
	std::fprintf(stderr, "%s: %d packages, %lld links, image of %lld bytes\n", *Options.Path, Registry.NumPackages(),
		static_cast<long long>(Registry.NumDependencies()), static_cast<long long>(Registry.GetImageBytes()));
	return true;
}
