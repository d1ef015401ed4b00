#include "Core/Files/File.h"
#include "Core/Text/TextDecoder.h"

#include "Support/Cases.h"
#include "Support/ScratchFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace
{
/** Opens the scratch folder, or one below it, as the project, and closes it at the end. */
class FProjectHere
{
public:
	explicit FProjectHere(const FString& Folder) { FPaths::SetProjectDir(Folder); }
	~FProjectHere() { FPaths::SetProjectDir(""); }
};

std::string Load(const FString& Path)
{
	FString Text;
	return FFileHelper::LoadFileToString(Text, Path) ? Text.ToStdString() : "(not loaded)";
}

std::vector<std::string> Names(const FScratchFolder& Scratch, const FString& Wildcard)
{
	TArray<FString> Found;
	IFileManager::Get().FindFilesRecursive(Found, Scratch.Path(), Wildcard);
	std::vector<std::string> Relative;
	for (const FString& Path : Found)
		Relative.push_back(Path.ToStdString().substr(Scratch.GetRoot().size() + 1));
	return Relative;
}

std::string DecodeInPieces(std::string_view Bytes, std::size_t PieceBytes)
{
	FTextDecoder Decoder;
	std::string Text;
	for (; !Bytes.empty(); Bytes.remove_prefix(std::min(PieceBytes, Bytes.size())))
		Decoder.Append(Bytes.substr(0, PieceBytes), Text);
	Decoder.Finish(Text);
	return Text;
}
}

TEST(FileHelper, TextIsDecodedByItsMark)
{
	using namespace std::string_literals;
	const TCase<std::string, std::string> Cases[] = {
		{"plain", "Grüße", "Grüße"},
		{"empty", "", ""},
		{"zero bytes are text", "a\0b"s, "a\0b"s},
		{"UTF-8 mark", "\xEF\xBB\xBFtext", "text"},
		{"only the first mark is one", "\xEF\xBB\xBF\xEF\xBB\xBFtext", "\xEF\xBB\xBFtext"},
		{"mark alone", "\xEF\xBB\xBF", ""},
		{"half a mark is ill-formed text", "\xEF\xBB", "\xEF\xBF\xBD"},
		{"UTF-8 mark, then a fault",
			"\xEF\xBB\xBF"
			"a\xFF",
			"a\xEF\xBF\xBD"},
		{"UTF-16 little end first", "\xFF\xFEg\0\xFC\0"s, "gü"},
		{"UTF-16 big end first", "\xFE\xFF\0g\0\xFC"s, "gü"},
		{"UTF-16 pair", "\xFF\xFE\x3D\xD8\x00\xDE"s, "😀"},
		{"UTF-16 half a pair", "\xFF\xFE\x3D\xD8g\0"s, "\xEF\xBF\xBDg"},
		{"UTF-16 cut in the middle of a unit", "\xFF\xFEg\0\x41"s, "g\xEF\xBF\xBD"},
		{"UTF-16 mark alone", "\xFF\xFE", ""},
		{"all lengths, sound and cut", "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80\xF0\x9F\x98|\xE2\x82|\xC3",
			"aü€😀\xEF\xBF\xBD|\xEF\xBF\xBD|\xEF\xBF\xBD"},
		{"Latin-1",
			"Gr\xFC\xDF"
			"e",
			"Gr\xEF\xBF\xBD\xEF\xBF\xBD"
			"e"},
	};
	const FScratchFolder Scratch;
	for (const auto& Case : Traced(Cases))
	{
		std::string Buffer;
		EXPECT_EQ(FFileHelper::DecodeText(Case.Given, Buffer), Case.Expected);
		for (std::size_t Size = 1; Size <= Case.Given.size(); ++Size)
			EXPECT_EQ(DecodeInPieces(Case.Given, Size), Case.Expected) << "pieces of " << Size;
		Scratch.Write("File", Case.Given);
		EXPECT_EQ(Load(Scratch.Path("File")), Case.Expected);
	}
}

TEST(FileHelper, TextWithoutFaultsIsNotCopied)
{
	std::string Buffer;
	const std::string Plain = "Grüße", Marked = "\xEF\xBB\xBFtext";
	EXPECT_EQ(FFileHelper::DecodeText(Plain, Buffer).data(), Plain.data());
	EXPECT_EQ(FFileHelper::DecodeText(Marked, Buffer).data(), Marked.data() + 3);
}

