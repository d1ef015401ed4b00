#pragma once

#include "Core/Files/FileTree.h"
#include "Files/SecureOpen.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/**
 * One parallel walk through the folders below a root. Every worker writes what it finds into storage of its own; Visit hands out
 * the files of the finished walk in ascending byte order of their relative paths, which depends neither on the number of threads
 * nor on the file system's order.
 */
class FFolderWalk
{
public:
	FFolderWalk(const FFileHandle& Root, const FFileTreeOptions& Options);

	/** Walks everything. False: stopped. */
	bool Run();
	/** Calls OnFile(FolderPath, Name, Stamp) for each file kept; the stamp is null unless asked for. */
	template <class TOnFile>
	void Visit(TOnFile&& OnFile) const;

	std::size_t CountFiles() const;
	/** Of all relative paths together. */
	std::size_t CountPathBytes() const;
	std::vector<std::string> GetUnreadableFolders() const;

private:
	struct FWorker;

	/** What one folder holds: a range of its worker's entries, sorted. Filled by the worker that reads the folder. */
	struct FFolder
	{
		const FWorker* Reader = nullptr; // null when it could not be read
		std::size_t FirstEntry = 0;
		std::size_t NumEntries = 0;
	};

	/** A file, or a folder whose name ends with a slash here: then byte order of names is the byte order of whole paths. */
	struct FEntry
	{
		uint64 SortKey = 0; // the first eight bytes, so that sorting rarely looks at the name
		uint64 NameStart = 0;
		uint32 NameLength = 0;
		uint32 Stamp = 0;
		const FFolder* Folder = nullptr; // null for a file
	};

	/** Storage that one thread fills. */
	struct FWorker
	{
		std::string Names;
		std::vector<FEntry> Entries;
		std::vector<FFileStamp> Stamps;
		std::deque<FFolder> Folders; // keeps its elements in place
		std::vector<std::string> Unreadable;
		std::size_t NumFiles = 0;
		std::size_t NumPathBytes = 0;
		std::unique_ptr<char[]> ReadBuffer;
		std::string Path;

		std::string_view GetName(const FEntry& Entry) const
		{
			return std::string_view(Names).substr(Entry.NameStart, Entry.NameLength);
		}
	};

	/** An open folder relative to which folders below it are opened. */
	struct FAnchor
	{
		FAnchor(FFileHandle InHandle, std::size_t InPathLength, std::atomic<int32>& InNumOpen);
		~FAnchor();
		FAnchor(const FAnchor&) = delete;
		FAnchor& operator=(const FAnchor&) = delete;

		FFileHandle Handle;
		std::size_t PathLength; // of the path that leads here, with its slash
		std::atomic<int32>& NumOpen;
	};

	struct FPendingFolder
	{
		FFolder* Folder = nullptr;
		std::string Path;					   // relative to the root, without a trailing slash; "" is the root
		std::shared_ptr<const FAnchor> Anchor; // null: the root itself
	};

	std::optional<FPendingFolder> TakePending();
	/** Lives as long as a taken folder is being read. */
	class FFinishPending
	{
	public:
		explicit FFinishPending(FFolderWalk& InWalk) : Walk(InWalk) {}
		~FFinishPending();

	private:
		FFolderWalk& Walk;
	};
	void AddPending(std::vector<FPendingFolder>& Found);
	bool IsStopped() const { return Options.Stop.stop_requested(); }

	void RunWorker(FWorker& Worker);
	void ReadFolder(const FPendingFolder& Pending, FWorker& Worker);
	FFileHandle OpenFolder(const FPendingFolder& Pending) const;
	bool ReadEntries(
		const FFileHandle& Handle, std::size_t PrefixLength, FWorker& Worker, std::vector<FPendingFolder>& Found) const;
	void AddEntry(const FFileHandle& Handle, std::string_view Name, unsigned char Type, std::size_t PrefixLength, FWorker& Worker,
		std::vector<FPendingFolder>& Found) const;
	void AddFile(std::string_view Name, const FFileStamp& Stamp, FWorker& Worker) const;
	void AddFolder(std::string_view Name, FWorker& Worker, std::vector<FPendingFolder>& Found) const;
	static void SortEntries(FFolder& Folder, FWorker& Worker);

	const FFileHandle& Root;
	const FFileTreeOptions& Options;
	const int32 MaxAnchors;
	FFolder RootFolder;
	std::deque<FWorker> Workers;
	std::atomic<int32> NumOpenAnchors = 0;

	std::mutex Lock; // guards what follows
	std::condition_variable Changed;
	std::vector<FPendingFolder> Pending; // last in, first out: deep before wide keeps it short
	int32 NumActive = 0;
};

template <class TOnFile>
void FFolderWalk::Visit(TOnFile&& OnFile) const
{
	struct FLevel
	{
		const FFolder* Folder;
		std::size_t NextEntry;
		std::size_t PathLength;
	};
	std::string Path; // of the folder on top of Levels, with a trailing slash; "" for the root
	std::vector<FLevel> Levels = {{&RootFolder, 0, 0}};
	while (!Levels.empty())
	{
		FLevel& Level = Levels.back();
		Path.resize(Level.PathLength);
		if (!Level.Folder->Reader || Level.NextEntry == Level.Folder->NumEntries)
		{
			Levels.pop_back();
			continue;
		}
		const FWorker& Reader = *Level.Folder->Reader;
		const FEntry& Entry = Reader.Entries[Level.Folder->FirstEntry + Level.NextEntry++];
		if (Entry.Folder)
		{
			Path += Reader.GetName(Entry);
			Levels.push_back({Entry.Folder, 0, Path.size()});
		}
		else
			OnFile(std::string_view(Path), Reader.GetName(Entry), Options.bWithStamps ? &Reader.Stamps[Entry.Stamp] : nullptr);
	}
}
