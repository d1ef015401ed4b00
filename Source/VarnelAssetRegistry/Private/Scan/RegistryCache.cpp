#include "Scan/RegistryCache.h"

#include "Core/Base/Checksum.h"
#include "Core/Files/File.h"
#include "Image/FolderText.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
constexpr mode_t FolderMode = 0777; // what the user's mask leaves of it
constexpr mode_t FileMode = 0666;

class FDescriptor
{
public:
	explicit FDescriptor(int InNumber) : Number(InNumber) {}
	~FDescriptor() { Close(); }
	FDescriptor(FDescriptor&& Other) noexcept : Number(std::exchange(Other.Number, -1)) {}
	FDescriptor& operator=(FDescriptor&& Other) noexcept
	{
		std::swap(Number, Other.Number);
		return *this;
	}

	bool IsOpen() const { return Number >= 0; }
	int Get() const { return Number; }
	bool Close() { return Number < 0 || close(std::exchange(Number, -1)) == 0; }

private:
	int Number = -1;
};

enum class EMissingFolder : uint8
{
	Fail,
	Create,
};

FDescriptor OpenFolder(const FString& Start, const FString& Inner, EMissingFolder IfMissing)
{
	if (IfMissing == EMissingFolder::Create)
		IFileManager::Get().MakeDirectory(Start);
	FDescriptor Folder(open(*Start, O_PATH | O_DIRECTORY | O_CLOEXEC));
	for (const FString& Name : Inner.ParseIntoArray("/"))
	{
		if (!Folder.IsOpen())
			break;
		if (IfMissing == EMissingFolder::Create)
			mkdirat(Folder.Get(), *Name, FolderMode);
		Folder = FDescriptor(openat(Folder.Get(), *Name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
	}
	return Folder;
}

/** Of a file that is something else no more than the start is read. */
EImageState LookAtStart(int Descriptor)
{
	struct stat Status;
	char Start[FRegistryImage::NumStartBytes];
	const ssize_t NumRead = pread(Descriptor, Start, sizeof Start, 0);
	if (NumRead < 0 || fstat(Descriptor, &Status) != 0)
		return EImageState::Foreign;
	return FRegistryImage::LookAtStart({Start, static_cast<std::size_t>(NumRead)}, static_cast<std::size_t>(Status.st_size));
}

bool WriteAll(int Descriptor, std::string_view Bytes)
{
	while (!Bytes.empty())
	{
		const ssize_t NumWritten = write(Descriptor, Bytes.data(), Bytes.size());
		if (NumWritten > 0)
			Bytes.remove_prefix(static_cast<std::size_t>(NumWritten));
		else if (NumWritten == 0 || errno != EINTR)
			return false;
	}
	return true;
}

/** A name that no other process or thread uses at the same time. */
FString MakeTemporaryName(FStringView Name)
{
	static std::atomic<uint32> NumMade = 0;
	return FString::Printf(".%s.%ld-%u.tmp", std::string(Name).c_str(), static_cast<long>(getpid()), NumMade++);
}
}

FRegistryCache::FRegistryCache(const FString& ProjectFolder, const FString& CacheFolder)
{
	const FString Project = FolderText::WithTrailingSlash(ProjectFolder);
	const FString Folder = FolderText::WithTrailingSlash(CacheFolder);
	const bool bInside = FolderText::IsInside(Folder, Project);
	StartFolder = bInside ? Project : Folder;
	InnerFolder = FString(Folder.View().substr(StartFolder.View().size()));
	FileName = Folder;
	if (bInside)
		FileName += "AssetRegistry.cache";
	else
		FileName += FString::Printf("AssetRegistry-%016llx.cache", static_cast<unsigned long long>(ChecksumOf(Project)));
}

TSharedPtr<const FRegistryImage> FRegistryCache::Read(EImageState& OutState) const
{
	OutState = EImageState::Missing;
	const FDescriptor Folder = OpenFolder(StartFolder, InnerFolder, EMissingFolder::Fail);
	if (!Folder.IsOpen())
		return nullptr;
	const FString Name = FPaths::GetCleanFilename(FileName);
	const FDescriptor File(openat(Folder.Get(), *Name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
	if (!File.IsOpen())
		return nullptr;
	// Mapped, the file would go on changing in place under a program that has checked it.
	OutState = LookAtStart(File.Get());
	return OutState == EImageState::Sound ? FRegistryImage::Open(FImageBytes::Read(File.Get()), OutState) : nullptr;
}

bool FRegistryCache::Write(const FRegistryImage& Image) const
{
	const FDescriptor Folder = OpenFolder(StartFolder, InnerFolder, EMissingFolder::Create);
	if (!Folder.IsOpen())
		return false;
	const FString Name = FPaths::GetCleanFilename(FileName);
	const FString Temporary = MakeTemporaryName(Name);
	FDescriptor File(openat(Folder.Get(), *Temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FileMode));
	if (!File.IsOpen())
		return false;
	const bool bWritten = WriteAll(File.Get(), Image.GetBytes());
	if (File.Close() && bWritten && renameat(Folder.Get(), *Temporary, Folder.Get(), *Name) == 0)
		return true;
	unlinkat(Folder.Get(), *Temporary, 0);
	return false;
}
