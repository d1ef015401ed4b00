#include "Core/Files/FolderWatch.h"

#include "Support/Cases.h"
#include "Support/ScratchFolder.h"

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{
using FDisk = FScratchFolder;

/** A folder "In" to be watched, and one beside it. */
class FWatched
{
public:
	explicit FWatched(EFolderWatchMode Mode, std::function<void(FFolderWatchOptions&)> Adjust = {})
	{
		for (const char* File : {"In/Top.txt", "In/A/a.txt", "In/A/Deep/b.txt", "In/Left/c.txt", "Out/d.txt", "Out/Deep/e.txt"})
			Disk.Write(File, "some");
		FFolderWatchOptions Options;
		Options.bTimesOnly = Mode == EFolderWatchMode::Times;
		Options.TimesInterval = {};
		Options.EnterFolder = [](std::string_view Path) { return !Path.ends_with("/In/Left"); };
		if (Adjust)
			Adjust(Options);
		Watch = MakeUnique<FFolderWatch>(TArray<FString>{Disk.Path("In")}, std::move(Options));
	}

	/** "A/Deep/ A/a.txt": paths below "In", folders first. */
	std::string Render(const FFolderChanges& Changes) const
	{
		std::string Text = Changes.bAll ? "all" : "";
		for (const auto* List : {&Changes.Folders, &Changes.Files})
		{
			for (const std::string& Path : *List)
				Text += (Text.empty() ? "" : " ") + Path.substr(Disk.GetRoot().size() + 4);
		}
		return Text;
	}
	std::string Take() { return Render(Watch->Take()); }
	bool Tells(const FFolderChanges& Changes, const std::string& File) const
	{
		const std::string Path = Disk.GetRoot() + "/In/" + File;
		return Changes.bAll || std::binary_search(Changes.Files.begin(), Changes.Files.end(), Path) ||
			std::any_of(Changes.Folders.begin(), Changes.Folders.end(),
				[&](const std::string& Folder) { return Path.starts_with(Folder); });
	}
	/** Relative to the root, no slash at the end. */
	std::vector<std::string> ListFolders() const
	{
		std::vector<std::string> Folders = {"."};
		std::error_code Missing;
		for (const auto& Entry : std::filesystem::recursive_directory_iterator(Disk.GetRoot() + "/In", Missing))
		{
			if (Entry.is_directory() && !Entry.is_symlink())
				Folders.push_back(Entry.path().lexically_relative(Disk.GetRoot() + "/In"));
		}
		return Folders;
	}

	const FDisk Disk;
	TUniquePtr<FFolderWatch> Watch;
};

struct FEdit
{
	const char* Why;
	std::function<void(const FDisk&)> Do;
	const char* Told;				// by events
	std::vector<std::string> Files; // that are not what they were
};

const FEdit Edits[] = {
	{"nothing", [](const FDisk&) {}, "", {}},
	{"added", [](const FDisk& Disk) { Disk.Write("In/A/new.txt", "x"); }, "A/new.txt", {"A/new.txt"}},
	{"of the same size", [](const FDisk& Disk) { Disk.Write("In/A/a.txt", "same"); }, "A/a.txt", {"A/a.txt"}},
	{"removed", [](const FDisk& Disk) { Disk.Remove("In/A/a.txt"); }, "A/a.txt", {"A/a.txt"}},
	{"renamed over, from elsewhere", [](const FDisk& Disk) { Disk.Rename("Out/d.txt", "In/A/a.txt"); }, "A/a.txt", {"A/a.txt"}},
	{"renamed", [](const FDisk& Disk) { Disk.Rename("In/A/a.txt", "In/z.txt"); }, "A/a.txt z.txt", {"A/a.txt", "z.txt"}},
	{"removed and made again at once",
		[](const FDisk& Disk)
		{
			Disk.Remove("In/A/a.txt");
			Disk.Write("In/A/a.txt", "some");
		},
		"A/a.txt", {"A/a.txt"}},
	{"permissions", [](const FDisk& Disk) { Disk.SetMode("In/A/a.txt", 0); }, "A/a.txt", {"A/a.txt"}},
	{"by a link",
		[](const FDisk& Disk)
		{
			Disk.Remove("In/A/a.txt");
			Disk.Link(Disk.GetRoot() + "/Out/d.txt", "In/A/a.txt");
		},
		"A/a.txt", {"A/a.txt"}},
	{"new folders with files in them", [](const FDisk& Disk) { Disk.Write("In/B/C/D/new.txt", "x"); }, "B/", {"B/C/D/new.txt"}},
	{"moved out", [](const FDisk& Disk) { Disk.Rename("In/A", "Out/A"); }, "A/", {"A/a.txt", "A/Deep/b.txt"}},
	{"moved in", [](const FDisk& Disk) { Disk.Rename("Out/Deep", "In/A/In"); }, "A/In/", {"A/In/e.txt"}},
	{"moved within", [](const FDisk& Disk) { Disk.Rename("In/A", "In/B"); }, "A/ B/",
		{"A/a.txt", "A/Deep/b.txt", "B/a.txt", "B/Deep/b.txt"}},
	{"moved into a folder that is not watched yet",
		[](const FDisk& Disk)
		{
			Disk.MakeFolder("In/New");
			Disk.Rename("In/A", "In/New/A");
		},
		"A/ New/", {"A/a.txt", "New/A/Deep/b.txt"}},
	{"exchanged",
		[](const FDisk& Disk)
		{
			Disk.Rename("In/A/Deep", "In/T");
			Disk.Rename("In/A", "In/T/A");
			Disk.Rename("In/T", "In/A");
		},
		"A/ A/Deep/ T/", {"A/a.txt", "A/b.txt", "A/Deep/b.txt", "A/A/a.txt"}},
	{"a folder removed and made again",
		[](const FDisk& Disk)
		{
			Disk.Remove("In/A");
			Disk.Write("In/A/Deep/b.txt", "other");
		},
		"A/ A/Deep/ A/Deep/b.txt A/a.txt", {"A/a.txt", "A/Deep/b.txt"}},
	{"a folder becomes a link",
		[](const FDisk& Disk)
		{
			Disk.Rename("In/A", "Out/A");
			Disk.Link(Disk.GetRoot() + "/Out/A", "In/A");
		},
		"A/ A", {"A/a.txt", "A/Deep/b.txt"}},
	{"what is left out", [](const FDisk& Disk) { Disk.Write("In/Left/c.txt", "x"); }, "", {}},
	{"a folder that is left out, as a whole", [](const FDisk& Disk) { Disk.Remove("In/Left"); }, "", {}},
	{"what is elsewhere", [](const FDisk& Disk) { Disk.Write("Out/d.txt", "x"); }, "", {}},
	{"the root is removed", [](const FDisk& Disk) { Disk.Remove("In"); }, "all", {"Top.txt", "A/a.txt"}},
	{"the root is moved away", [](const FDisk& Disk) { Disk.Rename("In", "Gone"); }, "all", {"Top.txt", "A/a.txt"}},
	{"the root becomes a link",
		[](const FDisk& Disk)
		{
			Disk.Rename("In", "Gone");
			Disk.Link("Out", "In");
		},
		"all", {"d.txt", "A/a.txt"}},
};
}

