#pragma once

#include "Core/Files/File.h"

/**
 * Opens files relative to one folder's handle: no path that people, references or protocol messages give can leave the folder,
 * through "..", an absolute path or a symbolic link. Any thread.
 */
class FProjectFolder
{
public:
	/** A folder that cannot be opened gives IsOpen() false. */
	explicit FProjectFolder(const FString& Root);
	FProjectFolder(const FProjectFolder&) = delete;
	FProjectFolder& operator=(const FProjectFolder&) = delete;

	bool IsOpen() const { return Handle.IsOpen(); }
	/** Reads a regular file below the folder. */
	EFileRead Read(FStringView RelativePath, std::string& Buffer, uint64 MaxBytes) const;
	/** Stamps of a regular file below this folder, and of a folder ("" is this one), reached without any symbolic link. False
	 * when there is none. */
	bool GetFileStamp(FStringView RelativePath, FFileStamp& Out) const;
	bool GetFolderStamp(FStringView RelativePath, FFileStamp& Out) const;

private:
	unsigned char LookAt(FStringView RelativePath, FFileStamp& Out) const;

	const FFileHandle Handle;
};
