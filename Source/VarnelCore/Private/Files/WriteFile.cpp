#include "Core/Files/WriteFile.h"

#include "Core/Threads/StopToken.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
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

/** A name that other programs and threads do not use at the same time. It is short, since the target's own may have the longest
 * length allowed. */
FFileHandle CreateTemporary(const FFileHandle& Folder, std::string& OutName)
{
	static std::atomic<uint32> Counter = 0;
	for (int32 Try = 0; Try < MaxTemporaryNames; ++Try)
	{
		OutName = ".save-" + std::to_string(getpid()) + "-" + std::to_string(Counter++) + ".tmp";
		FFileHandle File(openat(Folder.Get(), OutName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
		if (File.IsOpen() || errno != EEXIST)
			return File;
	}
	return {};
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

bool WriteFile::Replace(const FFileHandle& Folder, const std::string& TargetName, FStringView Bytes)
{
	std::string TemporaryName;
	FFileHandle File = CreateTemporary(Folder, TemporaryName);
	if (!File.IsOpen())
		return false;
	KeepPermissions(Folder, TargetName, File);
	const bool bWritten = All(File.Get(), Bytes) && File.Close();
	if (bWritten && renameat(Folder.Get(), TemporaryName.c_str(), Folder.Get(), TargetName.c_str()) == 0)
		return true;
	const int Reason = errno;
	unlinkat(Folder.Get(), TemporaryName.c_str(), 0);
	errno = Reason;
	return false;
}