TEST(FolderWatch, TellsWhatHasChangedAndGoesOn)
{
	for (const EFolderWatchMode Mode : {EFolderWatchMode::Events, EFolderWatchMode::Times})
	{
		SCOPED_TRACE(Mode == EFolderWatchMode::Events ? "events" : "times");
		for (const FEdit& Edit : Traced(Edits))
		{
			FWatched Watched(Mode);
			ASSERT_EQ(Watched.Watch->GetMode(), Mode) << *Watched.Watch->GetReason();
			Edit.Do(Watched.Disk);
			const FFolderChanges Changes = Watched.Watch->Take();
			if (Mode == EFolderWatchMode::Events)
			{
				EXPECT_EQ(Watched.Render(Changes), Edit.Told);
				EXPECT_EQ(Watched.Take(), "") << "each change once";
			}
			for (const std::string& File : Edit.Files)
				EXPECT_TRUE(Watched.Tells(Changes, File)) << File;

			for (const std::string& Folder : Watched.ListFolders())
			{
				const bool bLeft = Folder.starts_with("Left");
				const std::string File = (Folder == "." ? "" : Folder + "/") + "Probe.txt";
				if (!std::filesystem::exists(Watched.Disk.GetRoot() + "/In"))
					continue;
				Watched.Disk.Write("In/" + File, "x");
				EXPECT_EQ(Watched.Tells(Watched.Watch->Take(), File), !bLeft) << "later, " << File;
			}
		}
	}
}

