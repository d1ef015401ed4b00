#include "ProjectWriter.h"
#include "Bodies.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <thread>
#include <unistd.h>

namespace
{
constexpr uint32 PackagesPerJob = 256;
constexpr uint32 TextFilesPerJob = 16;
constexpr uint32 TextFolder = UINT32_MAX; // in place of a folder: the job writes text files

constexpr std::string_view ProjectDescriptor = R"({
	"name": "Hollowmere",
	"description": "A generated project with assets of every family."
}
)";

constexpr std::string_view WaterDescriptor = R"({
	"name": "Water",
	"description": "Lakes, rivers and what floats on them. Its name is among those that searches leave out by default."
}
)";

constexpr std::string_view CraftingDescriptor = R"({
	"name": "CraftingKit",
	"description": "Stations, recipes and tools for crafting."
}
)";

constexpr std::string_view GameSettings = R"(; Settings of the generated project.
[/Script/Quellar.QuellarSettings]
bExcludeEnginePlugins=True

[/Script/OrivaneToolkit.OrivaneSettings]
MaterialSearchMode=1
NiagaraSearchMode=0
)";

struct FOwnFile
{
	const char* Folder;
	const char* Name;
	std::string_view Content;
};

// The descriptor comes first: it tells a later run that this folder is a project, also when this run is cut short.
constexpr FOwnFile OwnFiles[] = {
	{".", "Hollowmere.uproject", ProjectDescriptor},
	{"Config", "DefaultGame.ini", GameSettings},
	{"Plugins/Water", "Water.uplugin", WaterDescriptor},
	{"Plugins/Gameplay/CraftingKit", "CraftingKit.uplugin", CraftingDescriptor},
};
}

/** A line on the terminal that tells how far the work is; nothing where standard error is no terminal. */
class FProgress
{
public:
	~FProgress()
	{
		if (Shown != NothingShown)
			std::fputs("\r\033[K", stderr);
	}

	void Show(std::size_t Done, std::size_t All)
	{
		const std::size_t Percent = Done * 100 / All;
		if (!bTerminal || Percent == Shown)
			return;
		Shown = Percent;
		std::fprintf(stderr, "\rwriting: %zu %%", Percent);
	}

private:
	static constexpr std::size_t NothingShown = SIZE_MAX;

	bool bTerminal = isatty(STDERR_FILENO) != 0;
	std::size_t Shown = NothingShown;
};

void FWriteTotals::Add(const FWriteTotals& Other)
{
	NumLinks += Other.NumLinks;
	NumMissingTargets += Other.NumMissingTargets;
	PackageBytes += Other.PackageBytes;
	TextBytes += Other.TextBytes;
	NumUtf16 += Other.NumUtf16;
	for (std::size_t Word = 0; Word < RareWords.size(); ++Word)
		NumWithRareWord[Word] += Other.NumWithRareWord[Word];
}

FProjectWriter::FProjectWriter(const FProjectPlan& InPlan)
	: Plan(InPlan)
	, Picker(InPlan)
	, Script(InPlan.NumPackages(), InPlan.MakeRandom(EPurpose::Script, 0))
	, NumUsers(InPlan.NumPackages())
{
}

bool FProjectWriter::Write(const FFolderHandle& Folder)
{
	Project = &Folder;
	if (!WriteOwnFiles())
		return false;
	MakeJobs();

	std::vector<std::thread> Threads;
	for (uint32 Thread = 1; Thread < Plan.GetOptions().NumThreads; ++Thread)
		Threads.emplace_back([this] { RunJobs(nullptr); });
	FProgress Progress;
	RunJobs(&Progress);
	for (std::thread& Thread : Threads)
		Thread.join();
	return !bFailed;
}

bool FProjectWriter::WriteOwnFiles()
{
	for (const FOwnFile& File : OwnFiles)
	{
		if (!WriteBelow(File.Folder, File.Name, File.Content))
			return false;
	}
	return WriteBelow("Script", "Generated.vscript", Script.ToJson(Plan.MakeRandom(EPurpose::Script, 1)));
}

