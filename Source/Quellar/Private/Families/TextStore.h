#pragma once

#include "Core/Files/FileTree.h"
#include "Core/Files/FolderWatch.h"
#include "Families/TextGrams.h"

#include <functional>

/** Text files that a search is to look at, in the order of the search. */
struct FTextFiles
{
	FFileTree Tree;
	std::vector<std::string> UnreadableFolders; // relative to the root, ascending
	std::vector<int32> Places;					// by file, where the store wants its grams; NoPlace elsewhere

	static constexpr int32 NoPlace = -1;
};

/**
 * The text files of the opened project, kept from search to search while whoever watches the project tells of changes: the list
 * of them, and the grams of those that a search has read, so that the next one reads only what may match. Of a file that could
 * not be read, or is too large, nothing is kept: every search tries again and reports it. Game thread.
 */
class FTextStore
{
public:
	static FTextStore& Get();

	/** From now on changes are told, but for what lies in UntoldFolders ("Saved", directly below the project), which the store
	 * watches itself from the first search on. */
	void Start(const TArray<FString>& UntoldFolders, EFolderWatchMode Mode);
	/** Lets go of everything. */
	void Stop();
	bool IsOn() const { return bOn; }
	void Note(const FFolderChanges& Changes);

	/** Those below Root, the opened project's folder, that pass Filter and may match. Paths are relative to it. */
	FTextFiles Find(const FString& Root, const FTermGrams& Term, const std::function<bool(std::string_view Path)>& Filter);
	/** Places are of the last Find. */
	void Keep(int32 Place, FTextGrams Grams);
	/** What grams take; SearchMemory has the limit. */
	int64 GetMemory() const { return NumBytes; }

private:
	struct FFile
	{
		std::string Path; // relative to the project
		FTextGrams Grams;
	};

	/** What lies in the untold folders. */
	class FUntoldFiles
	{
	public:
		FUntoldFiles(const FString& Root, const TArray<FString>& Folders, EFolderWatchMode Mode);
		/** Changes since the last time. Of no use any more once a stop is requested, nor is what is made under one. */
		FFolderChanges Take();

	private:
		std::stop_source Stop; // of whatever search is under way
		TUniquePtr<FFolderWatch> Watch;
	};

	void NoteFile(std::string_view Path);
	void NoteFolder(std::string_view Path);
	std::vector<FFile>::iterator FindFirst(std::string_view Path);
	void DropGrams(FFile& File);
	void DropFiles();
	void Refresh(const FString& Root);
	void NoteUntold(const FString& Root);
	void ListAgain(const FString& Root);

	bool bOn = false;
	bool bListed = false;
	TArray<FString> UntoldFolders;
	EFolderWatchMode UntoldMode = EFolderWatchMode::Events;
	TUniquePtr<FUntoldFiles> Untold; // null: nothing is known of them
	TArray<FString> Extensions;		 // of the settings, when the files were listed
	std::vector<FFile> Files;		 // ascending
	std::vector<std::string> UnreadableFolders;
	int64 NumBytes = 0; // of grams
};