TEST(FolderWatch, SeesATimePutBack)
{
	for (const EFolderWatchMode Mode : {EFolderWatchMode::Events, EFolderWatchMode::Times})
	{
		FWatched Watched(Mode);
		const std::string File = *Watched.Disk.Path("In/A/a.txt");
		struct stat Before;
		EXPECT_EQ(stat(File.c_str(), &Before), 0);
		Watched.Disk.Write("In/A/a.txt", "same");
		const timespec Times[] = {Before.st_atim, Before.st_mtim};
		EXPECT_EQ(utimensat(AT_FDCWD, File.c_str(), Times, 0), 0);
		EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "A/a.txt"));
	}
}

TEST(FolderWatch, FindsARootThatComesBack)
{
	for (const EFolderWatchMode Mode : {EFolderWatchMode::Events, EFolderWatchMode::Times})
	{
		FWatched Watched(Mode);
		Watched.Disk.Rename("In", "Gone");
		EXPECT_EQ(Watched.Take(), "all");
		EXPECT_EQ(Watched.Take(), "");
		Watched.Disk.Rename("Out", "In");
		EXPECT_EQ(Watched.Take(), "all");
		Watched.Disk.Write("In/Deep/e.txt", "x");
		EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "Deep/e.txt"));
	}
}

TEST(FolderWatch, SeesAFolderAboveMove)
{
	FWatched Watched(EFolderWatchMode::Events);
	FFolderWatch Deeper({Watched.Disk.Path("In/A/Deep")});
	ASSERT_EQ(Deeper.GetMode(), EFolderWatchMode::Events);
	Watched.Disk.Rename("In", "Gone");
	EXPECT_TRUE(Deeper.Take().bAll);
	EXPECT_TRUE(Deeper.Take().IsEmpty());
}

TEST(FolderWatch, SaysWhenEventsWereLost)
{
	std::ifstream Limit("/proc/sys/fs/inotify/max_queued_events");
	int32 NumQueued = 0;
	ASSERT_TRUE(Limit >> NumQueued);
	FWatched Watched(EFolderWatchMode::Events);
	for (int32 Index = 0; Index <= NumQueued; ++Index) // equal events one after another count once
		Watched.Disk.SetMode(Index % 2 == 0 ? "In/Top.txt" : "In/A/a.txt", Index % 4 < 2 ? 0600 : 0644);
	Watched.Disk.Write("In/B/new.txt", "x");
	EXPECT_EQ(Watched.Take(), "all");
	EXPECT_EQ(Watched.Take(), "");
	Watched.Disk.Write("In/B/new.txt", "xx");
	EXPECT_EQ(Watched.Take(), "B/new.txt");
}

