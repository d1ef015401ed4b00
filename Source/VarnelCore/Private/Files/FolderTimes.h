#pragma once

#include "Core/Files/FileTree.h"
#include "Core/Files/FolderWatch.h"

/** Finds changes below some roots by listing all files with their stamps. One thread at a time. */
class FFolderTimes
{
public:
	/** Lists. Roots with a slash at the end; what the parameters refer to must outlive this. */
	FFolderTimes(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions);

	/** Nothing while the last look is not old enough. */
	FFolderChanges Take();

private:
	/** The files below one root as they were at the last look. */
	struct FListing
	{
		uint64 Device = 0; // of the root itself, and its inode: 0 where it is missing
		uint64 Inode = 0;
		FFileTree Files;
		std::vector<uint8> bSettled; // by file: a later change shows in its stamp
	};
	FListing List(const std::string& Root) const;
	static void Compare(const std::string& Root, const FListing& Before, const FListing& After, FFolderChanges& Out);

	const std::vector<std::string>& Roots;
	const FFolderWatchOptions& Options;
	std::vector<FListing> Listings; // one a root
	std::chrono::steady_clock::time_point LastLook;
};
