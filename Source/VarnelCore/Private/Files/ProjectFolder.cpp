#include "Core/Files/ProjectFolder.h"

#include "Files/PathResolver.h"
#include "Files/SecureOpen.h"

#include <dirent.h>

FProjectFolder::FProjectFolder(const FString& Root) : Handle(PathResolver::Open(Root, SecureOpen::ToPassFolder))
{
}

EFileRead FProjectFolder::Read(FStringView RelativePath, std::string& Buffer, uint64 MaxBytes) const
{
	Buffer.clear();
	if (!IsOpen())
		return EFileRead::Missing;
	const FFileHandle File = SecureOpen::OpenBeneath(Handle.Get(), RelativePath, SecureOpen::ToReadFile);
	return File.IsOpen() ? SecureOpen::ReadRegularFile(File, Buffer, MaxBytes, 0) : SecureOpen::ToFileRead(errno);
}

unsigned char FProjectFolder::LookAt(FStringView RelativePath, FFileStamp& Out) const
{
	if (RelativePath.empty())
		return SecureOpen::LookAt(Handle, "", Out);
	const FFileHandle Found =
		IsOpen() ? SecureOpen::OpenBeneath(Handle.Get(), RelativePath, SecureOpen::ToLookAt) : FFileHandle();
	return Found.IsOpen() ? SecureOpen::LookAt(Found, "", Out) : static_cast<unsigned char>(DT_UNKNOWN);
}

bool FProjectFolder::GetFileStamp(FStringView RelativePath, FFileStamp& Out) const
{
	return LookAt(RelativePath, Out) == DT_REG;
}

bool FProjectFolder::GetFolderStamp(FStringView RelativePath, FFileStamp& Out) const
{
	return LookAt(RelativePath, Out) == DT_DIR;
}
