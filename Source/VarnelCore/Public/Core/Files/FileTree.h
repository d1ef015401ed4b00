#pragma once

#include "Core/Base/Delegate.h"
#include "Core/Files/FileHandle.h"
#include "Core/Text/String.h"

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/** What a file's cached knowledge is compared with. Equal stamps mean an unchanged file. */
struct FFileStamp
{
	uint64 Size = 0;
	int64 ModifiedNanoseconds = 0;
	int64 ChangedNanoseconds = 0;
	uint64 Inode = 0;

	friend bool operator==(const FFileStamp&, const FFileStamp&) = default;
	/** What bears the stamp had been quiet for a while (a second) at the time, so that every later change gives another stamp:
	 * the kernel's tick is the grain of its times. */
	bool IsSettled(std::chrono::system_clock::time_point At = std::chrono::system_clock::now()) const;
};

/** What became of reading a file. */
enum class EFileRead : uint8
{
	Ok,
	Missing,	// gone, or no regular file, or reached through a symbolic link
	Unreadable, // permissions or an I/O error
	TooLarge,
};

/** What is listed, and how. */
struct FFileTreeOptions
{
	/** Keeps a file by its path relative to the root ("Docs/Notes.md"). Called from several threads at once. */
	std::function<bool(std::string_view RelativePath)> KeepFile;
	/** Whether to descend into a folder (relative path, no trailing slash). Absent: all. Called from several threads at once. */
	std::function<bool(std::string_view RelativePath)> EnterFolder;
	bool bWithStamps = false;
	int32 NumThreads = 0; // 0: all processors
	std::stop_token Stop; // a stopped listing is empty
};

class FFolderWalk;

/**
 * The regular files below one folder, in ascending byte order of their relative paths; symbolic links are neither listed nor
 * followed. Paths lie in one arena. Immutable once listed; reading may happen on many threads.
 */
class FFileTree
{
public:
	/** Folders that cannot be read are left out and named in GetUnreadableFolders. A missing root gives an empty tree, as
	 * does one that is reached through a symbolic link below the opened project. Any depth.
	 */
	static FFileTree List(FStringView Root, const FFileTreeOptions& Options);
	/** Files that the caller knows, to be read; in ascending byte order. Empty where the root cannot be opened. */
	static FFileTree FromPaths(FStringView Root, const std::vector<std::string_view>& RelativePaths);

	int32 Num() const { return static_cast<int32>(Files.size()); }
	/** Relative to the root, separated by "/". Not repaired: the bytes of the file system. */
	std::string_view GetRelativePath(int32 Index) const;
	const FFileStamp& GetStamp(int32 Index) const;
	/** Reads a whole file into Buffer (resized, plus Padding spare bytes of capacity) without following links. Empties it on
	 * failure. */
	EFileRead Read(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t Padding = 0) const;
	/** Relative to the root (the root itself is ""), in ascending byte order. */
	const std::vector<std::string>& GetUnreadableFolders() const { return UnreadableFolders; }

private:
	friend class FFileTreeReader;
	struct FFile
	{
		uint64 PathStart = 0;
		uint32 PathLength = 0;
		uint32 FolderLength = 0; // bytes of the folder part, without the slash
	};
	void Gather(const FFolderWalk& Walk);
	void AddFile(std::string_view FolderWithSlash, std::string_view Name);

	FFileHandle Root;
	std::string Arena;
	std::vector<FFile> Files;
	std::vector<FFileStamp> Stamps;
	std::vector<std::string> UnreadableFolders;
};

/**
 * Reads many files of one tree, best in ascending order: the folder of the last file stays open, which saves walking the path to
 * the next. One per thread, for the length of one run: it must not outlive the tree, and a folder that is renamed meanwhile is
 * still read through.
 */
class FFileTreeReader
{
public:
	explicit FFileTreeReader(const FFileTree& InTree) : Tree(InTree) {}
	FFileTreeReader(const FFileTreeReader&) = delete;
	FFileTreeReader& operator=(const FFileTreeReader&) = delete;

	/** As FFileTree::Read. */
	EFileRead Read(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t Padding = 0);
	/** Reads a file of any size in pieces of PieceBytes, the last one shorter, and hands them to Take until that returns false.
	 * Buffer holds the piece. */
	EFileRead ReadInPieces(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t PieceBytes,
		const std::function<bool(std::string_view Piece)>& Take);

private:
	FFileHandle Open(int32 Index);

	const FFileTree& Tree;
	FFileHandle Folder; // of the last file read
	std::string_view FolderPath;
};