TEST(FolderWatch, ComparesTimesWhereNoMoreFoldersCanBeWatched)
{
	FWatched Few(EFolderWatchMode::Events, [](FFolderWatchOptions& Options) { Options.MaxWatches = 2; });
	EXPECT_EQ(Few.Watch->GetMode(), EFolderWatchMode::Times);
	EXPECT_EQ(Few.Watch->GetReason(), "there are more than 2 folders");

	FWatched Watched(EFolderWatchMode::Events, [](FFolderWatchOptions& Options) { Options.MaxWatches = 3; });
	EXPECT_EQ(Watched.Watch->GetMode(), EFolderWatchMode::Events);
	Watched.Disk.Write("In/B/new.txt", "x");
	EXPECT_EQ(Watched.Take(), "all");
	EXPECT_EQ(Watched.Watch->GetMode(), EFolderWatchMode::Times);
	Watched.Disk.Write("In/B/new.txt", "xx");
	EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "B/new.txt"));
}

TEST(FolderWatch, LooksAtTimesOnceInAWhile)
{
	FWatched Watched(
		EFolderWatchMode::Times, [](FFolderWatchOptions& Options) { Options.TimesInterval = std::chrono::hours(1); });
	Watched.Disk.Write("In/Top.txt", "x");
	EXPECT_EQ(Watched.Take(), "");
}

TEST(FolderWatch, TellsOfKeptFilesAloneAndOfBulkWhenAsked)
{
	for (const EFolderWatchMode Mode : {EFolderWatchMode::Events, EFolderWatchMode::Times})
	{
		FWatched Watched(Mode,
			[](FFolderWatchOptions& Options)
			{
				Options.KeepFile = [](std::string_view Path) { return !Path.ends_with(".tmp"); };
				Options.IsBulk = [](std::string_view Path) { return Path.ends_with("/b.txt"); };
			});
		for (const char* File : {"In/A/a.txt", "In/A/Deep/b.txt", "In/A/Deep/c.tmp"})
			Watched.Disk.Write(File, "other");
		std::this_thread::sleep_for(std::chrono::milliseconds(1100)); // what is new is told again for a second
		FFolderChanges Changes = Watched.Watch->Take(EFolderLook::WithoutBulk);
		EXPECT_TRUE(Watched.Tells(Changes, "A/a.txt"));
		EXPECT_FALSE(Watched.Tells(Changes, "A/Deep/c.tmp"));
		EXPECT_TRUE(Watched.Tells(Changes, "A/Deep/b.txt")) << "its folder has changed";

		Watched.Disk.Write("In/A/Deep/b.txt", "changed in place");
		Watched.Disk.Write("In/Top.txt", "changed in place");
		Changes = Watched.Watch->Take(EFolderLook::WithoutBulk);
		EXPECT_TRUE(Watched.Tells(Changes, "Top.txt"));
		const bool bTold = Watched.Tells(Changes, "A/Deep/b.txt");
		EXPECT_EQ(bTold, Mode == EFolderWatchMode::Events);
		EXPECT_NE(Watched.Tells(Watched.Watch->Take(), "A/Deep/b.txt"), bTold);
		EXPECT_FALSE(Watched.Tells(Watched.Watch->Take(), "A/Deep/c.tmp"));
	}
}

TEST(FolderWatch, GoesOnBesideAFolderThatCannotBeRead)
{
	if (geteuid() == 0)
		GTEST_SKIP() << "root reads everything";
	for (const EFolderWatchMode Mode : {EFolderWatchMode::Events, EFolderWatchMode::Times})
	{
		FWatched Watched(Mode, [](FFolderWatchOptions&) {});
		Watched.Disk.SetMode("In/A", 0);
		Watched.Watch->Take();
		Watched.Disk.Write("In/Top.txt", "x");
		EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "Top.txt"));
		Watched.Disk.SetMode("In/A", 0700);
		EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "A/a.txt"));
		Watched.Disk.Write("In/A/a.txt", "x");
		EXPECT_TRUE(Watched.Tells(Watched.Watch->Take(), "A/a.txt"));
	}
}
