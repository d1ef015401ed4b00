#include "Commands/CommandLine.h"

#include "Core/Files/File.h"
#include "Reports/ProjectReportOperation.h"
#include "Show/ShowAssetTool.h"
#include "Terminal/ExitCode.h"
#include "Terminal/NearestWord.h"
#include "Terminal/Version.h"
#include "Tools/HostTools.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace
{
constexpr const char* Description =
	"Answers questions about a game project: which assets and text files contain a name or value, what an asset depends on and\n"
	"what refers to it, which asset paths match a name.\n"
	"Serves AI agents over the Model Context Protocol, and people and scripts at a shell.";

constexpr const char* ProgramExamples = R"(Examples:
  orivane search Health --project Samples/Lantern
  orivane search Damage --family DataTable --json
  orivane graph /Game/UI/WBP_HUD --relation both
  orivane paths Menu
  orivane report broken
  orivane show DT_Weapons
  orivane call asset_search '{"term":"Health"}' --project MyGame
  orivane check --project MyGame
  orivane mcp --project MyGame

Without --project the nearest *.uproject from the current folder upward is opened.
Exit codes: 0 found or clean; 1 nothing found, problems found, or the tool reported an error;
            2 wrong use, output that cannot be written, or an internal failure; 3 the project cannot be opened; 130 interrupted.)";

constexpr const char* SearchExamples = R"(Examples:
  orivane search Health
  orivane search "float" --family DataTable
  orivane search TargetActor --family BehaviorTree,Blackboard
  orivane search MaxHealth --exact --case-sensitive --path /Game/Data
  orivane search Sparks --family NiagaraSystem --preload /Game/FX
  orivane search Stamina --json | jq '.assets[].asset')";

constexpr const char* GraphExamples = R"(ASSET is a long package name, an object path, or the file of a package.
Examples:
  orivane graph /Game/Maps/L_Harbour
  orivane graph /Game/Data/Tables/DT_Weapons --relation referencers --depth 2
  orivane graph Content/UI/WBP_PauseMenu.vasset --relation both --high-signal --format html -o graph.html
  orivane graph /Game/Maps/L_Harbour --format dot | dot -Tsvg -o graph.svg

Runtime links are needed by the game, Editor links by the editor alone. Siblings come out newest first.)";

constexpr const char* PathsExamples = R"(Examples:
  orivane paths Menu
  orivane paths /Game/UI --class WidgetBlueprint
  orivane paths BT_Guard --exact --view files
  orivane paths _ --max-files 1000000 --json | jq -r '.summary.total_hits')";

constexpr const char* ReportExamples = R"(Reports:
  broken             references to packages that do not exist or hold no asset, with who refers to them; orivane check reads bodies too
  unused             assets that no level, primary data asset or settings file leads to, over any number of links
  cycles             packages that depend on one another, the smallest cycles first, with their links
  impact ASSET       everything that refers to an asset at any depth, with the shortest way
  path ASSET TARGET  the shortest ways from one asset to another along dependencies, or back where there are none
Examples:
  orivane report broken
  orivane report unused --root /Game/Data/Quests/ --root /Game/Archive/M_OldFog
  orivane report impact /Game/Data/Enums/E_DamageKind
  orivane report impact /Game/Data/Enums/E_DamageKind --format html -o impact.html
  orivane report path /Game/Maps/L_Harbour /Game/Data/Enums/E_DamageKind --format tree
  orivane report cycles --format dot | dot -Tsvg -o cycles.svg

--format draws cycles, impact and path; a tree is of impact and path. Totals go to standard error.
Exit codes: 0 clean (broken, unused, cycles) or found (impact, path); 1 something is broken, unused or a cycle, nothing refers to the
            asset, or no way leads to the target.)";

constexpr const char* ShowExamples =
	R"(ASSET is a long package name, an object path, the file of a package, or a name that one asset alone has.
Examples:
  orivane show DA_Weapon_FlarePistol
  orivane show /Game/Data/Tables/DT_Weapons --section rows --row FlarePistol
  orivane show Content/AI/BT_Guard.vasset --section tree
  orivane show BT_Guard --object Chase
  orivane show BP_DockGuard --defaults
  orivane show IMC_Default --json | jq -c '.properties[] | select(.name == "Mappings").value[]'