TEST(FileHelper, WhatCannotBeLoaded)
{
	const FScratchFolder Scratch;
	Scratch.MakeFolder("Folder");
	Scratch.Pipe("Pipe");
	Scratch.Write("Large", "");
	ASSERT_EQ(
		truncate(*Scratch.Path("Large"), static_cast<off_t>(FFileHelper::MaxTextFileBytes) + 1), 0); // takes no room on disk
	for (const char* Name : {"Folder", "Pipe", "Large", "Missing", "Missing/File"})
		EXPECT_EQ(Load(Scratch.Path(Name)), "(not loaded)") << Name;
}

TEST(FileHelper, FilesLargerThanTheySayAreReadWholeOrRefused)
{
	std::string Bytes; // the system's own files say that they are empty, as a file does that grows while it is being read
	EXPECT_EQ(FFileHelper::LoadFileToBytes(Bytes, "/proc/self/status", 1 << 20), EFileRead::Ok);
	EXPECT_TRUE(FStringView(Bytes).starts_with("Name:") && FStringView(Bytes).ends_with("\n")) << Bytes;
	EXPECT_EQ(FFileHelper::LoadFileToBytes(Bytes, "/proc/self/status", 8), EFileRead::TooLarge);
	EXPECT_EQ(Bytes, "");
}

TEST(FileHelper, SavingReplacesByRename)
{
	const FScratchFolder Scratch;
	Scratch.Write("Notes.md", "old");
	Scratch.SetMode("Notes.md", 0640);
	std::filesystem::create_hard_link(Scratch.Path("Notes.md").ToStdString(), Scratch.Path("Witness").ToStdString());
	EXPECT_TRUE(FFileHelper::SaveStringToFile("new Grüße", Scratch.Path("Notes.md")));
	EXPECT_EQ(Scratch.Read("Notes.md"), "new Grüße") << "no byte-order mark";
	EXPECT_EQ(Scratch.Read("Witness"), "old") << "the old file itself was not written to";
	using std::filesystem::perms;
	EXPECT_EQ(std::filesystem::status(Scratch.Path("Notes.md").ToStdString()).permissions(),
		perms::owner_read | perms::owner_write | perms::group_read);
	EXPECT_EQ(Names(Scratch, "*"), (std::vector<std::string>{"Notes.md", "Witness"})) << "no temporary file stays";
}

TEST(FileHelper, SavingTidiesUpAfterKilledPrograms)
{
	const FScratchFolder Scratch;
	Scratch.Write(".varnel-save-0.tmp", "of one that writes");
	Scratch.Write(".varnel-save-1.tmp", "left behind");
	Scratch.Link("File", ".varnel-save-2.tmp");
	const int Writer = open(*Scratch.Path(".varnel-save-0.tmp"), O_RDONLY);
	ASSERT_EQ(flock(Writer, LOCK_EX), 0);
	EXPECT_TRUE(FFileHelper::SaveStringToFile("new", Scratch.Path("File")));
	EXPECT_EQ(Names(Scratch, "*"), (std::vector<std::string>{".varnel-save-0.tmp", "File"}));
	close(Writer);
	std::vector<std::jthread> Threads;
	for (int32 Thread = 0; Thread < 8; ++Thread)
		Threads.emplace_back(
			[&Scratch, Thread]
			{
				for (int32 Round = 0; Round < 20; ++Round)
					EXPECT_TRUE(FFileHelper::SaveStringToFile("new", Scratch.Path("File" + std::to_string(Thread))));
			});
	Threads.clear();
	EXPECT_EQ(Names(Scratch, "*").size(), 9U) << "nothing but the files";
}

TEST(FileHelper, WhereTextCanBeSaved)
{
	const std::string LongestName(255, 'n');
	const TCase<std::string, bool> Cases[] = {
		{"into missing folders", "A/B/File", true},
		{"under the longest name allowed", LongestName, true},
		{"over a link, which is replaced and not followed", "Link", true},
		{"not over a folder", "Folder", false},
		{"not below a file", "File/New", false},
		{"not as a folder", "New/", false},
		{"not under a name that is too long", LongestName + "n", false},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FScratchFolder Scratch;
		Scratch.Write("File", "old");
		Scratch.Write("Folder/File", "old");
		Scratch.Link("File", "Link");
		const std::vector<std::string> Before = Names(Scratch, "*");
		EXPECT_EQ(FFileHelper::SaveStringToFile("new", Scratch.Path(Case.Given)), Case.Expected);
		EXPECT_EQ(Scratch.Read("File"), "old");
		if (Case.Expected)
		{
			EXPECT_EQ(Scratch.Read(Case.Given), "new");
		}
		EXPECT_EQ(Names(Scratch, "*").size(), Before.size() + (Case.Expected ? 1 : 0)) << "nothing is left behind";
	}
}

