#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/** What may have changed since it was last asked for. Paths are absolute, the bytes of the file system. */
struct FFolderChanges
{
	bool bAll = false;				  // anything may have; the lists are empty
	std::vector<std::string> Files;	  // appeared, changed or gone; each once, ascending
	std::vector<std::string> Folders; // with everything below them, appeared or gone; each once, ascending, a slash at the end

	bool IsEmpty() const { return !bAll && Files.empty() && Folders.empty(); }
};

/** Where the knowledge of changes comes from. */
enum class EFolderWatchMode : uint8
{
	Events, // the system keeps them until they are asked for
	Times,	// the stamps of files and folders are compared with those of the last look
};

/** What a look in the mode Times is for. */
enum class EFolderLook : uint8
{
	All,
	WithoutBulk, // files that FFolderWatchOptions::IsBulk names may be left for a later look
};

struct FFolderWatchOptions
{
	/** Whether a folder below a root is watched, by its absolute path, no slash at the end. Nothing is told of the others.
	 * Absent: all are. Called from several threads at once. */
	std::function<bool(std::string_view Path)> EnterFolder;
	/** Whether a file is watched, by its absolute path. Absent: all are. Called from several threads at once. */
	std::function<bool(std::string_view Path)> KeepFile;
	/** Files of which there are very many and that not everybody asks about; see EFolderLook. Absent: none. As KeepFile. */
	std::function<bool(std::string_view Path)> IsBulk;
	bool bTimesOnly = false;
	/** In the mode Times there is a look so often at most; in between nothing is told. */
	std::chrono::steady_clock::duration TimesInterval = std::chrono::seconds(1);
	int32 MaxWatches = 0; // folders watched for events, beyond which times are compared; 0: what the system allows
	std::stop_token Stop; // ends a look at the folders that is under way; what it left out is told later
};

class FFolderEvents;
class FFolderTimes;

/**
 * Knows what may have changed below some folders since it was last asked. No thread runs for it: events wait in the system until
 * Take, which costs one system call where there are none. Symbolic links below the roots are not followed. What is written into a
 * file through a memory mapping, or under another name of it outside of the folders, gives no event.
 *
 * A listing of the folders made after this misses nothing: what happens meanwhile is reported next. One thread at a time.
 */
class FFolderWatch
{
public:
	/** Roots are absolute paths of folders; one that is missing is told of (as bAll) when it appears. None may lie in another. */
	explicit FFolderWatch(const TArray<FString>& InRoots, FFolderWatchOptions InOptions = {});
	~FFolderWatch();
	FFolderWatch(const FFolderWatch&) = delete;
	FFolderWatch& operator=(const FFolderWatch&) = delete;

	/** Events turn into Times where they are no longer to be had. */
	EFolderWatchMode GetMode() const;
	/** Why times are compared, half a sentence: "the folder /x lies on a network"; "" in the mode Events. */
	const FString& GetReason() const { return Reason; }
	/** Everything that was closed, renamed or removed before the call is told, with what is under way. */
	FFolderChanges Take(EFolderLook Look = EFolderLook::All);

private:
	void CompareTimes();

	const std::vector<std::string> Roots; // with a slash at the end
	const FFolderWatchOptions Options;
	FString Reason;
	TUniquePtr<FFolderEvents> Events; // one of the two
	TUniquePtr<FFolderTimes> Times;
};