Sections: tags, properties, rows, entries, fields, keys, parameters, variables, index, tree, objects, references.)";

constexpr const char* ConsoleExamples =
	R"(Without -c and with a terminal it asks for commands; "help" lists them. Without a terminal it reads them from standard input, one a line.
Examples:
  orivane console
  orivane console -c "Orivane.DataTableSearch term=Health"
  echo 'Orivane.AssetSearch term="tide table" families=Text,DataTable' | orivane console)";

constexpr const char* CallExamples = R"(Examples:
  orivane call asset_search '{"term":"Health","include_asset_families":["DataTable","Text"]}'
  echo '{"term":"Health"}' | orivane call asset_search -

  printf '%s\n' '{"tool":"asset_search","arguments":{"term":"Health"}}' '{"tool":"asset_path_search","arguments":{"term":"BT_"}}' | orivane call -

Prints one JSON object: {"success", "messages": [{"type", "text"}], "data": {KEY: payload}}.
With '-' as the tool it takes calls from standard input, one JSON object a line: {"tool": NAME, "arguments": {...}}. Each is answered
by one line, in order; what is wrong with a line is answered too and ends nothing. Changed files are noticed before each call. The exit
code is the worst of all: 1 a tool reported an error, 2 a line was not a call.)";

constexpr const char* McpExamples = R"(Configuration of an agent:
  {"mcpServers": {"orivane": {"command": "orivane", "args": ["mcp", "--project", "/path/to/MyGame"]}}})";

constexpr const char* CheckExamples = R"(Prints file:line:column: severity: text [rule] for every fault of the project's files.
Examples:
  orivane check
  orivane check --json --warnings-as-errors
  orivane check --format github

Paths are relative to the current folder.)";

/** Reads options as UTF-8 text; what comes from a shell may be anything. */
CLI::Option* AddText(CLI::App& App, const char* Name, const std::function<void(FString)>& Take, const char* Help)
{
	return App.add_option_function<std::string>(
		Name, [Take](const std::string& Text) { Take(FString::FromExternal(Text)); }, Help);
}

CLI::Option* AddText(CLI::App& App, const char* Name, FString& Out, const char* Help)
{
	return AddText(
		App, Name, [&Out](FString Text) { Out = std::move(Text); }, Help);
}

CLI::Option* AddTexts(CLI::App& App, const char* Name, const std::function<void(TArray<FString>)>& Take, const char* Help)
{
	const auto TakeAll = [Take](const std::vector<std::string>& Texts)
	{
		TArray<FString> Repaired;
		for (const std::string& Text : Texts)
			Repaired.Add(FString::FromExternal(Text));
		Take(std::move(Repaired));
	};
	return App.add_option_function<std::vector<std::string>>(Name, TakeAll, Help)->delimiter(',')->allow_extra_args(false);
}

CLI::Option* AddTexts(CLI::App& App, const char* Name, TArray<FString>& Out, const char* Help)
{
	return AddTexts(
		App, Name, [&Out](TArray<FString> Texts) { Out = std::move(Texts); }, Help);
}

template <class T>
using TWords = std::vector<std::pair<std::string, T>>;

/** An option that takes one of a few words, in any case. */
template <class T>
CLI::Option* AddChoice(
	CLI::App& App, const char* Name, const TWords<T>& Words, const std::function<void(const T&)>& Take, const char* Help)
{
	const auto TakeWord = [Take, Words, Option = std::string(Name)](const std::string& Text)
	{
		TArray<FString> Known;
		for (const auto& [Word, Value] : Words)
		{
			if (CLI::detail::to_lower(Text) == Word)
				return Take(Value);
			Known.Add(Word);
		}
		throw CLI::ValidationError(Option, "'" + Text + "' is none of: " + FString::Join(Known, ", ").ToStdString());
	};
	return App.add_option_function<std::string>(Name, TakeWord, Help);
}

template <class T>
CLI::Option* AddChoice(CLI::App& App, const char* Name, const TWords<T>& Words, T& Out, const char* Help)
{
	return AddChoice<T>(
		App, Name, Words, [&Out](const T& Value) { Out = Value; }, Help);
}

