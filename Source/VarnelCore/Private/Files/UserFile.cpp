#include "Core/Files/File.h"
#include "Core/Files/WriteFile.h"
#include "Core/Threads/StopToken.h"
#include "Files/SecureOpen.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace
{
constexpr int32 MaxLinks = 40;								   // on the way to a file, as the system has it
constexpr auto ReaderPatience = std::chrono::milliseconds(20); // between two looks whether a pipe is read

/** Where a name of the user leads in the end. */
struct FUserTarget
{
	std::string Folder; // absolute, without links
	std::string Name;
	FFileHandle Handle;			 // of the folder
	mode_t Mode = 0;			 // 0: there is nothing of that name
	bool bOpenElsewhere = false; // reached through a descriptor of some process ("/dev/stdout")
};

bool Fail(const FString& Error, FString& OutError)
{
	OutError = Error;
	return false;
}

bool FailWithSystemError(FString& OutError)
{
	return Fail(FString::FromExternal(std::strerror(errno)), OutError);
}

bool OpenFolder(const std::string& Path, FUserTarget& Out, FString& OutError)
{
	char Resolved[PATH_MAX];
	if (realpath(Path.c_str(), Resolved))
		Out.Handle = FFileHandle(open(Resolved, SecureOpen::ToPassFolder | O_CLOEXEC));
	if (!Out.Handle.IsOpen() && (errno == ENOENT || errno == ENOTDIR))
		return Fail("there is no folder " + FString::FromExternal(Path), OutError);
	if (!Out.Handle.IsOpen())
		return FailWithSystemError(OutError);
	Out.Folder = Resolved;
	Out.bOpenElsewhere = Out.Folder.starts_with("/proc/");
	return true;
}

/** Looks at the name in its folder; for a link, OutLink is what it holds. */
bool LookAt(FUserTarget& Target, std::string& OutLink)
{
	OutLink.clear();
	struct stat Status;
	if (fstatat(Target.Handle.Get(), Target.Name.c_str(), &Status, AT_SYMLINK_NOFOLLOW) != 0)
		return errno == ENOENT;
	Target.Mode = Status.st_mode;
	if (!S_ISLNK(Status.st_mode))
		return true;
	OutLink.resize(PATH_MAX);
	const ssize_t NumBytes = readlinkat(Target.Handle.Get(), Target.Name.c_str(), OutLink.data(), OutLink.size());
	OutLink.resize(static_cast<std::size_t>(std::max<ssize_t>(NumBytes, 0)));
	return NumBytes > 0;
}

bool IsBelowProject(const std::string& Folder)
{
	const FString& Project = FPaths::ProjectDir();
	return !Project.IsEmpty() && (Folder + "/").starts_with(Project.View());
}

/** Goes along links, dangling ones too. */
bool FindTarget(const FString& Path, FUserTarget& Out, FString& OutError)
{
	std::string Next = Path.ToStdString();
	std::string Link;
	bool bBeganInProject = IsBelowProject(FPaths::ConvertRelativePathToFull(Path).ToStdString());
	for (int32 NumLinks = 0; NumLinks < MaxLinks; ++NumLinks)
	{
		const std::size_t NameStart = Next.rfind('/') + 1; // 0 where there is no slash
		Out = FUserTarget();
		Out.Name = Next.substr(NameStart);
		if (!OpenFolder(NameStart == 0 ? "." : Next.substr(0, NameStart), Out, OutError))
			return false;
		if (!LookAt(Out, Link))
			return FailWithSystemError(OutError);
		bBeganInProject |= NumLinks == 0 && IsBelowProject(Out.Folder);
		if (bBeganInProject && !IsBelowProject(Out.Folder))
			return Fail("it is a link that leads out of the project", OutError);
		if (Link.empty() || Out.bOpenElsewhere)
			return true;
		Next = Link.starts_with('/') ? Link : Out.Folder + "/" + Link;
	}
	errno = ELOOP;
	return FailWithSystemError(OutError);
}

/** A pipe may have no reader yet. */
FFileHandle OpenToWrite(const FString& Path, bool bIsPipe)
{
	for (;;)
	{
		FFileHandle File(open(*Path, O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
		if (File.IsOpen() || errno != ENXIO || !bIsPipe || IsStopRequested())
			return File;
		std::this_thread::sleep_for(ReaderPatience);
	}
}

FFileHandle ConnectToWrite(const FString& Path)
{
	sockaddr_un Address{.sun_family = AF_UNIX, .sun_path = {}};
	if (static_cast<std::size_t>(Path.NumBytes()) >= sizeof Address.sun_path)
	{
		errno = ENAMETOOLONG;
		return {};
	}
	std::copy(Path.View().begin(), Path.View().end(), Address.sun_path);
	FFileHandle Socket(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
	if (Socket.IsOpen() && connect(Socket.Get(), reinterpret_cast<const sockaddr*>(&Address), sizeof Address) != 0)
		return {};
	return Socket;
}

/** For what keeps its place: a device, a pipe, a socket, an open file of a process. */
bool WriteThrough(FStringView Text, const FString& Path, FString& OutError)
{
	struct stat Status;
	if (stat(*Path, &Status) != 0)
		return FailWithSystemError(OutError);
	FFileHandle File = S_ISSOCK(Status.st_mode) ? ConnectToWrite(Path) : OpenToWrite(Path, S_ISFIFO(Status.st_mode));
	return (File.IsOpen() && WriteFile::All(File.Get(), Text) && File.Close()) || FailWithSystemError(OutError);
}
}

bool FFileHelper::WriteUserFile(FStringView Text, const FString& Path, FString& OutError)
{
	FUserTarget Target;
	if (!FindTarget(Path, Target, OutError))
		return false;
	if (Target.Name.empty() || S_ISDIR(Target.Mode))
		return Fail("it is a folder", OutError);
	if (Target.bOpenElsewhere || (Target.Mode != 0 && !S_ISREG(Target.Mode)))
		return WriteThrough(Text, Path, OutError);
	return WriteFile::Replace(Target.Handle, Target.Name, Text, EPowerCut::Survives) || FailWithSystemError(OutError);
}