TEST(FileHelper, FolderThatCannotBeWrittenKeepsTheOldText)
{
	if (geteuid() == 0)
		GTEST_SKIP() << "permissions do not bind root";
	const FScratchFolder Scratch;
	Scratch.Write("Folder/File", "old");
	Scratch.SetMode("Folder", 0500);
	EXPECT_FALSE(FFileHelper::SaveStringToFile("new", Scratch.Path("Folder/File")));
	EXPECT_FALSE(FFileHelper::SaveStringToFile("new", Scratch.Path("Folder/New/File")));
	EXPECT_EQ(Scratch.Read("Folder/File"), "old");
	Scratch.SetMode("Folder", 0700);
}

TEST(FileHelper, LinksAreFollowedOutsideTheProjectOnly)
{
	const FScratchFolder Scratch;
	Scratch.Write("Outside/File.md", "outside");
	Scratch.Link("Outside", "LinkOutside");
	Scratch.MakeFolder("Project/Docs");
	Scratch.Link("../Outside", "Project/Linked");
	Scratch.Link("../Outside/File.md", "Project/File.md");
	Scratch.Link("Project", "LinkToProject");
	const FProjectHere Project(Scratch.Path("LinkToProject"));
	IFileManager& Files = IFileManager::Get();

	EXPECT_EQ(FPaths::ProjectDir().ToStdString(), Scratch.GetRoot() + "/Project/")
		<< "the link to the project itself is resolved";
	EXPECT_EQ(Load(Scratch.Path("LinkOutside/File.md")), "outside");
	for (const char* Path : {"Linked/File.md", "File.md", "Docs/../File.md"})
	{
		EXPECT_EQ(Load(FPaths::ProjectDir() + Path), "(not loaded)") << Path;
		EXPECT_FALSE(Files.FileExists(FPaths::ProjectDir() + Path)) << Path;
	}
	EXPECT_FALSE(Files.DirectoryExists(FPaths::ProjectDir() + "Linked"));
	EXPECT_TRUE(Files.DirectoryExists(FPaths::ProjectDir() + "Docs/"));
	EXPECT_TRUE(Files.DirectoryExists(FPaths::ProjectDir()));
	EXPECT_FALSE(FFileHelper::SaveStringToFile("new", FPaths::ProjectDir() + "Linked/New.md"));
	EXPECT_FALSE(Files.MakeDirectory(FPaths::ProjectDir() + "Linked/New"));
	EXPECT_EQ(Names(Scratch, "*"), std::vector<std::string>{"Outside/File.md"}) << "nothing was written outside";
	TArray<FString> Found;
	Files.FindFilesRecursive(Found, FPaths::ProjectDir() + "Linked", "*");
	EXPECT_EQ(Found.Num(), 0) << "a linked folder is no root either";
}

TEST(FileHelper, NothingIsReachedBelowAProjectThatCannotBeOpened)
{
	const FScratchFolder Scratch;
	Scratch.MakeFolder("bad\xFF");
	Scratch.Link("bad\xFF", "Link");
	Scratch.Write("Project/File.md", "text");
	const TCase<std::string, int> Cases[] = {
		{"missing", "Nowhere", ENOENT},
		{"a file", "Project/File.md", ENOTDIR},
		{"not UTF-8", "bad\xFF", EILSEQ},
		{"not UTF-8 behind a link", "Link", EILSEQ},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_FALSE(FPaths::SetProjectDir(Scratch.Path(Case.Given)));
		EXPECT_EQ(errno, Case.Expected);
		EXPECT_FALSE(FFileHelper::SaveStringToFile("new", FPaths::ProjectDir() + "Saved/New.md"));
		EXPECT_FALSE(IFileManager::Get().MakeDirectory(FPaths::ProjectDir() + "Saved"));
	}
	ASSERT_TRUE(FPaths::SetProjectDir(Scratch.Path("Project")));
	EXPECT_EQ(Names(Scratch, "*"), std::vector<std::string>{"Project/File.md"});
	EXPECT_FALSE(std::filesystem::exists(Scratch.Path("Nowhere").ToStdString()));

	Scratch.Remove("Project");
	EXPECT_FALSE(FFileHelper::SaveStringToFile("new", FPaths::ProjectDir() + "Saved/New.md"));
	EXPECT_FALSE(std::filesystem::exists(Scratch.Path("Project").ToStdString())) << "a project that is gone is not made anew";
	FPaths::SetProjectDir("");
}