CLI::Option* AddSeconds(CLI::App& App, const char* Name, std::chrono::milliseconds& Out, const char* Help)
{
	constexpr double Shortest = 0.001;
	constexpr double Longest = 86400;
	const auto Check = [](const std::string& Text) -> std::string
	{
		double Seconds = 0;
		const bool bInRange = CLI::detail::lexical_cast(Text, Seconds) && Seconds >= Shortest && Seconds <= Longest; // no "nan"
		return bInRange ? "" : "'" + Text + "' is not a time from 0.001 to 86400 seconds";
	};
	const auto Take = [&Out](const double& Seconds) { Out = std::chrono::milliseconds(std::llround(Seconds * 1000)); };
	return App.add_option_function<double>(Name, Take, Help)
		->check(Check)
		->type_name("SECONDS")
		->default_str(std::to_string(std::chrono::duration_cast<std::chrono::seconds>(Out).count()));
}

/** An option that takes one of a text's choices, in lower case where the tool wants capitals. */
CLI::Option* AddChoice(CLI::App& App, const FToolArgument& Argument, const TSharedPtr<FJsonObject>& Out, const char* Help)
{
	TWords<FString> Words;
	for (const FString& Choice : Argument.Choices)
		Words.push_back({Choice.ToLower().ToStdString(), Choice});
	return AddChoice<FString>(
		App, Argument.Shell.Names, Words, [Out, Key = Argument.Key](const FString& Choice) { Out->SetStringField(Key, Choice); },
		Help);
}

CLI::Option* AddInteger(CLI::App& App, const FToolArgument& Argument, const TSharedPtr<FJsonObject>& Out, const char* Help)
{
	const auto Take = [Out, Key = Argument.Key](const int32& Value) { Out->SetNumberField(Key, Value); };
	CLI::Option* const Option = App.add_option_function<int32>(Argument.Shell.Names, Take, Help);
	if (Argument.Shell.Least == INT32_MIN)
		return Option;
	CLI::Validator InRange = CLI::Range(Argument.Shell.Least, Argument.Maximum);
	int32 Default = 0;
	Argument.Default.TryGetNumber(Default);
	return Option->check(Argument.Maximum == INT32_MAX ? InRange.description("") : InRange)->default_str(std::to_string(Default));
}

CLI::Option* AddToolArgument(CLI::App& App, const FToolArgument& Argument, const TSharedPtr<FJsonObject>& Out, const char* Help)
{
	const auto Key = Argument.Key;
	const char* const Names = Argument.Shell.Names;
	if (!Argument.Shell.FlagValue.IsNull())
	{
		const auto Take = [Out, Key, Value = Argument.Shell.FlagValue] { Out->SetField(Key, Value); };
		CLI::Option* const Flag = App.add_flag_callback(Names, Take, Help);
		if (!*Argument.Shell.OffNames)
			return Flag;
		Take();
		const auto TakeOther = [Out, Key, Value = Argument.Default] { Out->SetField(Key, Value); };
		return App.add_flag_callback(Argument.Shell.OffNames, TakeOther, Argument.Shell.OffHelp)->excludes(Flag);
	}
	if (Argument.Type == EToolArgument::Integer)
		return AddInteger(App, Argument, Out, Help);
	if (Argument.Type == EToolArgument::TextList)
		return AddTexts(
			App, Names,
			[Out, Key](const TArray<FString>& Texts)
			{
				FJsonArray List;
				for (const FString& Text : Texts)
					List.Add(Text.TrimStartAndEnd());
				Out->SetArrayField(Key, std::move(List));
			},
			Help);
	return Argument.Choices.IsEmpty()
		? AddText(
			  App, Names, [Out, Key](FString Text) { Out->SetStringField(Key, std::move(Text)); }, Help)
		: AddChoice(App, Argument, Out, Help);
}

/** "Object paths listed [200]": options without a value and lists have no default to name, checked numbers name it themselves. */
FString DescribeOption(const FToolArgument& Argument)
{
	FString Default;
	const bool bNamesDefault = Argument.Shell.FlagValue.IsNull() && Argument.Shell.Least == INT32_MIN &&
		Argument.Default.TryGetString(Default) && !Default.IsEmpty();
	return FString(Argument.Shell.Help) + (bNamesDefault ? " [" + Default.ToLower() + "]" : FString());
}

