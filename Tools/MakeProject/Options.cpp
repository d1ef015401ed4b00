#include "Options.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <thread>

namespace
{
constexpr uint64 MostAssets = 1'000'000;
constexpr uint64 MostTextFiles = 1'000'000;
constexpr uint64 MostBlueprintEntries = 10'000;
constexpr uint64 MostDependencies = 1'000;
constexpr uint64 MostThreads = 256;

constexpr const char* Usage =
	R"(make_project DIR --assets N [options]

Writes a project of N assets of every family into DIR, the same for the same arguments on every machine.

  --assets N             packages with one asset each, 1 to 1000000
  --seed S               another project of the same kind (default 1)
  --text-files N         text files besides the project's own (default one for 50 assets, 20 to 20000)
  --families LIST        all, or some of Blueprint, Text, BehaviorTree, Blackboard, Enum, Struct, DataAsset, DataTable,
                         EnvQuery, NiagaraSystem, Material, Other (meshes, textures, sounds, levels, ...); default all
  --blueprint-entries N  search entries of a Blueprint on average (default 60)
  --dependencies N       links of a package on average (default 8); references inside its objects are always listed
  --threads N            threads that write (default one for each processor); the files do not depend on it
  --force                replace a project that stands in DIR already
  --help                 this text

Examples
  make_project /tmp/small --assets 300
  make_project /tmp/large --assets 100000 --seed 7 --force
  make_project /tmp/tables --assets 5000 --families DataTable,Struct,Enum --text-files 0
  make_project /tmp/index --assets 50000 --families Blueprint --blueprint-entries 200

Exit codes: 0 written, 1 a file could not be written, 2 wrong use.
)";

bool EqualIgnoringCase(std::string_view A, std::string_view B)
{
	const auto Same = [](char Left, char Right)
	{ return std::tolower(static_cast<unsigned char>(Left)) == std::tolower(static_cast<unsigned char>(Right)); };
	return std::equal(A.begin(), A.end(), B.begin(), B.end(), Same);
}

/** Reads one option after another; the first fault stays in Error. */
class FArgumentReader
{
public:
	FArgumentReader(int NumArguments, const char* const* Arguments)
		: Rest(Arguments + 1, static_cast<std::size_t>(NumArguments - 1))
	{
	}

	std::string Error;

	/** Takes the next argument; of "--name=value" the value is kept for the reads below. False at the end. */
	bool Next(std::string_view& OutName)
	{
		if (Rest.empty() || !Error.empty())
			return false;
		OutName = Take();
		bHasValue = false;
		const std::size_t Equals = OutName.starts_with("--") ? OutName.find('=') : std::string_view::npos;
		if (Equals == std::string_view::npos)
			return true;
		Value = OutName.substr(Equals + 1);
		bHasValue = true;
		OutName = OutName.substr(0, Equals);
		return true;
	}

	std::string_view ReadText(std::string_view Name)
	{
		if (!bHasValue && Rest.empty())
			Error = std::string(Name) + " needs a value";
		else if (!bHasValue)
			Value = Take();
		bHasValue = false;
		return Value;
	}

	uint64 ReadNumber(std::string_view Name, uint64 Least, uint64 Most)
	{
		const std::string_view Text = ReadText(Name);
		uint64 Number = 0;
		const auto [End, Fault] = std::from_chars(Text.data(), Text.data() + Text.size(), Number);
		const bool bWhole = Fault == std::errc() && End == Text.data() + Text.size();
		if (Error.empty() && (!bWhole || Number < Least || Number > Most))
			Error = std::string(Name) + " takes a whole number from " + std::to_string(Least) + " to " + std::to_string(Most) +
				", not \"" + std::string(Text) + "\"";
		return Number;
	}

	uint32 ReadCount(std::string_view Name, uint64 Least, uint64 Most)
	{
		return static_cast<uint32>(ReadNumber(Name, Least, Most));
	}

