#include "Core/Files/FileTree.h"

#include "Core/Files/ProjectFolder.h"
#include "Support/Cases.h"
#include "Support/ScratchFolder.h"
#include "Support/Seed.h"

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

namespace
{
constexpr uint64 NoLimit = 1ull << 30;

std::vector<std::string> PathsOf(const FFileTree& Tree)
{
	std::vector<std::string> Paths;
	for (int32 Index = 0; Index < Tree.Num(); ++Index)
		Paths.emplace_back(Tree.GetRelativePath(Index));
	return Paths;
}

std::vector<std::string> ListPaths(const FScratchFolder& Scratch, const FFileTreeOptions& Options = {})
{
	return PathsOf(FFileTree::List(Scratch.Path(), Options));
}

std::string RandomName(std::mt19937& Random)
{
	static constexpr std::string_view Alphabet = "ab.-0Z\xFF\xC3\xA4 ~";
	std::string Name = Random() % 3 == 0 ? "SamePrefix" : "";
	for (std::size_t Length = 1 + Random() % 4; Length > 0; --Length)
		Name += Alphabet[Random() % Alphabet.size()];
	return Name == "." || Name == ".." ? "dot" : Name;
}

/** Lowers the number of handles that may be open while it lives. */
class FHandleLimit
{
public:
	explicit FHandleLimit(rlim_t Limit)
	{
		getrlimit(RLIMIT_NOFILE, &Before);
		const rlimit Lowered{.rlim_cur = Limit, .rlim_max = Before.rlim_max};
		setrlimit(RLIMIT_NOFILE, &Lowered);
	}
	~FHandleLimit() { setrlimit(RLIMIT_NOFILE, &Before); }

private:
	rlimit Before;
};

/** A chain of folders, deeper than one system call takes as a path and than the library removes, with a file at its end. */
class FDeepChain
{
public:
	/** Each of the first NumWithSides levels has two more folders with a file, so that many folders are pending at once. */
	FDeepChain(const FScratchFolder& Scratch, int32 NumWithSides)
	{
		Deepest = open(*Scratch.Path(), FolderFlags);
		for (int32 Level = 0; Level < NumLevels; ++Level)
		{
			// Names differ by level: the file system orders equal names equally, and the chain might always come first.
			for (const std::string& Side : {"a" + NameOf(Level), "z" + NameOf(Level)})
			{
				if (Level < NumWithSides && mkdirat(Deepest, Side.c_str(), 0700) == 0)
					WriteFile(Side + "/file");
			}
			EXPECT_EQ(mkdirat(Deepest, NameOf(Level).c_str(), 0700), 0);
			Enter(NameOf(Level));
			Path += NameOf(Level) + "/";
		}
		WriteFile("file");
		Path += "file";
	}
	~FDeepChain()
	{
		unlinkat(Deepest, "file", 0);
		for (int32 Level = NumLevels; Level-- > 0;)
		{
			Enter("..");
			unlinkat(Deepest, NameOf(Level).c_str(), AT_REMOVEDIR); // fails where there are sides; the rest is not too deep
		}
		close(Deepest);
	}
	FDeepChain(const FDeepChain&) = delete;
	FDeepChain& operator=(const FDeepChain&) = delete;

	/** Of the file at the end. */
	const std::string& GetPath() const { return Path; }
	static std::string NameOf(int32 Level) { return std::to_string(1000 + Level); }

private:
	static constexpr int32 NumLevels = 850; // of five bytes; a system call takes 4,096
	static constexpr int FolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