/** Offers a tool's arguments as options; those that are given stand in Out as the tool takes them. */
void AddToolArguments(CLI::App& App, const char* ToolName, const TSharedPtr<FJsonObject>& Out)
{
	for (const FToolArgument& Argument : FindTool(ToolName)->Arguments)
	{
		if (!*Argument.Shell.Names)
			continue;
		CLI::Option* const Option = AddToolArgument(App, Argument, Out, *DescribeOption(Argument));
		if (Argument.bRequired)
			Option->required();
		if (*Argument.Shell.Placeholder)
			Option->type_name(Argument.Shell.Placeholder);
	}
}

void AddProjectOptions(CLI::App& App, FProjectOptions& Out)
{
	const auto TakePath = [&Out](const std::string& Path) { Out.Path = Path; }; // as it is: repaired, it may name another one
	App.add_option_function<std::string>("-p,--project", TakePath, "Project folder, or its *.uproject")->type_name("DIR");
	AddTexts(
		App, "--preload", Out.Preload, "Load before running: a package, an object's package, or all below a folder (/Game/FX)")
		->type_name("PATH");
	AddText(App, "--engine-content", Out.EngineContent, "Folder of engine content, mounted as /Engine")
		->type_name("DIR")
		->check([](const std::string& Folder)
			{ return IFileManager::Get().DirectoryExists(FString::FromExternal(Folder)) ? "" : "there is no folder " + Folder; });
	App.add_option("--threads", Out.NumThreads, "Threads for reading packages; 0: all processors")
		->check(CLI::Range(0, 1024))
		->type_name("N");
	const auto TakeMegabytes = [&Out](const int64& Megabytes) { Out.ObjectMemory = Megabytes << 20; };
	App.add_option_function<int64>(
		   "--object-memory", TakeMegabytes, "Memory that loaded objects may keep between calls [a quarter of the machine's]")
		->check(CLI::Range(int64{1}, int64{1} << 30))
		->type_name("MB");
	const auto TakeSearchMegabytes = [&Out](const int64& Megabytes) { Out.SearchMemory = Megabytes << 20; };
	App.add_option_function<int64>("--search-memory", TakeSearchMegabytes,
		   FString::Printf("Memory that searches may keep for later ones; 0: none [%lld]",
			   static_cast<long long>(SearchMemory::DefaultLimit >> 20))
			   .ToStdString())
		->check(CLI::Range(int64{0}, int64{1} << 30))
		->type_name("MB");
	CLI::Option* NoCache = App.add_flag_callback(
		"--no-cache", [&Out] { Out.Cache = ERegistryCache::Ignore; }, "Neither read nor write the registry cache");
	App.add_flag_callback(
		   "--rebuild-cache", [&Out] { Out.Cache = ERegistryCache::Rebuild; }, "Read every package and write a new cache")
		->excludes(NoCache);
}

/** For commands that stay while files change. */
void AddWatchOptions(CLI::App& App, FProjectOptions& Out)
{
	Out.Watch = EProjectWatch::Auto;
	const TWords<EProjectWatch> Words = {{"auto", EProjectWatch::Auto}, {"events", EProjectWatch::Events},
		{"times", EProjectWatch::Times}, {"off", EProjectWatch::Off}};
	AddChoice(App, "--watch", Words, Out.Watch,
		"How changed files are noticed: events of the system, times of the files, auto (events where there are any), off [auto]")
		->type_name("HOW");
	AddSeconds(App, "--watch-interval", Out.WatchInterval, "Least time between two looks at the times of the files");
}

CLI::App* AddCommand(CLI::App& Program, const char* Name, const char* Help, const char* Footer)
{
	CLI::App* Command = Program.add_subcommand(Name, Help);
	Command->footer(Footer);
	return Command;
}

void AddCall(CLI::App& Program, FCallArguments& Out)
{
	CLI::App* Command =
		AddCommand(Program, "call", "Call a tool and print its answer as one JSON object, for programs", CallExamples);
	AddText(*Command, "TOOL", Out.Tool, "Name of the tool, such as asset_search; '-' reads calls from standard input, one a line")
		->required();
	AddText(*Command, "JSON", Out.ArgumentsJson, "Arguments, a JSON object; '-' reads them from standard input");
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Time limit for each call");
	AddProjectOptions(*Command, Out.Project);
	AddWatchOptions(*Command, Out.Project);
}

