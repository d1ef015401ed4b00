#pragma once

#include "Core/Files/FileHandle.h"
#include "Core/Files/FolderWatch.h"

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

/**
 * The events of the system (inotify) for every folder below some roots. Keeps the paths of folders alone. A folder's watch is set
 * before the folder is listed for further ones, so nothing falls between. One thread at a time.
 */
class FFolderEvents
{
public:
	/** Roots with a slash at the end. What the parameters refer to must outlive this. */
	FFolderEvents(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions);

	/** Why no event, or not every one, can be had; "" while all is well. Then it is of no more use. */
	const FString& GetFailure() const { return Failure; }
	FFolderChanges Take();

private:
	using FFolders = std::map<std::string, int, std::less<>>; // path with a slash at the end, number of the watch
	struct FRoot
	{
		const std::string& Path;
		bool bThere;
	};

	void Start();
	void StartRoot(FRoot& Root);
	void WatchAncestors(const std::string& Path);
	bool IsAnyRootBack() const;
	static FFileHandle OpenRoot(const std::string& Path);

	void WatchTree(const std::string& Path);
	bool WatchFolder(const FFileHandle& Folder, const std::string& Path);
	void Keep(int Watch, const FFileHandle& Folder, const std::string& Path);
	void Forget(FFolders::iterator Folder);
	void ForgetTree(const std::string& Path);
	void Fail(const FString& Why);

	const FRoot* FindRoot(std::string_view Path) const;
	FFileHandle OpenFolder(std::string_view Path) const;
	bool IsWatched(std::string_view Path) const;

	struct FEvent
	{
		int Watch;
		uint32 Mask;
		std::string_view Name; // "" for the folder itself
	};
	void ReadEvents();
	void HandleEvents(std::string_view Bytes);
	void HandleEvent(const FEvent& Event);
	void HandleOwnEvent(const FEvent& Event, FFolders::iterator Folder);
	void HandleFolder(uint32 Mask, const std::string& Path);

	const FFolderWatchOptions& Options;
	std::vector<FRoot> Roots;
	FFileHandle Queue;
	std::mutex Lock; // guards what follows while several threads list folders
	FString Failure;
	FFolders Folders;
	std::unordered_map<int, FFolders::iterator> Watches;
	std::set<int> Ancestors; // watches of folders above a root

	// Of the Take under way.
	bool bLost = false; // events are missing, or a root is another folder now
	std::set<std::string> ChangedFiles;
	std::set<std::string> ChangedFolders;
};
