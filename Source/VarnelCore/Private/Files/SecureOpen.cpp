#include "Files/SecureOpen.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <dirent.h>
#include <limits>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace
{
unsigned char ToEntryType(mode_t Mode)
{
	return S_ISREG(Mode) ? DT_REG : S_ISDIR(Mode) ? DT_DIR : DT_LNK;
}

int64 ToNanoseconds(const struct statx_timestamp& Time)
{
	return Time.tv_sec * 1'000'000'000 + Time.tv_nsec;
}

bool IsBeneath(std::string_view Path)
{
	if (Path.find('\0') != std::string_view::npos)
		return false;
	for (std::size_t Start = 0; Start <= Path.size();)
	{
		const std::size_t End = std::min(Path.find('/', Start), Path.size());
		const std::string_view Segment = Path.substr(Start, End - Start);
		if (Segment.empty() || Segment == "." || Segment == "..")
			return false;
		Start = End + 1;
	}
	return true;
}

FFileHandle OpenSegment(int Folder, std::string_view Name, int Flags)
{
	return SecureOpen::MakeHandle(openat(Folder, std::string(Name).c_str(), Flags | O_NOFOLLOW | O_CLOEXEC));
}

/** Segment by segment: for kernels without openat2 and for paths longer than one system call takes. */
FFileHandle OpenBySegments(int Root, std::string_view Path, int Flags)
{
	FFileHandle Folder;
	int Parent = Root;
	std::size_t Start = 0;
	for (std::size_t Slash = Path.find('/'); Slash != std::string_view::npos; Slash = Path.find('/', Start))
	{
		FFileHandle Next = OpenSegment(Parent, Path.substr(Start, Slash - Start), SecureOpen::ToPassFolder);
		if (!Next.IsOpen())
			return Next;
		Folder = std::move(Next);
		Parent = Folder.Get();
		Start = Slash + 1;
	}
	return OpenSegment(Parent, Path.substr(Start), Flags);
}

FFileHandle OpenInOneCall(int Root, std::string_view Path, int Flags)
{
	open_how How{};
	How.flags = static_cast<decltype(How.flags)>(Flags | O_NOFOLLOW | O_CLOEXEC);
	How.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
	return SecureOpen::MakeHandle(static_cast<int>(syscall(SYS_openat2, Root, std::string(Path).c_str(), &How, sizeof(How))));
}

/** Containers answer EPERM for calls that their filter does not know, a rename during the call gives EAGAIN. */
bool MaySegmentsSucceed(int ErrorNumber)
{
	return ErrorNumber == ENOSYS || ErrorNumber == EPERM || ErrorNumber == EAGAIN || ErrorNumber == ENAMETOOLONG;
}

ssize_t ReadSome(int Descriptor, char* Into, std::size_t Count)
{
	ssize_t Got = 0;
	do
		Got = read(Descriptor, Into, Count);
	while (Got < 0 && errno == EINTR);
	return Got;
}

EFileRead LookAtRegularFile(const FFileHandle& File, uint64 MaxBytes, uint64& OutSize)
{
	struct stat Status;
	if (fstat(File.Get(), &Status) != 0)
		return EFileRead::Unreadable;
	if (!S_ISREG(Status.st_mode))
		return EFileRead::Missing;
	OutSize = static_cast<uint64>(Status.st_size);
	return OutSize > MaxBytes ? EFileRead::TooLarge : EFileRead::Ok;
}

EFileRead ReadToEnd(int Descriptor, std::string& Buffer, std::size_t ExpectedSize, uint64 MaxBytes, std::size_t Padding)
{
	std::size_t Filled = 0;
	// A read that returns less than it was asked for has met the end of a regular file, so one spare byte saves the second call.
	for (std::size_t Room = ExpectedSize + 1;; Room = std::max<std::size_t>(Filled, 4096))
	{
		Buffer.reserve(Filled + Room + Padding);
		Buffer.resize(Filled + Room);
		const ssize_t Got = ReadSome(Descriptor, Buffer.data() + Filled, Room);
		if (Got < 0)
			return EFileRead::Unreadable;
		Filled += static_cast<std::size_t>(Got);
		if (Filled > MaxBytes)
			return EFileRead::TooLarge;
		// The system caps one read at about 2 GiB; such a read is short without being the last.
		const bool bMayGoOn = static_cast<std::size_t>(Got) == Room || (Got != 0 && Filled < ExpectedSize);
		if (!bMayGoOn)
			break;
	}
	Buffer.resize(Filled);
	return EFileRead::Ok;
}
}