	void Enter(const std::string& Name) { close(std::exchange(Deepest, openat(Deepest, Name.c_str(), FolderFlags))); }
	void WriteFile(const std::string& Name) const
	{
		const int File = openat(Deepest, Name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
		EXPECT_EQ(write(File, "deep", 4), 4);
		close(File);
	}

	int Deepest = -1;
	std::string Path;
};
}

TEST(FileTree, RandomTreesAreSortedAndComplete)
{
	std::mt19937 Random(GetSeed());
	const FScratchFolder Scratch;
	std::set<std::string> Written; // std::string compares bytes as unsigned
	std::vector<std::string> Folders = {""};
	for (int32 Count = 0; Count < 400; ++Count)
	{
		const std::string Path = Folders[Random() % Folders.size()] + RandomName(Random);
		if (std::filesystem::exists(Scratch.GetRoot() + "/" + Path))
			continue;
		if (Random() % 4 == 0)
		{
			Scratch.MakeFolder(Path);
			Folders.push_back(Path + "/");
			continue;
		}
		Scratch.Write(Path, Path);
		Written.insert(Path);
	}
	for (const int32 NumThreads : {1, 2, 7})
	{
		FFileTreeOptions Options;
		Options.NumThreads = NumThreads;
		Options.bWithStamps = true;
		const FFileTree Tree = FFileTree::List(Scratch.Path(), Options);
		ASSERT_EQ(PathsOf(Tree), std::vector<std::string>(Written.begin(), Written.end())) << NumThreads << " threads";
		FFileTreeReader Reader(Tree);
		std::string Content;
		for (int32 Index = 0; Index < Tree.Num(); ++Index)
		{
			ASSERT_EQ(Tree.GetStamp(Index).Size, Tree.GetRelativePath(Index).size()) << "stamps and paths belong together";
			ASSERT_EQ(Reader.Read(Index, Content, NoLimit), EFileRead::Ok);
			ASSERT_EQ(Content, Tree.GetRelativePath(Index));
		}
	}
}

TEST(FileTree, ManyEntriesInOneFolder)
{
	const FScratchFolder Scratch;
	std::vector<std::string> Expected;
	for (int32 Number = 1000; Number < 1600; ++Number)
	{
		Expected.push_back(std::string(200, 'x') + std::to_string(Number)); // long names: more than one buffer of entries
		Scratch.Write(Expected.back(), "");
	}
	EXPECT_EQ(ListPaths(Scratch), Expected);
}

TEST(FileTree, FiltersSeeRelativePaths)
{
	const FScratchFolder Scratch;
	for (const char* Path : {"A.md", "Docs/B.md", "Docs/C.txt", "Saved/D.md", "Docs/Saved/E.md"})
		Scratch.Write(Path, "");
	std::mutex Lock;
	std::set<std::string> Asked;
	FFileTreeOptions Options;
	Options.KeepFile = [&](std::string_view Path)
	{
		const std::lock_guard Guard(Lock);
		Asked.emplace(Path);
		return Path.ends_with(".md");
	};
	Options.EnterFolder = [](std::string_view Path) { return Path != "Saved"; };
	EXPECT_EQ(ListPaths(Scratch, Options), (std::vector<std::string>{"A.md", "Docs/B.md", "Docs/Saved/E.md"}));
	EXPECT_EQ(Asked, (std::set<std::string>{"A.md", "Docs/B.md", "Docs/C.txt", "Docs/Saved/E.md"}))
		<< "a folder not entered is not read";
}

TEST(FileTree, OnlyRegularFilesAndNoLinks)
{
	const FScratchFolder Scratch;
	Scratch.Write("Inside/File.md", "text");
	Scratch.MakeFolder("Empty");
	Scratch.Link("Inside/File.md", "LinkToFile.md");
	Scratch.Link(Scratch.GetRoot() + "/Inside", "LinkToFolder");
	Scratch.Link("..", "Inside/Loop");
	Scratch.Link("nowhere", "Dangling");
	Scratch.Pipe("Pipe");
	for (const bool bWithStamps : {false, true})
	{
		FFileTreeOptions Options;
		Options.bWithStamps = bWithStamps;
		EXPECT_EQ(ListPaths(Scratch, Options), (std::vector<std::string>{"Inside/File.md"}));
	}
}

TEST(FileTree, RootsThatCannotBeListed)
{
	const FScratchFolder Scratch;
	Scratch.Write("File", "");
	const struct
	{
		const char* Why;
		FString Root;
	} Cases[] = {
		{"missing", Scratch.Path("Missing")},
		{"a file", Scratch.Path("File")},
		{"no path at all", ""},
		{"cut by a zero byte it would name an existing folder", FString(Scratch.GetRoot() + std::string("\0x", 2))},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FFileTree Tree = FFileTree::List(Case.Root, {});
		EXPECT_EQ(Tree.Num(), 0);
		EXPECT_TRUE(Tree.GetUnreadableFolders().empty());
	}
}

TEST(FileTree, UnreadableFolderIsNamedAndTheRestListed)
{
	if (geteuid() == 0)
		GTEST_SKIP() << "permissions do not bind root";
	const FScratchFolder Scratch;
	Scratch.Write("A/File", "");
	Scratch.Write("Closed/File", "");
	Scratch.Write("Z/File", "");
	Scratch.SetMode("Closed", 0);
	const FFileTree Tree = FFileTree::List(Scratch.Path(), {});
	EXPECT_EQ(PathsOf(Tree), (std::vector<std::string>{"A/File", "Z/File"}));
	EXPECT_EQ(Tree.GetUnreadableFolders(), std::vector<std::string>{"Closed"});
	EXPECT_EQ(FFileTree::List(Scratch.Path("Closed"), {}).GetUnreadableFolders(), std::vector<std::string>{""});
	Scratch.SetMode("Closed", 0700);
}

TEST(FileTree, DepthAndWidthDoNotExhaustStackOrHandles)
{
	const FScratchFolder Scratch;
	const FDeepChain Chain(Scratch, 300);
	const FHandleLimit Limit(160);
	for (const int32 NumThreads : {1, 3}) // with one, no other thread takes the pending folders before they add up
	{
		FFileTreeOptions Options;
		Options.NumThreads = NumThreads;
		const FFileTree Tree = FFileTree::List(Scratch.Path(), Options);
		EXPECT_EQ(Tree.GetUnreadableFolders(), std::vector<std::string>());
		const std::vector<std::string> Paths = PathsOf(Tree);
		EXPECT_EQ(Paths.size(), 601u);
		EXPECT_TRUE(std::is_sorted(Paths.begin(), Paths.end()));
		const auto Deepest = std::find(Paths.begin(), Paths.end(), Chain.GetPath());
		ASSERT_NE(Deepest, Paths.end());
		std::string Content;
		EXPECT_EQ(Tree.Read(static_cast<int32>(Deepest - Paths.begin()), Content, NoLimit), EFileRead::Ok);
		EXPECT_EQ(Content, "deep");
	}
}

TEST(FileTree, LongPathsAreAsSafeAsShortOnes)
{
	const FScratchFolder Inside, Outside;
	const FDeepChain Chain(Outside, 0);
	const std::string First = FDeepChain::NameOf(0);
	Inside.Link(Outside.GetRoot() + "/" + First, First);
	std::string Content;
	EXPECT_EQ(FProjectFolder(Outside.Path()).Read(Chain.GetPath(), Content, NoLimit), EFileRead::Ok);
	EXPECT_EQ(FProjectFolder(Outside.Path()).Read(Chain.GetPath() + "/../file", Content, NoLimit), EFileRead::Missing);
	EXPECT_EQ(FProjectFolder(Inside.Path()).Read(Chain.GetPath(), Content, NoLimit), EFileRead::Missing) << "behind a link";
}

TEST(FileTree, StoppedListingIsEmpty)
{
	const FScratchFolder Scratch;
	for (const char* Path : {"A/File", "B/File", "C/D/File"})
		Scratch.Write(Path, "");
	for (const bool bStopBefore : {true, false})
	{
		std::stop_source Source;
		FFileTreeOptions Options;
		Options.Stop = Source.get_token();
		Options.KeepFile = [&Source](std::string_view) { return Source.request_stop(); };
		if (bStopBefore)
			Source.request_stop();
		EXPECT_EQ(FFileTree::List(Scratch.Path(), Options).Num(), 0) << (bStopBefore ? "stopped before" : "stopped on the way");
	}
}

TEST(FileTree, ReadsWhatIsThereNow)
{
	const struct
	{
		const char* Why;
		std::function<void(const FScratchFolder&)> Change;
		EFileRead Expected;
		std::string Content;
	} Cases[] = {
		{"unchanged", [](const FScratchFolder&) {}, EFileRead::Ok, "text"},
		{"vanished", [](const FScratchFolder& In) { In.Remove("Docs/Notes.md"); }, EFileRead::Missing, ""},
		{"its folder vanished", [](const FScratchFolder& In) { In.Remove("Docs"); }, EFileRead::Missing, ""},
		{"emptied", [](const FScratchFolder& In) { In.Write("Docs/Notes.md", ""); }, EFileRead::Ok, ""},
		{"as large as allowed", [](const FScratchFolder& In) { In.Write("Docs/Notes.md", "12345678"); }, EFileRead::Ok,
			"12345678"},
		{"one byte too large", [](const FScratchFolder& In) { In.Write("Docs/Notes.md", "123456789"); }, EFileRead::TooLarge, ""},
		{"replaced by a link",
			[](const FScratchFolder& In)
			{
				In.Rename("Docs/Notes.md", "Docs/Other.md");
				In.Link("Other.md", "Docs/Notes.md");
			},
			EFileRead::Missing, ""},
		{"its folder replaced by a link",
			[](const FScratchFolder& In)
			{
				In.Rename("Docs", "Elsewhere");
				In.Link("Elsewhere", "Docs");
			},
			EFileRead::Missing, ""},
		{"replaced by a pipe, which would block a plain open",
			[](const FScratchFolder& In)
			{
				In.Remove("Docs/Notes.md");
				In.Pipe("Docs/Notes.md");
			},
			EFileRead::Missing, ""},
		{"replaced by a folder",
			[](const FScratchFolder& In)
			{
				In.Remove("Docs/Notes.md");
				In.MakeFolder("Docs/Notes.md");
			},
			EFileRead::Missing, ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FScratchFolder Scratch;
		Scratch.Write("Docs/Notes.md", "text");
		const FFileTree Tree = FFileTree::List(Scratch.Path(), {});
		ASSERT_EQ(Tree.Num(), 1);
		Case.Change(Scratch);
		FFileTreeReader Reader(Tree);
		std::string ByTree = "old", ByReader = "old";
		EXPECT_EQ(Tree.Read(0, ByTree, 8, 64), Case.Expected);
		EXPECT_EQ(Reader.Read(0, ByReader, 8, 64), Case.Expected);
		EXPECT_EQ(ByTree, Case.Content);
		EXPECT_EQ(ByReader, Case.Content);
		EXPECT_TRUE(Case.Expected != EFileRead::Ok || ByTree.capacity() >= ByTree.size() + 64)
			<< "room for a parser that reads ahead";
	}
}

TEST(FileTree, StampsTellChangedFiles)
{
	using FTime = std::filesystem::file_time_type;
	const TCase<std::function<void(const FScratchFolder&)>, bool> Cases[] = {
		{"untouched", [](const FScratchFolder&) {}, false},
		{"another file changed", [](const FScratchFolder& In) { In.Write("Other", "more"); }, false},
		{"grown", [](const FScratchFolder& In) { In.Write("File", "longer text"); }, true},
		{"only the time, by less than a second",
			[](const FScratchFolder& In)
			{
				const std::string Path = In.Path("File").ToStdString();
				std::filesystem::last_write_time(Path, std::filesystem::last_write_time(Path) - std::chrono::microseconds(3));
			},
			true},
		{"another file of the same size and time renamed over it",
			[](const FScratchFolder& In)
			{
				In.Write("New", "text");
				const FTime Time = std::filesystem::last_write_time(In.Path("File").ToStdString());
				std::filesystem::last_write_time(In.Path("New").ToStdString(), Time);
				In.Rename("New", "File");
			},
			true},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FScratchFolder Scratch;
		Scratch.Write("File", "text");
		FFileTreeOptions Options;
		Options.bWithStamps = true;
		const FFileTree Before = FFileTree::List(Scratch.Path(), Options);
		Case.Given(Scratch);
		const FFileTree After = FFileTree::List(Scratch.Path(), Options);
		EXPECT_EQ(Before.GetStamp(0) != After.GetStamp(0), Case.Expected);
	}
}