void FProjectWriter::MakeJobs()
{
	const auto& Folders = Plan.GetFolders();
	for (uint32 Folder = 0; Folder < Folders.size(); ++Folder)
	{
		const FRange Packages = Folders[Folder].Packages;
		for (uint32 Begin = Packages.Begin; Begin < Packages.End; Begin += PackagesPerJob)
			Jobs.push_back({Folder, {Begin, std::min(Begin + PackagesPerJob, Packages.End)}});
	}
	const uint32 NumTextFiles = Plan.GetOptions().NumTextFiles;
	for (uint32 Begin = 0; Begin < NumTextFiles; Begin += TextFilesPerJob)
		Jobs.push_back({TextFolder, {Begin, std::min(Begin + TextFilesPerJob, NumTextFiles)}});
}

void FProjectWriter::RunJobs(FProgress* Progress)
{
	FPackageDraft Draft(Plan, Picker, Script);
	FTextFile File;
	FWriteTotals Sum;
	while (!bFailed)
	{
		const std::size_t Job = NextJob.fetch_add(1, std::memory_order_relaxed);
		if (Job >= Jobs.size())
			break;
		if (Progress)
			Progress->Show(Job, Jobs.size());
		if (Jobs[Job].Folder == TextFolder)
			WriteTextFiles(Jobs[Job].Items, File, Sum);
		else
			WritePackages(Jobs[Job], Draft, Sum);
	}
	const std::lock_guard Guard(Lock);
	Totals.Add(Sum);
}

void FProjectWriter::WritePackages(const FJob& Job, FPackageDraft& Draft, FWriteTotals& Sum)
{
	const std::string& Path = Plan.GetFolders()[Job.Folder].DiskPath;
	const FFolderHandle Folder = Project->OpenBelow(Path);
	if (!Folder.IsOpen())
	{
		Fail(Path);
		return;
	}
	std::string Name;
	for (const uint32 Package : Plan.PackagesIn(Job.Items))
	{
		Draft.Begin(Package);
		WriteBody(Draft);
		const std::string& Text = Draft.Finish();
		Name = Plan.NameOf(Package);
		Name += ".vasset";
		if (!Folder.WriteFile(Name.c_str(), Text))
		{
			Fail(Path + "/" + Name);
			return;
		}
		Sum.PackageBytes += Text.size();
		CountLinks(Draft, Sum);
	}
}

void FProjectWriter::WriteTextFiles(FRange Files, FTextFile& File, FWriteTotals& Sum)
{
	for (uint32 Index = Files.Begin; Index < Files.End; ++Index)
	{
		MakeTextFile(Plan, Index, File);
		if (!WriteBelow(File.Folder, File.Name, File.Content))
			return;
		Sum.TextBytes += File.Content.size();
		Sum.NumUtf16 += File.bUtf16 ? 1u : 0u;
		for (std::size_t Word = 0; Word < RareWords.size(); ++Word)
			Sum.NumWithRareWord[Word] += File.bHasRareWord[Word] ? 1u : 0u;
	}
}

bool FProjectWriter::WriteBelow(const std::string& FolderPath, const std::string& Name, std::string_view Content)
{
	const FFolderHandle Folder = Project->OpenBelow(FolderPath);
	return (Folder.IsOpen() && Folder.WriteFile(Name.c_str(), Content)) || Fail(FolderPath + "/" + Name);
}

void FProjectWriter::CountLinks(const FPackageDraft& Draft, FWriteTotals& Sum)
{
	Sum.NumLinks += Draft.GetLinks().size();
	for (const FLink& Link : Draft.GetLinks())
	{
		if (Link.Target < NumUsers.size())
			NumUsers[Link.Target].fetch_add(1, std::memory_order_relaxed);
		else if (Link.Target == MissingTarget)
			++Sum.NumMissingTargets;
	}
}

bool FProjectWriter::Fail(const std::string& Path)
{
	const int Fault = errno;
	const std::lock_guard Guard(Lock);
	if (Error.empty())
		Error = "cannot write " + Path + ": " + std::strerror(Fault);
	bFailed = true;
	return false;
}
