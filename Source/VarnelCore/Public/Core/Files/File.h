#pragma once

#include "Core/Base/Containers.h"
#include "Core/Files/FileTree.h"
#include "Core/Text/String.h"

#include <string>

/**
 * The file operations of the engine. Paths are UTF-8 with forward slashes. All functions may be called from any thread.
 * Below the opened project nothing here or in FFileHelper goes through a symbolic link; a path elsewhere is the user's own and is
 * followed.
 */
class IFileManager
{
public:
	static IFileManager& Get();
	virtual ~IFileManager() = default;

	/** Regular files below Root whose file name matches Wildcard, absolute, in ascending byte order. "*.*" and "*" match every
	 * name; else "*" stands for any text and "?" for one code point, without regard to case. Names that are not valid UTF-8 are
	 * left out. Kept for callers. */
	virtual void FindFilesRecursive(TArray<FString>& OutFiles, const FString& Root, const FString& Wildcard) = 0;
	virtual bool FileExists(const FString& Path) = 0;
	virtual bool DirectoryExists(const FString& Path) = 0;
	/** Creates missing parents too. */
	virtual bool MakeDirectory(const FString& Path) = 0;
};

/** Whole files in one call. Any thread. */
namespace FFileHelper
{
/** Longest text file that is read, bytes. */
constexpr uint64 MaxTextFileBytes = 256ull * 1024 * 1024;

/** Reads a text file: UTF-8 and UTF-16 byte-order marks are honoured and dropped, ill-formed text is repaired. False: missing,
 * unreadable, too large. Kept for callers. */
bool LoadFileToString(FString& Out, const FString& Path);
/** Decodes a file's bytes as LoadFileToString does. Text without a mark and without faults is returned as it lies (no copy: the
 * view may point into Bytes or Scratch). */
FStringView DecodeText(std::string_view Bytes, std::string& Scratch);
/** Reads bytes without decoding; regular files only. */
EFileRead LoadFileToBytes(std::string& Out, const FString& Path, uint64 MaxBytes);
/** Writes UTF-8 without a byte-order mark to a temporary name beside the target and renames it over the target, which keeps its
 * permissions. Creates the folder. False: the target is as it was. */
bool SaveStringToFile(FStringView Text, const FString& Path);
/**
 * The same for a file that the user has named, which may be anything. A regular or missing file is replaced by rename; a link is
 * followed, and stays; a device, pipe or socket is opened and written, waiting for a reader where there is none, until a stop is
 * requested (Core/StopToken.h). No folder is created, and no link of the opened project leads out of it. False with a reason that
 * can follow the file's name and a colon: what was there is as it was, unless it is not a regular file.
 */
bool WriteUserFile(FStringView Text, const FString& Path, FString& OutError);
}

/** Folders of the opened project and path arithmetic. The project folder is set once, before anything reads it. */
namespace FPaths
{
/** Absolute, with a trailing slash; "" before a project is set. */
const FString& ProjectDir();
FString ProjectContentDir();
FString ProjectPluginsDir();
FString ProjectSavedDir();
FString ProjectIntermediateDir();
/** Host only. Makes Dir absolute (symbolic links in the path to the project itself are resolved); "" closes the project. Any
 * opened registry must be closed. False, with the reason in errno, where the folder cannot be opened or its path is not UTF-8
 * (EILSEQ): nothing below it can be opened or created then. */
bool SetProjectDir(const FString& Dir);

/** Text after the last dot of the file name, without the dot; empty when there is none. */
FStringView GetExtension(FStringView Path);
/** Text after the last slash. */
FStringView GetCleanFilename(FStringView Path);
/** File name without its extension. */
FStringView GetBaseFilename(FStringView Path);
/** Text before the last slash, empty when there is none. */
FStringView GetPath(FStringView Path);
FString Combine(FStringView A, FStringView B);
/** Absolute form relative to the current folder, without a slash at the end; "." and ".." resolved by text alone. */
FString ConvertRelativePathToFull(FStringView Path);
}
