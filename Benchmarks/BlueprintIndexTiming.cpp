/**
 * Our side of blueprint_search_versus_fts5.py: makes a project of Blueprints, opens it, writes every index entry as a line of
 * text, and times searches. Prints one JSON object a line.
 *
 * usage: blueprint_index_timing FOLDER BLUEPRINTS ENTRIES_EACH RUNS TERM...
 */
#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "BlueprintSearch/StreamSearch.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace
{
constexpr const char* Words[] = {"Health", "Stamina", "Damage", "Speed", "Target", "Location", "Rotation", "Actor", "Weapon",
	"Ammo", "Reload", "Fire", "Door", "Open", "Close", "Lamp", "Light", "Fog", "Quest", "Stage", "Reward", "Player", "Enemy",
	"Guard", "Patrol", "Chase", "Cover", "Sight", "Noise", "Alert", "Timer", "Delay", "Branch", "Sequence", "Loop", "Index",
	"Array", "Map", "Name", "Text", "Value", "Amount", "Percent", "Scale", "Offset", "Radius", "Angle", "Distance", "Origin",
	"Velocity", "Impulse", "Jump", "Crouch", "Sprint", "Climb", "Swim", "Attach", "Detach", "Spawn", "Destroy", "Begin", "End",
	"Overlap", "Hit", "Trace", "Widget", "Button", "Image", "Panel", "Slot", "Inventory", "Item", "Stack", "Drop", "Pickup",
	"Equip", "Socket", "Mesh", "Montage", "Blend", "Curve", "Track", "Camera", "Shake", "Zoom", "Focus", "Sound", "Music",
	"Volume", "Pitch", "Save", "Load", "Level", "World", "Session", "Server", "Client", "Replicate", "Event", "Notify", "State",
	"Owner", "Instigator", "Controller"};
constexpr const char* Categories[] = {"Pin", "Pin", "Pin", "Node", "Node", "Var", "Graph", "Comment"};
constexpr uint64 NumNames = 3'000'000;		// different texts that may occur; the first ones occur most
constexpr const char* RareWord = "Zyxomma"; // in five entries of the whole project

/** Numbers that depend on the seed alone. */
class FRandom
{
public:
	explicit FRandom(uint64 Seed) : State(Mix(Seed)) {}
	uint64 Next() { return Mix(State += 0x9E3779B97F4A7C15ull); }
	uint64 Below(uint64 Limit) { return Next() % Limit; }
	double Unit() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }

private:
	static uint64 Mix(uint64 Number)
	{
		Number = (Number ^ Number >> 30) * 0xBF58476D1CE4E5B9ull;
		Number = (Number ^ Number >> 27) * 0x94D049BB133111EBull;
		return Number ^ Number >> 31;
	}

	uint64 State;
};

std::string MakeName(uint64 Number)
{
	FRandom Random(Number);
	std::string Name;
	const uint64 NumWords = 1 + Random.Below(3);
	for (uint64 Word = 0; Word < NumWords; ++Word)
		Name += Words[Random.Below(std::size(Words))];
	return Random.Below(3) == 0 ? Name : Name + std::to_string(Number % 1000);
}

/** A few names are everywhere and most are rare, as in real projects: the logarithm of a name's rank is spread evenly. */
std::string ChooseName(FRandom& Random)
{
	return MakeName(static_cast<uint64>(std::pow(static_cast<double>(NumNames), Random.Unit())));
}

/** Makes a Blueprint's header out of its file's content, a number. */
class FGeneratedReader final : public IPackageReader
{
public:
	explicit FGeneratedReader(uint32 InNumEntries) : NumEntries(InNumEntries) {}

