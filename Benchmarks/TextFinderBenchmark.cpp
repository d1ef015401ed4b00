// Searches for one needle in a text that lies in memory: throughput of FTextFinder ignoring case, per vector width, beside
// memmem, which heeds case. Texts are generated from word lists with a fixed seed: 1 MiB stays in the second-level cache, 64 MiB
// does not.

#include "Core/Text/String.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <map>
#include <random>
#include <span>

namespace
{
constexpr const char* CodeWords[] = {"const", "FVector", "Location", "=", "GetActorLocation", "();", "if", "(", "Health",
	"<=", "0.0f", ")", "return", "false", ";\n", "\t\t", "BlackboardKey", "TargetActor", "Skeletal", "Mesh", "\"Material\"", ":",
	"/Game/Characters/Hero", ",\n", "class", "the", "of", "animation", "Niagara", "system", "parameter", "text", "row", "is", "a",
	"not", "{\n", "}\n", "int32", "Count", "++"};
constexpr const char* RussianWords[] = {"и", "в", "не", "на", "Он", "что", "с", "как", "это", "время", "рука", "Дорога", "жизнь",
	"была", "когда", "только", "человек", "сказал", "ещё", "после", "который", "перед", "глаза", "друг", "большой", "Они",
	"через", "слово", ",", "."};

enum class ETextKind
{
	Code,
	Russian,
};

const std::string& GetText(ETextKind Kind, std::size_t NumBytes)
{
	static std::map<std::pair<ETextKind, std::size_t>, std::string> Texts;
	std::string& Text = Texts[{Kind, NumBytes}];
	const std::span<const char* const> Words = Kind == ETextKind::Code ? std::span<const char* const>(CodeWords) : RussianWords;
	std::mt19937 Random(20240229);
	while (Text.size() < NumBytes)
		Text.append(Words[Random() % Words.size()]).append(" ");
	return Text;
}

struct FCase
{
	const char* Name;
	ETextKind Kind;
	const char* Needle;
};

// All are absent, so each search goes through the whole text.
constexpr FCase Cases[] = {
	{"code, rare letters", ETextKind::Code, "QuizzicalVortex"},
	{"code, common letters", ETextKind::Code, "oneLineRate"},
	{"code, k and s have longer variants", ETextKind::Code, "MaskOfSkulls"},
	{"code, two letters", ETextKind::Code, "zq"},
	{"Russian", ETextKind::Russian, "Привидение"},
	{"Russian, common letters", ETextKind::Russian, "тенистое"},
	{"Russian needle in code", ETextKind::Code, "Привидение"},
	{"ASCII needle in Russian", ETextKind::Russian, "MaskOfSkulls"},
};

void ReportBytes(benchmark::State& State, const std::string& Text)
{
	State.SetBytesProcessed(static_cast<int64>(State.iterations()) * static_cast<int64>(Text.size()));
}

void FindIgnoringCase(benchmark::State& State, const FCase& Case, EVectorWidth Widest, std::size_t NumBytes)
{
	const std::string& Text = GetText(Case.Kind, NumBytes);
	const FTextFinder Finder(Case.Needle, ESearchCase::IgnoreCase, Widest);
	for (auto _ : State)
		benchmark::DoNotOptimize(Finder.IsFoundIn(Text));
	ReportBytes(State, Text);
}

void FindWithMemmem(benchmark::State& State, const FCase& Case, std::size_t NumBytes)
{
	const std::string& Text = GetText(Case.Kind, NumBytes);
	for (auto _ : State)
		benchmark::DoNotOptimize(memmem(Text.data(), Text.size(), Case.Needle, std::strlen(Case.Needle)));
	ReportBytes(State, Text);
}

void PrepareFinder(benchmark::State& State, const char* Needle)
{
	for (auto _ : State)
		benchmark::DoNotOptimize(FTextFinder(Needle, ESearchCase::IgnoreCase));
}

void ContainsInShortText(benchmark::State& State, const char* Text, const char* Needle)
{
	const FString String = Text;
	for (auto _ : State)
		benchmark::DoNotOptimize(String.Contains(Needle));
}

void FoldText(benchmark::State& State, ETextKind Kind)
{
	const std::string& Text = GetText(Kind, 1 << 20);
	std::string Folded;
	for (auto _ : State)
	{
		Folded.clear();
		Unicode::AppendFolded(Folded, Text);
		benchmark::DoNotOptimize(Folded.data());
	}
	ReportBytes(State, Text);
}

void RegisterSearches(std::size_t NumBytes)
{
	const std::string Size = std::to_string(NumBytes >> 20) + " MiB/";
	const std::pair<const char*, EVectorWidth> Widths[] = {{"512 bits/", EVectorWidth::Bits512},
		{"256 bits/", EVectorWidth::Bits256}, {"128 bits/", EVectorWidth::Bits128}, {"no vectors/", EVectorWidth::None}};
	for (const FCase& Case : Cases)
	{
		benchmark::RegisterBenchmark((Size + "memmem/" + Case.Name).c_str(), FindWithMemmem, Case, NumBytes);
		for (const auto& [Name, Width] : Widths)
			benchmark::RegisterBenchmark((Size + Name + Case.Name).c_str(), FindIgnoringCase, Case, Width, NumBytes);
	}
}

[[maybe_unused]] const bool bRegistered = []
{
	RegisterSearches(1 << 20);
	RegisterSearches(64 << 20);
	benchmark::RegisterBenchmark("prepare/ASCII", PrepareFinder, "MaskOfSkulls");
	benchmark::RegisterBenchmark("prepare/Russian", PrepareFinder, "Привидение");
	benchmark::RegisterBenchmark("short/absent", ContainsInShortText, "/Game/Characters/Hero/Materials/MI_Hero_Body", "weapon");
	benchmark::RegisterBenchmark("short/found", ContainsInShortText, "/Game/Characters/Hero/Materials/MI_Hero_Body", "BODY");
	benchmark::RegisterBenchmark("short/Russian", ContainsInShortText, "Персонажи/Герой/Материалы/Тело", "оружие");
	benchmark::RegisterBenchmark("fold/code", FoldText, ETextKind::Code);
	benchmark::RegisterBenchmark("fold/Russian", FoldText, ETextKind::Russian);
	return true;
}();
}