TEST(FileManager, WildcardsMatchFileNames)
{
	const FScratchFolder Scratch;
	for (const char* Name : {"Notes.MD", "Docs/Über.md", "Docs/NoDot", "Docs/a.b.txt", "Docs/bad\xFF.md", "\xFF/In.md"})
		Scratch.Write(Name, "");
	const TCase<const char*, std::vector<std::string>> Cases[] = {
		{"every name, also one without a dot; none that is not UTF-8", "*.*",
			{"Docs/NoDot", "Docs/a.b.txt", "Docs/Über.md", "Notes.MD"}},
		{"every name", "*", {"Docs/NoDot", "Docs/a.b.txt", "Docs/Über.md", "Notes.MD"}},
		{"without regard to case", "*.md", {"Docs/Über.md", "Notes.MD"}},
		{"the star gives way to a later match", "*.*.t*t", {"Docs/a.b.txt"}},
		{"one code point, two bytes", "?ber.md", {"Docs/Über.md"}},
		{"case of every language", "über*", {"Docs/Über.md"}},
		{"the whole name, not a part", "Notes", {}},
		{"the folder is not part of the name", "Docs*", {}},
		{"an empty pattern matches no name", "", {}},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Names(Scratch, Case.Given), Case.Expected);
}

TEST(Paths, Parts)
{
	const struct
	{
		const char* Path;
		const char* Extension;
		const char* Name;
		const char* Base;
		const char* Folder;
	} Cases[] = {
		{"/Game/Docs/Notes.tar.gz", "gz", "Notes.tar.gz", "Notes.tar", "/Game/Docs"},
		{"Docs.v2/README", "", "README", "README", "Docs.v2"}, // the dot of a folder is not the file's
		{".gitignore", "gitignore", ".gitignore", "", ""},
		{"Ends.", "", "Ends.", "Ends", ""},
		{"/File", "", "File", "File", ""},
		{"Docs/", "", "", "", "Docs"},
		{"", "", "", "", ""},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Path);
		EXPECT_EQ(FPaths::GetExtension(Case.Path), Case.Extension);
		EXPECT_EQ(FPaths::GetCleanFilename(Case.Path), Case.Name);
		EXPECT_EQ(FPaths::GetBaseFilename(Case.Path), Case.Base);
		EXPECT_EQ(FPaths::GetPath(Case.Path), Case.Folder);
	}
}

TEST(Paths, CombineAndFullForms)
{
	const struct
	{
		const char* A;
		const char* B;
		const char* Combined;
		const char* Full; // null: depends on the current folder
	} Cases[] = {
		{"/A", "B", "/A/B", "/A/B"},
		{"/A/", "/B", "/A/B", "/A/B"},
		{"/", "B", "/B", "/B"},
		{"", "B", "B", nullptr},
		{"/A", "", "/A", "/A"},
		{"/A", "../B/./C//D/", "/A/../B/./C//D/", "/B/C/D"},
		{"/A", "../../..", "/A/../../..", "/"},
	};
	for (const auto& Case : Cases)
	{
		const FString Combined = FPaths::Combine(Case.A, Case.B);
		EXPECT_EQ(Combined.ToStdString(), Case.Combined);
		if (Case.Full)
		{
			EXPECT_EQ(FPaths::ConvertRelativePathToFull(Combined).ToStdString(), Case.Full);
		}
	}
	const std::string Current = std::filesystem::current_path().string();
	EXPECT_EQ(FPaths::ConvertRelativePathToFull("x/../y").ToStdString(), Current + "/y");
	EXPECT_EQ(FPaths::ConvertRelativePathToFull(".").ToStdString(), Current);
}
