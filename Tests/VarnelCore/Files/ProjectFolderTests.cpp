#include "Core/Files/ProjectFolder.h"

#include "Support/Cases.h"
#include "Support/ScratchFolder.h"

#include <unistd.h>

namespace
{
constexpr uint64 NoLimit = 1ull << 30;
}

TEST(ProjectFolder, NoPathLeavesTheFolder)
{
	const FScratchFolder Scratch;
	Scratch.Write("Outside.md", "secret");
	Scratch.Write("Project/Docs/Notes.md", "text");
	Scratch.Write("Project/Docs/a\\b\n\xFF", "odd name");
	Scratch.Link("../Outside.md", "Project/Link.md");
	Scratch.Link("Docs/Notes.md", "Project/LinkInside.md");
	Scratch.Link("Docs", "Project/LinkFolder");
	Scratch.Link("..", "Project/Up");
	Scratch.Pipe("Project/Pipe");
	const FProjectFolder Folder(Scratch.Path("Project"));
	ASSERT_TRUE(Folder.IsOpen());
	const TCase<std::string, EFileRead> Cases[] = {
		{"a file", "Docs/Notes.md", EFileRead::Ok},
		{"any bytes that the file system allows", "Docs/a\\b\n\xFF", EFileRead::Ok},
		{"out by ..", "../Outside.md", EFileRead::Missing},
		{"in again by .., which text alone cannot judge when there are links", "Docs/../Docs/Notes.md", EFileRead::Missing},
		{"absolute, even to a file inside", Scratch.GetRoot() + "/Project/Docs/Notes.md", EFileRead::Missing},
		{"a link that leads out", "Link.md", EFileRead::Missing},
		{"a link that stays inside", "LinkInside.md", EFileRead::Missing},
		{"through a linked folder", "LinkFolder/Notes.md", EFileRead::Missing},
		{"through a link upward", "Up/Outside.md", EFileRead::Missing},
		{"one name, one spelling: no dot segment", "./Docs/Notes.md", EFileRead::Missing},
		{"nor an empty one", "Docs//Notes.md", EFileRead::Missing},
		{"nor a slash at the end", "Docs/Notes.md/", EFileRead::Missing},
		{"a file is no folder", "Docs/Notes.md/x", EFileRead::Missing},
		{"a folder is no file", "Docs", EFileRead::Missing},
		{"the folder itself", "", EFileRead::Missing},
		{"a pipe", "Pipe", EFileRead::Missing},
		{"missing", "Docs/Missing.md", EFileRead::Missing},
		{"cut by a zero byte it would be a file", std::string("Docs/Notes.md\0x", 15), EFileRead::Missing},
		{"a name longer than names can be", std::string(300, 'x'), EFileRead::Missing},
	};
	for (const auto& Case : Traced(Cases))
	{
		std::string Content;
		EXPECT_EQ(Folder.Read(Case.Given, Content, NoLimit), Case.Expected);
		EXPECT_EQ(Content.empty(), Case.Expected != EFileRead::Ok);
	}
}

TEST(ProjectFolder, FailuresThatAreNotAbsence)
{
	const FScratchFolder Scratch;
	Scratch.Write("Large", "123456789");
	Scratch.Write("Closed", "text");
	Scratch.SetMode("Closed", 0);
	const FProjectFolder Folder(Scratch.Path());
	std::string Content;
	EXPECT_EQ(Folder.Read("Large", Content, 8), EFileRead::TooLarge);
	EXPECT_EQ(FProjectFolder(Scratch.Path("Missing")).Read("Large", Content, 8), EFileRead::Missing);
	if (geteuid() != 0) // permissions do not bind root
	{
		EXPECT_EQ(Folder.Read("Closed", Content, 8), EFileRead::Unreadable);
	}
}