	bool ReadHeader(std::string& Bytes, const FString&, FPackageHeader& Out, FDiagnosticSink*) override
	{
		const uint64 Number = std::stoull(Bytes);
		FRandom Random(Number + 1'000'000'007);
		AssetName = "BP_" + Bytes;
		Out.Assets.push_back({.Name = AssetName, .Class = "/Script/Engine.Blueprint", .Outer = {}});
		Texts.clear();
		Texts.reserve(2 * std::size_t{NumEntries});
		uint32 Depth = 0;
		for (uint32 Entry = 0; Entry < NumEntries; ++Entry)
		{
			Texts.push_back(ChooseName(Random));
			if (Number % 10'000 == 77 && Entry == 5)
				Texts.back() += RareWord;
			const std::string_view Text = Texts.back();
			std::string_view Comment;
			if (Random.Below(32) == 0)
			{
				Texts.push_back("see " + ChooseName(Random) + " before " + ChooseName(Random));
				Comment = Texts.back();
			}
			Out.IndexEntries.push_back(
				{.Category = Categories[Random.Below(std::size(Categories))], .Text = Text, .Comment = Comment, .Depth = Depth});
			Depth = static_cast<uint32>(Random.Below(std::min<uint64>(Depth + 2, 4)));
		}
		return true;
	}
	void ParseBody(std::string&) override {}
	TUniquePtr<IPackageBody> OpenBody(const FString&, UPackage&, FDiagnosticSink*) override { return nullptr; }
	bool VisitObjects(const FString&, UPackage*, FDiagnosticSink*, const FStoredObjectVisit&) override { return false; }

private:
	const uint32 NumEntries;
	std::string AssetName;
	std::vector<std::string> Texts;
};

class FGeneratedSource final : public IPackageSource
{
public:
	explicit FGeneratedSource(uint32 InNumEntries) : NumEntries(InNumEntries) {}
	bool IsPackageFile(std::string_view RelativePath) const override { return RelativePath.ends_with(".gen"); }
	std::size_t GetExtensionLength() const override { return 4; }
	uint64 GetMaxFileBytes() const override { return 64; }
	TUniquePtr<IPackageReader> MakeReader() const override { return MakeUnique<FGeneratedReader>(NumEntries); }
	uint32 GetHeaderVersion() const override { return NumEntries; }

private:
	const uint32 NumEntries;
};

class FRegistryModule final : public FAssetRegistryModule
{
public:
	IAssetRegistry& Get() override { return Registry; }
	FAssetRegistry Registry;
};

double MeasureMilliseconds(const std::function<void()>& Work)
{
	const auto Start = std::chrono::steady_clock::now();
	Work();
	return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Start).count();
}

/** "median": m, "lowest": l, "highest": h, in milliseconds. */
std::string Describe(std::vector<double> Times)
{
	std::sort(Times.begin(), Times.end());
	return FString::Printf(
		"{\"median\":%.6f,\"lowest\":%.6f,\"highest\":%.6f}", Times[Times.size() / 2], Times.front(), Times.back())
		.ToStdString();
}

std::string Repeat(int32 NumRuns, const std::function<void()>& Work)
{
	std::vector<double> Times;
	for (int32 Run = -1; Run < NumRuns; ++Run)
	{
		const double Time = MeasureMilliseconds(Work);
		if (Run >= 0)
			Times.push_back(Time);
	}
	return Describe(std::move(Times));
}

void WriteFiles(const std::filesystem::path& Content, int32 NumBlueprints)
{
	for (int32 Number = 0; Number < NumBlueprints; ++Number)
	{
		const std::filesystem::path Folder = Content / ("F" + std::to_string(Number / 1000));
		if (Number % 1000 == 0)
			std::filesystem::create_directories(Folder);
		std::ofstream(Folder / ("BP_" + std::to_string(Number) + ".gen")) << Number;
	}
}

/** One line for each entry, its comment behind a tab. Returns the bytes of texts and comments twice: folded ones lie beside them.
 */
uint64 WriteEntries(const FBlueprintIndexView& Index, const std::filesystem::path& File)
{
	std::ofstream Out(File, std::ios::binary);
	uint64 NumBytes = 0;
	for (int32 Number = 0; Number < Index.NumEntries(); ++Number)
	{
		const FBlueprintIndexView::FEntry Entry = Index.GetEntry(Number);
		Out << Index.GetText(Entry.Text);
		NumBytes += 2 * Index.GetText(Entry.Text).size();
		if (Entry.Comment != INDEX_NONE)
		{
			Out << '\t' << Index.GetText(Entry.Comment);
			NumBytes += 2 * Index.GetText(Entry.Comment).size();
		}
		Out << '\n';
	}
	return NumBytes;
}

std::size_t CountDistinctBytes(const FBlueprintIndexView& Index)
{
	std::size_t NumBytes = 0;
	for (int32 Text = 0; Text < Index.NumTexts(); ++Text)
		NumBytes += Index.GetText(Text).size() + 1;
	return NumBytes;
}

void TimeTerm(const FString& Term, int32 NumRuns)
{
	int64 NumMatches = 0;
	int32 NumBlueprints = 0;
	std::vector<double> SearchTimes;
	const std::string Whole = Repeat(NumRuns,
		[&]
		{
			FStreamSearch Stream(Term, {});
			Stream.EnsureCompletion();
			SearchTimes.push_back(1000 * Stream.GetSearchSeconds());
			TArray<TSharedPtr<FImaginaryFiBData>> Results;
			Stream.GetFilteredImaginaryResults(Results);
			NumBlueprints = Results.Num();
			NumMatches = 0;
			for (const auto& Result : Results)
				NumMatches += Result->NumMatches();
		});
	std::printf("{\"term\":\"%s\",\"matches\":%lld,\"blueprints\":%d,\"search\":%s,\"whole\":%s}\n", *Term,
		static_cast<long long>(NumMatches), NumBlueprints, Describe(SearchTimes).c_str(), Whole.c_str());
	std::fflush(stdout);
}
}