void AddColor(CLI::App& Command, EColor& Out)
{
	const TWords<EColor> Words = {{"auto", EColor::Auto}, {"always", EColor::Always}, {"never", EColor::Never}};
	AddChoice(Command, "--color", Words, Out, "Colour the output: auto, always, never [auto]")->type_name("WHEN");
}

void AddSearch(CLI::App& Program, FSearchArguments& Out)
{
	CLI::App* Command = AddCommand(Program, "search", "Find assets and text files that contain a name or value", SearchExamples);
	AddToolArguments(*Command, ToolNames::AssetSearch, Out.Tool);
	const auto Use = [&Out](ESearchForm Form) { return [&Out, Form] { Out.Form = Form; }; };
	CLI::Option* const Whole = Command->add_flag_callback("--json", Use(ESearchForm::Json), "Print the tool's payload");
	CLI::Option* const Lines =
		Command->add_flag_callback("--ndjson", Use(ESearchForm::JsonLines), "Print a JSON object for each result, one a line");
	Command
		->add_flag_callback(
			"-0,--null", Use(ESearchForm::Names), "Print the names of assets and files alone, a zero byte after each")
		->excludes(Whole)
		->excludes(Lines);
	Lines->excludes(Whole);
	Command->add_flag("-q,--quiet", Out.bQuiet, "No counts, and no word about what is left out");
	AddColor(*Command, Out.Color);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Give up after this time");
	AddProjectOptions(*Command, Out.Project);
}

template <class TFormat>
void AddGraphFormat(CLI::App& Command, const char* Help, TFormat& OutFormat, FString& OutFile)
{
	const TWords<EGraphFormat> Words = {{"tree", EGraphFormat::Tree}, {"json", EGraphFormat::Json}, {"dot", EGraphFormat::Dot},
		{"mermaid", EGraphFormat::Mermaid}, {"html", EGraphFormat::Html}};
	const auto Take = [&OutFormat](const EGraphFormat& Format) { OutFormat = Format; };
	CLI::Option* Format = AddChoice<EGraphFormat>(Command, "--format", Words, Take, Help);
	Format->type_name("FORMAT");
	const auto UseJson = [&OutFormat] { OutFormat = EGraphFormat::Json; };
	Command.add_flag_callback("--json", UseJson, "Same as --format json")->excludes(Format);
	AddText(Command, "-o,--output", OutFile, "Write to this file instead of standard output; '-' is standard output")
		->type_name("FILE");
}

void AddGraph(CLI::App& Program, FGraphArguments& Out)
{
	CLI::App* Command =
		AddCommand(Program, "graph", "Show what an asset depends on and what refers to it, or draw it", GraphExamples);
	AddToolArguments(*Command, ToolNames::AssetGraph, Out.Tool);
	AddGraphFormat(*Command, "tree, json (the tool's payload), dot, mermaid, html [tree]", Out.Format, Out.OutputFile);
	AddColor(*Command, Out.Color);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Give up after this time");
	AddProjectOptions(*Command, Out.Project);
}

void AddPaths(CLI::App& Program, FPathsArguments& Out)
{
	CLI::App* Command = AddCommand(Program, "paths", "Find assets by a part of their path or name", PathsExamples);
	AddToolArguments(*Command, ToolNames::AssetPathSearch, Out.Tool);
	Command->add_flag("--json", Out.bJson, "Print the tool's payload");
	AddColor(*Command, Out.Color);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Give up after this time");
	AddProjectOptions(*Command, Out.Project);
}

void AddReport(CLI::App& Program, FReportArguments& Out)
{
	CLI::App* Command = AddCommand(
		Program, "report", "Report broken references, unused assets, cycles, what a change reaches, ways", ReportExamples);
	AddToolArguments(*Command, FProjectReportOperation::ToolName, Out.Tool);
	AddGraphFormat(*Command, "tree, json (the tool's payload), dot, mermaid, html; a list without", Out.Format, Out.OutputFile);
	AddColor(*Command, Out.Color);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Give up after this time");
	AddProjectOptions(*Command, Out.Project);
}

void AddShow(CLI::App& Program, FShowArguments& Out)
{
	CLI::App* Command = AddCommand(Program, "show", "Show what is in an asset: values, rows, nodes, references", ShowExamples);
	AddToolArguments(*Command, ToolNames::ShowAsset, Out.Tool);
	Command->add_flag("--json", Out.bJson, "Print the tool's payload");
	AddColor(*Command, Out.Color);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Give up after this time");
	AddProjectOptions(*Command, Out.Project);
}

