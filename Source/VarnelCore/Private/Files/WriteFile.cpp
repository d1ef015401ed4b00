#include "Core/Files/WriteFile.h"

#include "Core/Threads/StopToken.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int32 MaxTemporaryNames = 100; // tried before saving gives up
constexpr int StopMilliseconds = 100;	 // between two looks at the stop request

/** False when it is not worth another attempt. */
bool WaitUntilWritable(int Descriptor)
{
	pollfd Poll{.fd = Descriptor, .events = POLLOUT, .revents = 0};
	const int Milliseconds = GetStopToken().stop_possible() ? StopMilliseconds : -1;
	while (!IsStopRequested())
	{
		const int NumReady = poll(&Poll, 1, Milliseconds);
		if (NumReady != 0)
			return NumReady > 0 || errno == EINTR;
	}
	errno = EINTR;
	return false;
}

bool HasName(const FFileHandle& Folder, const std::string& Name, const FFileHandle& File)
{
	struct stat Named;
	struct stat Opened;
	return fstatat(Folder.Get(), Name.c_str(), &Named, AT_SYMLINK_NOFOLLOW) == 0 && fstat(File.Get(), &Opened) == 0 &&
		S_ISREG(Named.st_mode) && Named.st_dev == Opened.st_dev && Named.st_ino == Opened.st_ino;
}

/** Who writes a temporary file keeps it locked: one without a lock has been left behind by a program that was killed. */
void RemoveIfLeftBehind(const FFileHandle& Folder, const std::string& Name)
{
	const FFileHandle File(openat(Folder.Get(), Name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
	if (File.IsOpen() && flock(File.Get(), LOCK_EX | LOCK_NB) == 0 && HasName(Folder, Name, File))
		unlinkat(Folder.Get(), Name.c_str(), 0);
}

/** False when another writer takes the file for one that was left behind. Where files cannot be locked nobody does. */
bool LockTemporary(const FFileHandle& Folder, const std::string& Name, const FFileHandle& File)
{
	return (flock(File.Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) && HasName(Folder, Name, File);
}

/** Locked, under a name that other programs and threads do not use at the same time. It is short, since the target's own may have
 * the longest length allowed. */
FFileHandle CreateTemporary(const FFileHandle& Folder, std::string& OutName)
{
	for (int32 Try = 0; Try < MaxTemporaryNames; ++Try)
	{
		OutName = ".varnel-save-" + std::to_string(Try) + ".tmp";
		RemoveIfLeftBehind(Folder, OutName);
		FFileHandle File(openat(Folder.Get(), OutName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
		if (File.IsOpen() ? LockTemporary(Folder, OutName, File) : errno != EEXIST)
			return File;
	}
	errno = EEXIST;
	return {};
}

/** What was written has arrived, as far as the promise goes; the file stays open. */
bool Settle(const FFileHandle& File, EPowerCut PowerCut)
{
	if (PowerCut == EPowerCut::Survives)
		return fsync(File.Get()) == 0 || errno == EINVAL;			   // a file system that knows no such thing
	return FFileHandle(fcntl(File.Get(), F_DUPFD_CLOEXEC, 0)).Close(); // closing shows late errors
}

/** A file that only its owner may read stays so. */
void KeepPermissions(const FFileHandle& Folder, const std::string& TargetName, const FFileHandle& File)
{
	struct stat Status;
	if (fstatat(Folder.Get(), TargetName.c_str(), &Status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(Status.st_mode))
		static_cast<void>(fchmod(File.Get(), Status.st_mode & 0777));
}
}

bool WriteFile::All(int Descriptor, FStringView Bytes)
{
	while (!Bytes.empty())
	{
		const ssize_t Written = write(Descriptor, Bytes.data(), Bytes.size());
		if (Written >= 0)
			Bytes.remove_prefix(static_cast<std::size_t>(Written));
		else if (errno == EAGAIN ? !WaitUntilWritable(Descriptor) : errno != EINTR)
			return false;
	}
	return true;
}

bool WriteFile::Replace(const FFileHandle& Folder, const std::string& TargetName, FStringView Bytes, EPowerCut PowerCut)
{
	std::string TemporaryName;
	FFileHandle File = CreateTemporary(Folder, TemporaryName);
	if (!File.IsOpen())
		return false;
	KeepPermissions(Folder, TargetName, File);
	const bool bWritten = All(File.Get(), Bytes) && Settle(File, PowerCut);
	if (bWritten && renameat(Folder.Get(), TemporaryName.c_str(), Folder.Get(), TargetName.c_str()) == 0)
		return true;
	const int Reason = errno;
	unlinkat(Folder.Get(), TemporaryName.c_str(), 0);
	errno = Reason;
	return false;
}
