// Reading and writing JSON: package headers (what the first scan of a project pays for each file), whole packages, the value
// model, the writer. Bytes per second count the whole text, also where only its head is read.

#include "Core/Json/Json.h"
#include "Core/Json/JsonDocument.h"

#include <benchmark/benchmark.h>

namespace
{
std::string Path(int64 Index)
{
	return "/Game/Characters/Guard/BT_Guard_" + std::to_string(Index) + ".BT_Guard_" + std::to_string(Index);
}

std::string MakeHeader(int64 NumIndexEntries)
{
	std::string Text =
		"{\n  \"varnel_package\": 1,\n  \"assets\": [\n    { \"name\": \"BP_Guard\", \"class\": \"/Script/Engine.Blueprint\", "
		"\"tags\": { \"ParentClass\": \"/Script/Engine.Character\", \"GeneratedClass\": \"/Game/BP_Guard.BP_Guard_C\" } }\n  ],\n"
		"  \"dependencies\": [\n";
	for (int64 Index = 0; Index < 6; ++Index)
		Text += "    { \"package\": \"" + Path(Index) + "\", \"hard\": true, \"game\": true }" + (Index < 5 ? ",\n" : "\n");
	Text += "  ],\n  \"blueprint_index\": [\n";
	for (int64 Index = 0; Index < NumIndexEntries; ++Index)
		Text += "    { \"category\": \"Node\", \"text\": \"Print \\\"step " + std::to_string(Index) + "\\\"\" },\n";
	return Text + "    { \"category\": \"Var\", \"text\": \"Health\" }\n  ],\n";
}

/** A package of about NumBytes; nearly all of it is the body. */
std::string MakePackage(int64 NumBytes)
{
	std::string Text = MakeHeader(4) + "  \"objects\": [\n";
	for (int64 Index = 0; static_cast<int64>(Text.size()) < NumBytes - 200; ++Index)
		Text += "    { \"path\": \"BP_Guard:Node_" + std::to_string(Index) +
			"\", \"class\": \"/Script/Engine.BTTask_Wait\", \"properties\": { " +
			"\"NodeName\": \"Wait a moment\", \"WaitTime\": 2.5, \"Order\": " + std::to_string(Index) +
			", \"bEnabled\": true, \"Target\": \"" + Path(Index) + "\" } },\n";
	return Text + "    { \"path\": \"BP_Guard\", \"class\": \"/Script/Engine.Blueprint\", \"properties\": {} }\n  ]\n}\n";
}

void ReadDocument(benchmark::State& State, std::string_view StopBefore)
{
	const std::string Text = MakePackage(State.range(0));
	std::string Buffer = Text + std::string(FJsonDocument::GetPadding(), '\0');
	FJsonDocument Document;
	for (auto _ : State)
	{
		const bool bRead = Document.ParseInPlace(
			Buffer.data(), Text.size(), Buffer.size(), {.MaxDepth = Json::MaxPackageDepth, .StopBefore = StopBefore});
		if (!bRead)
			State.SkipWithError("the package must be readable");
		benchmark::DoNotOptimize(Document.Root());
	}
	State.SetBytesProcessed(State.iterations() * static_cast<int64>(Text.size()));
}

void PackageHeader(benchmark::State& State)
{
	ReadDocument(State, "objects");
}

void PackageWhole(benchmark::State& State)
{
	ReadDocument(State, "");
}

void BuildModel(benchmark::State& State)
{
	const std::string Text = MakePackage(State.range(0));
	for (auto _ : State)
	{
		FJsonValue Value;
		if (!Json::Parse(Text, Value))
			State.SkipWithError("the package must be readable");
		benchmark::DoNotOptimize(Value);
	}
	State.SetBytesProcessed(State.iterations() * static_cast<int64>(Text.size()));
}

void WriteModel(benchmark::State& State)
{
	FJsonValue Value;
	Json::Parse(MakePackage(State.range(0)), Value);
	int64 NumBytes = 0;
	for (auto _ : State)
	{
		const FString Text = Json::Write(Value);
		NumBytes += Text.NumBytes();
		benchmark::DoNotOptimize(*Text);
	}
	State.SetBytesProcessed(NumBytes);
}

/** An object with State.range(0) members, each set and looked up once. */
void SetAndFindFields(benchmark::State& State)
{
	std::vector<FString> Keys;
	for (int64 Index = 0; Index < State.range(0); ++Index)
		Keys.emplace_back("Row_" + std::to_string(Index));
	for (auto _ : State)
	{
		FJsonObject Object;
		for (const FString& Key : Keys)
			Object.SetNumberField(Key, 1);
		for (const FString& Key : Keys)
			benchmark::DoNotOptimize(Object.FindField(Key));
	}
	State.SetItemsProcessed(State.iterations() * State.range(0));
}

BENCHMARK(PackageHeader)->Arg(2 << 10)->Arg(5 << 10)->Arg(20 << 10)->Arg(1 << 20);
BENCHMARK(PackageWhole)->Arg(2 << 10)->Arg(5 << 10)->Arg(20 << 10)->Arg(1 << 20);
BENCHMARK(BuildModel)->Arg(5 << 10)->Arg(1 << 20);
BENCHMARK(WriteModel)->Arg(5 << 10)->Arg(1 << 20);
BENCHMARK(SetAndFindFields)->Arg(8)->Arg(15)->Arg(16)->Arg(64)->Arg(10000);
}