void AddConsole(CLI::App& Program, FConsoleArguments& Out)
{
	CLI::App* Command =
		AddCommand(Program, "console", "Run Orivane.* console commands, by hand or from a script", ConsoleExamples);
	AddTexts(*Command, "-c,--command", Out.Lines, "Run this line and exit (may be repeated)")->type_name("LINE")->delimiter('\0');
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Wait this long for a search, then go on");
	AddProjectOptions(*Command, Out.Project);
	AddWatchOptions(*Command, Out.Project);
}

void AddInfo(CLI::App& Program, FInfoArguments& Out)
{
	CLI::App* Command = AddCommand(Program, "info", "What was opened: counts, mounts, effective settings, cache, timings",
		"Examples:\n  orivane info --json\n  orivane info --settings");
	Command->add_flag("--json", Out.bJson, "Print one JSON object");
	Command->add_flag("--settings", Out.bSettings, "Print every setting with its value and what it does");
	Command
		->add_flag("--dump-registry", Out.bDumpRegistry,
			"Print every package, asset, tag and dependency that the registry holds, as text")
		->excludes("--json");
	AddProjectOptions(*Command, Out.Project);
}

void AddCheck(CLI::App& Program, FCheckArguments& Out)
{
	CLI::App* Command = AddCommand(Program, "check", "Report every fault of the project's files", CheckExamples);
	const TWords<ECheckFormat> Words = {
		{"text", ECheckFormat::Text}, {"json", ECheckFormat::Json}, {"github", ECheckFormat::GitHub}};
	CLI::Option* const Format =
		AddChoice(*Command, "--format", Words, Out.Format, "text, json (one object), github (annotations of a workflow) [text]");
	Format->type_name("FORMAT");
	Command
		->add_flag_callback(
			"--json", [&Out] { Out.Format = ECheckFormat::Json; }, "Same as --format json")
		->excludes(Format);
	Command->add_flag("-q,--quiet", Out.bQuiet, "No counts");
	Command->add_flag("--warnings-as-errors", Out.bWarningsAsErrors, "Warnings count for the exit code too");
	AddProjectOptions(*Command, Out.Project);
}

void AddMcp(CLI::App& Program, FMcpArguments& Out)
{
	CLI::App* Command =
		AddCommand(Program, "mcp", "Serve AI agents: Model Context Protocol on standard input and output", McpExamples);
	AddSeconds(*Command, "--time-limit", Out.TimeLimit, "Time limit for each tool call, from when it starts");
	AddSeconds(*Command, "--deadline", Out.Deadline, "Time until a call is answered, waiting included");
	Command->add_option("--max-answer-bytes", Out.MaxAnswerBytes, "Truncate longer answers, with a note")
		->check(CLI::Range(int64{16 * 1024}, int64{8 * 1024 * 1024}))
		->type_name("BYTES")
		->capture_default_str();
	Command->add_flag_callback(
		"--without-path-search", [&Out] { Out.bPathSearch = false; }, "Do not offer the tool asset_path_search");
	AddProjectOptions(*Command, Out.Project);
	AddWatchOptions(*Command, Out.Project);
}

std::vector<std::string> GetOptionWords(const CLI::App& App)
{
	std::vector<std::string> Words;
	for (const CLI::Option* Option : App.get_options())
	{
		for (const std::string& Name : Option->get_lnames())
			Words.push_back("--" + Name);
	}
	return Words;
}

std::vector<std::string> GetCommandWords(const CLI::App& Program)
{
	std::vector<std::string> Words;
	for (const CLI::App* Command : Program.get_subcommands([](const CLI::App*) { return true; }))
		Words.push_back(Command->get_name());
	return Words;
}

/** The command that was named, or the program itself. */
const CLI::App& GetNamedApp(const CLI::App& Program)
{
	const auto Named = Program.get_subcommands();
	return Named.empty() ? Program : *Named.front();
}

/** The program itself has but these two. */
bool IsOptionOfCommand(std::string_view Word)
{
	return Word.starts_with('-') && Word != "--help" && Word != "-h" && Word != "--version";
}

