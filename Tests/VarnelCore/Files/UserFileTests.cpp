#include "Core/Files/File.h"
#include "Core/Threads/StopToken.h"
#include "Support/Cases.h"
#include "Support/ScratchFolder.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace
{
/** The reason; "" when the text was written. */
std::string Write(const FScratchFolder& Scratch, const char* Path, FStringView Text = "new")
{
	FString Error;
	const bool bWritten = FFileHelper::WriteUserFile(Text, Scratch.Path(Path), Error);
	EXPECT_EQ(bWritten, Error.IsEmpty());
	return Error.ToStdString();
}

mode_t GetKind(const FScratchFolder& Scratch, const char* Path)
{
	struct stat Status = {};
	lstat(*Scratch.Path(Path), &Status);
	return Status.st_mode & S_IFMT;
}

std::string ReadAll(int Descriptor)
{
	std::string Text;
	char Buffer[4096];
	for (ssize_t Got = 0; (Got = read(Descriptor, Buffer, sizeof Buffer)) > 0;)
		Text.append(Buffer, static_cast<std::size_t>(Got));
	close(Descriptor);
	return Text;
}
}

TEST(UserFile, FilesAreReplacedAndLinksFollowed)
{
	const struct
	{
		const char* Why;
		std::vector<std::pair<const char*, const char*>> Links; // name, target
		const char* Path;
		const char* Written; // "": nothing
		const char* Error;
	} Cases[] = {
		{"a new file", {}, "New.txt", "New.txt", ""},
		{"a file that is there", {}, "Old.txt", "Old.txt", ""},
		{"the file behind a link", {{"Link", "Old.txt"}}, "Link", "Old.txt", ""},
		{"along several links, up and down", {{"Folder/Link", "../Next"}, {"Next", "Folder/../Old.txt"}}, "Folder/Link",
			"Old.txt", ""},
		{"a link that dangles", {{"Link", "Folder/New.txt"}}, "Link", "Folder/New.txt", ""},
		{"through a link to a folder", {{"Linked", "Folder"}}, "Linked/New.txt", "Folder/New.txt", ""},
		{"a link into a folder that is missing", {{"Link", "No/New.txt"}}, "Link", "", "there is no folder "},
		{"a folder that is missing", {}, "No/New.txt", "", "there is no folder "},
		{"a file in a folder's place", {}, "Old.txt/New.txt", "", "there is no folder "},
		{"a folder", {}, "Folder", "", "it is a folder"},
		{"a folder, named as such", {}, "Folder/", "", "it is a folder"},
		{"links in a ring", {{"Link", "Back"}, {"Back", "Link"}}, "Link", "", "Too many levels of symbolic links"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FScratchFolder Scratch;
		Scratch.MakeFolder("Folder");
		Scratch.Write("Old.txt", "old");
		Scratch.SetMode("Old.txt", 0600);
		for (const auto& [Name, Target] : Case.Links)
			Scratch.Link(Target, Name);
		EXPECT_EQ(Write(Scratch, Case.Path).substr(0, std::string(Case.Error).size()), Case.Error);
		if (*Case.Written)
		{
			EXPECT_EQ(Scratch.Read(Case.Written), "new");
		}
		EXPECT_EQ(Scratch.Read("Old.txt"), std::string(Case.Written) == "Old.txt" ? "new" : "old");
		EXPECT_EQ(std::filesystem::status(Scratch.Path("Old.txt").ToStdString()).permissions(), std::filesystem::perms(0600));
		for (const auto& [Name, Target] : Case.Links)
			EXPECT_EQ(GetKind(Scratch, Name), mode_t{S_IFLNK}) << Name;
		EXPECT_EQ(GetKind(Scratch, "No"), 0U) << "no folder is created";
	}
}

TEST(UserFile, WhatIsNoFileKeepsItsPlace)
{
	const FScratchFolder Scratch;
	const std::string Long(300'000, 'x'); // more than a pipe holds

	Scratch.Pipe("Pipe");
	Scratch.Link("Pipe", "Link");
	std::string Read;
	{
		const std::jthread Reader([&] { Read = ReadAll(open(*Scratch.Path("Pipe"), O_RDONLY)); });
		EXPECT_EQ(Write(Scratch, "Link", Long), "");
	}
	EXPECT_EQ(Read, Long);
	EXPECT_EQ(GetKind(Scratch, "Pipe"), mode_t{S_IFIFO});

	const int Listener = socket(AF_UNIX, SOCK_STREAM, 0);
	sockaddr_un Address{.sun_family = AF_UNIX, .sun_path = {}};
	const FString Path = Scratch.Path("Socket");
	std::copy(Path.View().begin(), Path.View().end(), Address.sun_path);
	ASSERT_EQ(bind(Listener, reinterpret_cast<const sockaddr*>(&Address), sizeof Address), 0);
	ASSERT_EQ(listen(Listener, 1), 0);
	{
		const std::jthread Reader([&] { Read = ReadAll(accept(Listener, nullptr, nullptr)); });
		EXPECT_EQ(Write(Scratch, "Socket", Long + "!"), "");
	}
	close(Listener);
	EXPECT_EQ(Read, Long + "!");
	EXPECT_EQ(GetKind(Scratch, "Socket"), mode_t{S_IFSOCK});
	EXPECT_EQ(Write(Scratch, "Socket"), "Connection refused");
}

TEST(UserFile, DevicesAreWritten)
{
	const FScratchFolder Scratch;
	if (mknod(*Scratch.Path("Null"), S_IFCHR | 0666, makedev(1, 3)) != 0 ||
		mknod(*Scratch.Path("Full"), S_IFCHR | 0666, makedev(1, 7)) != 0)
		GTEST_SKIP() << "only root may make devices";
	const int Probe = open(*Scratch.Path("Null"), O_WRONLY);
	if (Probe < 0)
		GTEST_SKIP() << "devices do not work in this folder";
	close(Probe);
	EXPECT_EQ(Write(Scratch, "Null"), "");
	EXPECT_EQ(Write(Scratch, "Full"), "No space left on device");
	EXPECT_EQ(GetKind(Scratch, "Null"), mode_t{S_IFCHR});
	EXPECT_EQ(GetKind(Scratch, "Full"), mode_t{S_IFCHR});
}

TEST(UserFile, AnOpenFileIsWrittenAndNotReplaced)
{
	const FScratchFolder Scratch;
	Scratch.Write("Log", "before\n");
	const int Log = open(*Scratch.Path("Log"), O_WRONLY | O_APPEND);
	FString Error;
	EXPECT_TRUE(FFileHelper::WriteUserFile("new\n", "/dev/fd/" + FString::FromInt(Log), Error)) << *Error;
	EXPECT_EQ(write(Log, "after\n", 6), 6);
	close(Log);
	EXPECT_EQ(Scratch.Read("Log"), "before\nnew\nafter\n");
}

TEST(UserFile, AStopEndsTheWaitForAReader)
{
	const FScratchFolder Scratch;
	Scratch.Pipe("Pipe");
	std::stop_source Source;
	const FStopScope Scope(Source.get_token());
	const std::jthread Stopper([&] { Source.request_stop(); });
	EXPECT_NE(Write(Scratch, "Pipe"), "");
	const int Idle = open(*Scratch.Path("Pipe"), O_RDONLY | O_NONBLOCK);
	EXPECT_NE(Write(Scratch, "Pipe", std::string(300'000, 'x')), "") << "one that does not read";
	close(Idle);
}

TEST(UserFile, NoLinkOfTheProjectLeadsOut)
{
	const FScratchFolder Scratch;
	Scratch.MakeFolder("Project/Docs");
	Scratch.MakeFolder("Outside");
	Scratch.Write("Outside/Precious", "old");
	Scratch.Link("../Outside", "Project/Linked");
	Scratch.Link("../Outside/Precious", "Project/Link");
	Scratch.Link("Docs/Graph.html", "Project/Inside");
	Scratch.Link("Project/Docs", "To the project");
	FPaths::SetProjectDir(Scratch.Path("Project"));
	EXPECT_EQ(Write(Scratch, "Project/Link"), "it is a link that leads out of the project");
	EXPECT_EQ(Write(Scratch, "Project/Linked/New"), "it is a link that leads out of the project");
	EXPECT_EQ(Write(Scratch, "Project/Inside"), "");
	EXPECT_EQ(Write(Scratch, "To the project/More.html"), "");
	EXPECT_EQ(Write(Scratch, "Outside/New"), "");
	FPaths::SetProjectDir("");
	EXPECT_EQ(Scratch.Read("Outside/Precious"), "old");
	EXPECT_EQ(Scratch.Read("Project/Docs/Graph.html") + Scratch.Read("Project/Docs/More.html"), "newnew");
}
