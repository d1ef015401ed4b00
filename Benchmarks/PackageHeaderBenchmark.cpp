// Reading the headers of packages that lie in memory, as the registry's scan does after it has read a file: files and bytes a
// second on one thread. Packages are generated with a fixed seed, 2 to 20 KiB with their bodies: Blueprints with search entries,
// tables with rows, plain assets. "header first" is the order that exporters write, where reading stops at the body; "body first"
// makes the whole file be parsed.

#include "CoreObject/Packages/PackageSource.h"

#include <benchmark/benchmark.h>
#include <random>

namespace
{
constexpr int32 NumPackages = 512;

enum class EOrder
{
	HeaderFirst,
	BodyFirst,
};

/** Below Bound. */
uint32 Draw(std::mt19937& Random, uint32 Bound)
{
	return static_cast<uint32>(Random() % Bound);
}

std::string PathOf(uint32 Index)
{
	constexpr const char* Folders[] = {"Characters/Wolf", "AI/Guards", "UI/Menus", "Data/Tables", "Environment/Harbour/Props"};
	return "/Game/" + std::string(Folders[Index % 5]) + "/Asset_" + std::to_string(Index);
}

std::string MakeAssets(uint32 Index, bool bBlueprint)
{
	const std::string Path = PathOf(Index);
	const std::string Name = Path.substr(Path.rfind('/') + 1);
	std::string Text = R"({ "name": ")" + Name + R"(", "class": "/Script/Engine.)" + (bBlueprint ? "Blueprint" : "DataTable") +
		R"(", "tags": { )";
	if (bBlueprint)
		Text += R"("GeneratedClass": ")" + Path + "." + Name +
			R"(_C", "ParentClass": "/Script/Engine.Actor", "NativeParentClass": "/Script/Engine.Actor" } })";
	else
		Text += R"("RowStructure": ")" + PathOf(Index / 2) + R"(.S_Row" } })";
	return Text;
}

std::string MakeDependencies(std::mt19937& Random)
{
	std::string Text;
	for (uint32 Left = 1 + Draw(Random, 16); Left > 0; --Left)
	{
		Text += R"({ "package": ")" + PathOf(Draw(Random, 100000)) + R"(", "hard": )" + (Draw(Random, 3) ? "true" : "false");
		Text += std::string(R"(, "game": true })") + (Left > 1 ? ", " : "");
	}
	return Text;
}

std::string MakeIndex(std::mt19937& Random)
{
	std::string Text = R"({ "category": "Graph", "text": "EventGraph", "children": [ )";
	for (uint32 Left = 4 + Draw(Random, 30); Left > 0; --Left)
	{
		Text += R"({ "category": "Node", "text": "Set Health )" + std::to_string(Draw(Random, 50)) +
			R"(", "children": [ { "category": "Pin", "text": "Target" }, )";
		Text += std::string(R"({ "category": "Pin", "text": "New Value" } ] })") + (Left > 1 ? ", " : " ] }");
	}
	return Text;
}

std::string MakeObjects(std::mt19937& Random)
{
	std::string Text = R"({ "path": "Asset", "class": "/Script/Engine.DataTable", "properties": { "Rows": { )";
	for (uint32 Left = 8 + Draw(Random, 90); Left > 0; --Left)
	{
		Text += "\"Row_" + std::to_string(Left) + R"(": { "DisplayName": "A thing with a name", "Price": )" +
			std::to_string(Draw(Random, 1000));
		Text += std::string(R"(, "Weight": 0.5, "Icon": "/Game/Textures/T_Icon.T_Icon" })") + (Left > 1 ? ", " : " } } }");
	}
	return Text;
}

std::vector<std::string> MakePackages(EOrder Order)
{
	std::mt19937 Random(20240229);
	std::vector<std::string> Packages;
	for (uint32 Index = 0; Index < NumPackages; ++Index)
	{
		const bool bBlueprint = Index % 3 == 0;
		const std::string Objects = "\"objects\": [ " + MakeObjects(Random) + " ]";
		const std::string Header = R"("varnel_package": 1, "assets": [ )" + MakeAssets(Index, bBlueprint) +
			R"( ], "dependencies": [ )" + MakeDependencies(Random) + R"( ], "blueprint_index": [ )" +
			(bBlueprint ? MakeIndex(Random) : "") + " ]";
		Packages.push_back("{ " + (Order == EOrder::HeaderFirst ? Header + ", " + Objects : Objects + ", " + Header) + " }\n");
	}
	return Packages;
}

void ReadHeaders(benchmark::State& State, EOrder Order)
{
	std::vector<std::string> Packages = MakePackages(Order);
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	std::size_t NumBytes = 0;
	for (std::string& Package : Packages)
	{
		NumBytes += Package.size();
		Package.reserve(Package.size() + Reader->GetPadding());
	}
	const FString FileName = "Package.vasset";
	FPackageHeader Header;
	std::size_t NumRecords = 0;
	for (auto _ : State)
	{
		for (std::string& Package : Packages)
		{
			if (!Reader->ReadHeader(Package, FileName, Header, nullptr) || Header.Assets.size() != 1)
				return State.SkipWithError("a package could not be read");
			NumRecords += Header.Assets.size() + Header.Tags.size() + Header.Dependencies.size() + Header.IndexEntries.size();
		}
	}
	benchmark::DoNotOptimize(NumRecords);
	State.SetItemsProcessed(State.iterations() * NumPackages);
	State.SetBytesProcessed(State.iterations() * static_cast<int64>(NumBytes));
	State.SetLabel(std::to_string(NumBytes / NumPackages) + " bytes a package, " +
		std::to_string(NumRecords / static_cast<std::size_t>(State.iterations()) / NumPackages) + " records");
}
BENCHMARK_CAPTURE(ReadHeaders, header_first, EOrder::HeaderFirst)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReadHeaders, body_first, EOrder::BodyFirst)->Unit(benchmark::kMicrosecond);
}