FString DescribeError(const CLI::App& Program, const CLI::ParseError& Error, const std::vector<std::string>& Words)
{
	const CLI::App& App = GetNamedApp(Program);
	const bool bWithoutCommand = &App == &Program;
	const std::vector<std::string> Extras = App.remaining();
	const std::string Unknown = !Extras.empty() ? Extras.front() : (bWithoutCommand && !Words.empty() ? Words.front() : "");
	const FString Prefix = bWithoutCommand ? FString("orivane: ") : FString("orivane ") + App.get_name() + ": ";
	const FString Advice =
		bWithoutCommand ? FString("see: orivane --help") : FString("see: orivane ") + App.get_name() + " --help";
	if (Unknown.empty() && dynamic_cast<const CLI::RequiredError*>(&Error) != nullptr &&
		std::any_of(Words.begin(), Words.end(), [](const std::string& Word) { return Word.starts_with('-'); }))
		return Prefix + FString::FromExternal(Error.what()) + "; what begins with a dash follows two: orivane " + App.get_name() +
			" -- -word\n";
	if (Unknown.empty())
		return Prefix + Terminal::Sanitize(FString::FromExternal(Error.what())) + "; " + Advice + "\n";

	const bool bOption = Unknown.starts_with("-");
	const std::string Nearest =
		FindNearestWord(Unknown, bOption || !bWithoutCommand ? GetOptionWords(App) : GetCommandWords(Program));
	FString Text = Prefix + (bOption ? "unknown option '" : bWithoutCommand ? "unknown command '" : "unexpected word '");
	Text += Terminal::Sanitize(FString::FromExternal(Unknown)) + "'";
	Text += Nearest.empty() ? FString() : FString(", did you mean '") + Nearest + "'?";
	return Text + "; " + Advice + "\n";
}
}

TOptional<FCommand> ParseCommandLine(int NumArguments, const char* const* Arguments, int& OutExitCode)
{
	FCallArguments Call;
	FSearchArguments Search;
	FGraphArguments Graph;
	FPathsArguments Paths;
	FReportArguments Report;
	FShowArguments Show;
	FConsoleArguments Console;
	FInfoArguments Info;
	FCheckArguments Check;
	FMcpArguments Mcp;

	CLI::App Program(Description, "orivane");
	Program.footer(ProgramExamples);
	Program.set_version_flag("--version", OrivaneVersion);
	Program.require_subcommand(1);
	AddSearch(Program, Search);
	AddGraph(Program, Graph);
	AddPaths(Program, Paths);
	AddReport(Program, Report);
	AddShow(Program, Show);
	AddCall(Program, Call);
	AddConsole(Program, Console);
	AddMcp(Program, Mcp);
	AddInfo(Program, Info);
	AddCheck(Program, Check);

	if (NumArguments > 2 && IsOptionOfCommand(Arguments[1]))
	{
		Terminal::PrintError(FString("orivane: the command comes first: orivane COMMAND ") +
			Terminal::Sanitize(FString::FromExternal(Arguments[1])) + " ...; see: orivane --help\n");
		OutExitCode = EExitCode::WrongUse;
		return {};
	}
	try
	{
		Program.parse(NumArguments, Arguments);
	}
	catch (const CLI::Success& Wanted) // --help, --version
	{
		std::ostringstream Text;
		OutExitCode = Program.exit(Wanted, Text, Text);
		Terminal::Print(Text.str());
		return {};
	}
	catch (const CLI::ParseError& Error)
	{
		const std::vector<std::string> Words(Arguments + 1, Arguments + std::max(NumArguments, 1));
		Terminal::PrintError(DescribeError(Program, Error, Words));
		OutExitCode = EExitCode::WrongUse;
		return {};
	}

	if (Program.got_subcommand("call"))
		return Call;
	if (Program.got_subcommand("search"))
		return Search;
	if (Program.got_subcommand("graph"))
		return Graph;
	if (Program.got_subcommand("paths"))
		return Paths;
	if (Program.got_subcommand("report"))
		return Report;
	if (Program.got_subcommand("show"))
		return Show;
	if (Program.got_subcommand("console"))
		return Console;
	if (Program.got_subcommand("info"))
		return Info;
	if (Program.got_subcommand("check"))
		return Check;
	return Mcp;
}