FFileHandle SecureOpen::MakeHandle(int Descriptor)
{
	if (Descriptor < 0 && (errno == EMFILE || errno == ENFILE))
		throw std::system_error(errno, std::generic_category());
	return FFileHandle(Descriptor);
}

FFileHandle SecureOpen::OpenBeneath(int Root, std::string_view Path, int Flags)
{
	static std::atomic<bool> bNoOpenAt2 = false;
	if (!IsBeneath(Path))
	{
		errno = ENOENT;
		return {};
	}
	if (Path.find('/') == std::string_view::npos)
		return OpenSegment(Root, Path, Flags);
	if (bNoOpenAt2.load(std::memory_order_relaxed))
		return OpenBySegments(Root, Path, Flags);
	FFileHandle File = OpenInOneCall(Root, Path, Flags);
	if (File.IsOpen() || !MaySegmentsSucceed(errno))
		return File;
	if (errno == ENOSYS)
		bNoOpenAt2.store(true, std::memory_order_relaxed);
	return OpenBySegments(Root, Path, Flags);
}

EFileRead SecureOpen::ToFileRead(int ErrorNumber)
{
	switch (ErrorNumber)
	{
		case ENOENT:
		case ENOTDIR:
		case ELOOP: // a symbolic link where none may be
		case EXDEV:
		case ENXIO: // a socket
		case ENAMETOOLONG:
		case EINVAL:
			return EFileRead::Missing;
		default:
			return EFileRead::Unreadable;
	}
}

unsigned char SecureOpen::LookAt(const FFileHandle& Folder, const char* Name, FFileStamp& OutStamp)
{
	struct statx Status;
	constexpr int Flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_EMPTY_PATH;
	constexpr unsigned int Wanted = STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_CTIME | STATX_INO;
	if (statx(Folder.Get(), Name, Flags, Wanted, &Status) != 0)
		return DT_UNKNOWN;
	OutStamp.Size = Status.stx_size;
	OutStamp.ModifiedNanoseconds = ToNanoseconds(Status.stx_mtime);
	OutStamp.ChangedNanoseconds = ToNanoseconds(Status.stx_ctime);
	OutStamp.Inode = Status.stx_ino;
	return ToEntryType(Status.stx_mode);
}

bool SecureOpen::IsRegularFile(const FFileHandle& File)
{
	struct stat Status;
	return File.IsOpen() && fstat(File.Get(), &Status) == 0 && S_ISREG(Status.st_mode);
}

EFileRead SecureOpen::ReadRegularFile(const FFileHandle& File, std::string& Buffer, uint64 MaxBytes, std::size_t Padding)
{
	uint64 Size = 0;
	EFileRead Result = LookAtRegularFile(File, MaxBytes, Size);
	if (Result == EFileRead::Ok)
		Result = ReadToEnd(File.Get(), Buffer, Size, MaxBytes, Padding);
	if (Result != EFileRead::Ok)
		Buffer.clear();
	return Result;
}

EFileRead SecureOpen::ReadInPieces(const FFileHandle& File, std::string& Buffer, uint64 MaxBytes, std::size_t PieceBytes,
	const std::function<bool(std::string_view Piece)>& Take)
{
	uint64 Size = 0;
	if (const EFileRead Result = LookAtRegularFile(File, MaxBytes, Size); Result != EFileRead::Ok)
		return Result;
	Buffer.resize(PieceBytes);
	for (uint64 NumRead = 0;;)
	{
		const ssize_t Got = ReadSome(File.Get(), Buffer.data(), PieceBytes);
		if (Got < 0)
			return EFileRead::Unreadable;
		NumRead += static_cast<uint64>(Got);
		if (NumRead > MaxBytes)
			return EFileRead::TooLarge;
		if (Got == 0 || !Take(std::string_view(Buffer.data(), static_cast<std::size_t>(Got))))
			return EFileRead::Ok;
	}
}
