#include "Scan/RegistryCache.h"

#include "Core/Base/Checksum.h"
#include "Core/Files/File.h"
#include "Core/Files/WriteFile.h"
#include "Image/FolderText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr mode_t FolderMode = 0777; // what the user's mask leaves of it

enum class EMissingFolder : uint8
{
	Fail,
	Create,
};

FFileHandle OpenFolder(const FString& Start, const FString& Inner, EMissingFolder IfMissing)
{
	if (IfMissing == EMissingFolder::Create)
		IFileManager::Get().MakeDirectory(Start);
	FFileHandle Folder(open(*Start, O_PATH | O_DIRECTORY | O_CLOEXEC));
	for (const FString& Name : Inner.ParseIntoArray("/"))
	{
		if (!Folder.IsOpen())
			break;
		if (IfMissing == EMissingFolder::Create)
			mkdirat(Folder.Get(), *Name, FolderMode);
		Folder = FFileHandle(openat(Folder.Get(), *Name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
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
	const FFileHandle Folder = OpenFolder(StartFolder, InnerFolder, EMissingFolder::Fail);
	if (!Folder.IsOpen())
		return nullptr;
	const FString Name = FPaths::GetCleanFilename(FileName);
	const FFileHandle File(openat(Folder.Get(), *Name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
	if (!File.IsOpen())
		return nullptr;
	// Mapped, the file would go on changing in place under a program that has checked it.
	OutState = LookAtStart(File.Get());
	return OutState == EImageState::Sound ? FRegistryImage::Open(FImageBytes::Read(File.Get()), OutState) : nullptr;
}

bool FRegistryCache::Write(const FRegistryImage& Image) const
{
	const FFileHandle Folder = OpenFolder(StartFolder, InnerFolder, EMissingFolder::Create);
	return Folder.IsOpen() &&
		WriteFile::Replace(Folder, std::string(FPaths::GetCleanFilename(FileName)), Image.GetBytes(), EPowerCut::MayLose);
}