int main(int NumArguments, char** Arguments)
{
	if (NumArguments < 6)
		return std::fprintf(stderr, "usage: %s FOLDER BLUEPRINTS ENTRIES_EACH RUNS TERM...\n", Arguments[0]), 2;
	const std::filesystem::path Folder = std::filesystem::absolute(Arguments[1]);
	const FGeneratedSource Source(static_cast<uint32>(std::stoul(Arguments[3])));
	WriteFiles(Folder / "Content", std::stoi(Arguments[2]));

	const auto Module = MakeShared<FRegistryModule>();
	FModuleManager::Get().LoadModule("AssetRegistry", Module);
	FRegistryScanOptions Options;
	Options.Roots.Add({"/Game", FString((Folder / "Content").string() + "/")});
	Options.Sources.Add(&Source);
	Options.ProjectFolder = FString(Folder.string() + "/");
	Options.CacheFolders.Add(FString((Folder / "Intermediate").string() + "/"));
	FRegistryScanReport Report;
	FFindInBlueprintSearchManager& Manager = FFindInBlueprintSearchManager::Get();
	Options.Cache = ERegistryCache::Rebuild;
	const double Build = MeasureMilliseconds([&] { Module->Registry.Scan(Options, Report); });
	const double Columns = 1000 * Report.BuildSeconds;
	Options.Cache = ERegistryCache::Use;
	const double Open = MeasureMilliseconds([&] { Module->Registry.Scan(Options, Report); });

	const FBlueprintIndexView Index = Manager.GetIndex();
	const uint64 TextBytes = WriteEntries(Index, Folder / "entries.txt");
	std::printf("{\"blueprints\":%d,\"entries\":%d,\"distinct_texts\":%d,\"distinct_bytes\":%zu,\"text_bytes\":%llu,"
				"\"index_bytes\":%lld,\"build_ms\":%.0f,\"columns_ms\":%.0f,\"open_ms\":%.0f}\n",
		Index.NumBlueprints(), Index.NumEntries(), Index.NumTexts(), CountDistinctBytes(Index),
		static_cast<unsigned long long>(TextBytes), static_cast<long long>(Module->Registry.GetImageBytes()), Build, Columns,
		Open);
	for (int Argument = 5; Argument < NumArguments; ++Argument)
		TimeTerm(Arguments[Argument], std::stoi(Arguments[4]));
	return 0;
}