	FFamilySet ReadFamilies(std::string_view Name)
	{
		FFamilySet Families;
		for (std::string_view List = ReadText(Name); !List.empty();)
		{
			const std::string_view Word = List.substr(0, List.find(','));
			List.remove_prefix(std::min(List.size(), Word.size() + 1));
			AddFamily(Word, Families);
		}
		if (Families.none() && Error.empty())
			Error = std::string(Name) + " names no family";
		return Families;
	}

	void RefuseValue(std::string_view Name)
	{
		if (bHasValue)
			Error = std::string(Name) + " takes no value";
	}

private:
	std::string_view Take()
	{
		const std::string_view First = Rest.front();
		Rest = Rest.subspan(1);
		return First;
	}

	void AddFamily(std::string_view Word, FFamilySet& Families)
	{
		if (EqualIgnoringCase(Word, "all"))
		{
			Families.set();
			return;
		}
		const auto Names = FamilyNames();
		const auto Found =
			std::find_if(Names.begin(), Names.end(), [Word](std::string_view Name) { return EqualIgnoringCase(Name, Word); });
		if (Found != Names.end())
			Families.set(static_cast<std::size_t>(Found - Names.begin()));
		else if (Error.empty())
			Error = "there is no family \"" + std::string(Word) + "\"";
	}

	std::span<const char* const> Rest;
	std::string_view Value;
	bool bHasValue = false;
};

uint32 DefaultTextFiles(const FProjectOptions& Options)
{
	if (!Options.Families.test(static_cast<std::size_t>(EFamily::Text)))
		return 0;
	return std::clamp(Options.NumAssets / 50, 20u, 20'000u);
}

bool HasAssetFamily(FFamilySet Families)
{
	return Families.reset(static_cast<std::size_t>(EFamily::Text)).any();
}

void ReadOne(FArgumentReader& Reader, std::string_view Name, FProjectOptions& Options, std::optional<uint32>& TextFiles)
{
	if (Name == "--assets")
		Options.NumAssets = Reader.ReadCount(Name, 1, MostAssets);
	else if (Name == "--seed")
		Options.Seed = Reader.ReadNumber(Name, 0, UINT64_MAX);
	else if (Name == "--text-files")
		TextFiles = Reader.ReadCount(Name, 0, MostTextFiles);
	else if (Name == "--families")
		Options.Families = Reader.ReadFamilies(Name);
	else if (Name == "--blueprint-entries")
		Options.BlueprintEntries = Reader.ReadCount(Name, 0, MostBlueprintEntries);
	else if (Name == "--dependencies")
		Options.Dependencies = Reader.ReadCount(Name, 0, MostDependencies);
	else if (Name == "--threads")
		Options.NumThreads = Reader.ReadCount(Name, 1, MostThreads);
	else if (Name == "--force" || Name == "--help" || Name == "-h")
	{
		Reader.RefuseValue(Name);
		(Name == "--force" ? Options.bForce : Options.bHelp) = true;
	}
	else if (Name.starts_with("-"))
		Reader.Error = "there is no option " + std::string(Name);
	else if (!Options.Folder.empty() || Name.empty())
		Reader.Error = "one folder is wanted, not also \"" + std::string(Name) + "\"";
	else
		Options.Folder = Name;
}
}

std::optional<FProjectOptions> ReadOptions(int NumArguments, const char* const* Arguments, std::string& OutError)
{
	FProjectOptions Options;
	Options.NumThreads = std::clamp(std::thread::hardware_concurrency(), 1u, 16u);

	std::optional<uint32> TextFiles;
	FArgumentReader Reader(NumArguments, Arguments);
	for (std::string_view Name; Reader.Next(Name);)
		ReadOne(Reader, Name, Options, TextFiles);

	if (Options.bHelp)
		return Options;
	OutError = Reader.Error;
	if (OutError.empty() && Options.Folder.empty())
		OutError = "a folder for the project is wanted";
	if (OutError.empty() && Options.NumAssets == 0)
		OutError = "--assets N is wanted";
	if (OutError.empty() && !HasAssetFamily(Options.Families))
		OutError = "--families names no family of assets";
	if (!OutError.empty())
		return std::nullopt;
	Options.NumTextFiles = TextFiles.value_or(DefaultTextFiles(Options));
	return Options;
}

const char* GetUsage()
{
	return Usage;
}
