#pragma once

#include "Core/Files/FileTree.h"
#include "Core/Files/FolderWatch.h"

#include <map>

/**
 * Finds changes below some roots by the stamps of the folders and files that it knows. Folders are listed once, and again where
 * their own stamp has changed: so an entry that has come, gone or been replaced shows. One thread at a time.
 */
class FFolderTimes
{
public:
	/** Lists. Roots with a slash at the end; what the parameters refer to must outlive this. */
	FFolderTimes(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions);

	/** Nothing while the last look is not old enough. What a look found that was stopped is told by the next. */
	FFolderChanges Take(EFolderLook Look);

private:
	struct FFile
	{
		uint32 NameStart = 0; // in FFolder::Names
		bool bSettled = false;
		bool bBulk = false;
		FFileStamp Stamp;
	};
	/** What is directly in one folder. */
	struct FFolder
	{
		FFileStamp Stamp; // taken before it was listed
		bool bSettled = false;
		std::string Names;		  // of the files, with a zero behind each
		std::vector<FFile> Files; // in ascending byte order of their names

		const char* GetName(const FFile& File) const { return Names.c_str() + File.NameStart; }
	};
	using FFolders = std::map<std::string, FFolder>; // by the path relative to the root, a slash at the end; "" is the root
	struct FRoot
	{
		std::string Path;
		uint64 Device = 0;
		uint64 Inode = 0; // 0 where it is missing, or its list is not complete
		FFolders Folders;
	};
	/** What a look at one folder shows. */
	struct FLook
	{
		bool bGone = false;
		bool bListAgain = false;
		std::vector<std::pair<uint32, FFileStamp>> Changed; // files by index, with their new stamps
	};

	void LookAtRoot(FRoot& Root, EFolderLook Look);
	void LookAtFolders(FRoot& Root, const FFileHandle& Handle, EFolderLook Look);
	FLook LookAtFolder(const FFileHandle& Root, const std::string& Path, const FFolder& Folder, EFolderLook Look) const;
	void TakeOver(FRoot& Root, FFolders::iterator Folder, const FLook& Look);
	bool ListTree(FRoot& Root, const FFileHandle& Handle, const std::string& Path);
	void AddFile(FFolder& Folder, const std::string& Path, std::string_view Name, const FFileStamp& Stamp) const;
	void Compare(const std::string& Path, const FFolder& Old, const FFolder& New);
	bool IsWatched(const FRoot& Root, std::string_view Folder) const;
	bool IsStopped() const { return Options.Stop.stop_requested(); }

	const FFolderWatchOptions& Options;
	std::vector<FRoot> Roots;
	FFolderChanges Changes;							// found and not told yet; files in any order, some twice
	std::chrono::system_clock::time_point LookTime; // when the look began that is under way
	std::chrono::steady_clock::time_point LastLook;
	std::chrono::steady_clock::time_point LastFullLook;
};
