#include "Files/FolderWalk.h"

#include "Core/Threads/Tasks.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <sys/resource.h>

namespace
{
constexpr std::size_t ReadBufferBytes = 64 * 1024;
constexpr int32 MaxOpenAnchors = 128;
constexpr int32 AnchorShare = 8; // of the descriptors that the process may have for everything it does

int32 GetMaxOpenAnchors()
{
	rlimit Limit = {};
	if (getrlimit(RLIMIT_NOFILE, &Limit) != 0)
		return 0;
	return static_cast<int32>(std::min<rlim_t>(Limit.rlim_cur / AnchorShare, MaxOpenAnchors));
}

uint64 MakeSortKey(std::string_view Name)
{
	uint64 Key = 0;
	for (std::size_t At = 0; At < sizeof(Key); ++At)
		Key = Key << 8 | (At < Name.size() ? static_cast<uint8>(Name[At]) : 0u);
	return Key;
}

/** A folder that vanished or became something else since its parent was read is not a fault. */
bool IsUnreadable(int ErrorNumber)
{
	return SecureOpen::ToFileRead(ErrorNumber) == EFileRead::Unreadable;
}
}

FFolderWalk::FAnchor::FAnchor(FFileHandle InHandle, std::size_t InPathLength, std::atomic<int32>& InNumOpen)
	: Handle(std::move(InHandle))
	, PathLength(InPathLength)
	, NumOpen(InNumOpen)
{
	++NumOpen;
}

FFolderWalk::FAnchor::~FAnchor()
{
	--NumOpen;
}

FFolderWalk::FFolderWalk(const FFileHandle& InRoot, const FFileTreeOptions& InOptions)
	: Root(InRoot)
	, Options(InOptions)
	, MaxAnchors(GetMaxOpenAnchors())
{
}

bool FFolderWalk::Run()
{
	const int32 NumThreads = Options.NumThreads > 0 ? Options.NumThreads : GetNumWorkers();
	Workers.resize(static_cast<std::size_t>(NumThreads));
	ReadFolder({.Folder = &RootFolder, .Path = {}, .Anchor = nullptr}, Workers.front());
	if (!Pending.empty()) // a flat folder needs no further threads
		ParallelFor(
			NumThreads, 1, [this](int32 Begin, int32, int32) { RunWorker(Workers[static_cast<std::size_t>(Begin)]); },
			NumThreads);
	return !IsStopped();
}

std::size_t FFolderWalk::CountFiles() const
{
	std::size_t Count = 0;
	for (const FWorker& Worker : Workers)
		Count += Worker.NumFiles;
	return Count;
}

std::size_t FFolderWalk::CountPathBytes() const
{
	std::size_t Count = 0;
	for (const FWorker& Worker : Workers)
		Count += Worker.NumPathBytes;
	return Count;
}

std::vector<std::string> FFolderWalk::GetUnreadableFolders() const
{
	std::vector<std::string> Folders;
	for (const FWorker& Worker : Workers)
		Folders.insert(Folders.end(), Worker.Unreadable.begin(), Worker.Unreadable.end());
	std::sort(Folders.begin(), Folders.end());
	return Folders;
}

/** Waits while others may still find folders. */
std::optional<FFolderWalk::FPendingFolder> FFolderWalk::TakePending()
{
	std::unique_lock Guard(Lock);
	Changed.wait(Guard, [this] { return !Pending.empty() || NumActive == 0; });
	if (Pending.empty() || IsStopped())
		return std::nullopt;
	++NumActive;
	FPendingFolder Taken = std::move(Pending.back());
	Pending.pop_back();
	return Taken;
}

FFolderWalk::FFinishPending::~FFinishPending()
{
	const std::lock_guard Guard(Walk.Lock);
	if (--Walk.NumActive == 0)
		Walk.Changed.notify_all();
}

void FFolderWalk::AddPending(std::vector<FPendingFolder>& Found)
{
	if (Found.empty())
		return;
	{
		const std::lock_guard Guard(Lock);
		std::move(Found.begin(), Found.end(), std::back_inserter(Pending));
	}
	Found.clear();
	Changed.notify_all();
}

void FFolderWalk::RunWorker(FWorker& Worker)
{
	while (const std::optional<FPendingFolder> Taken = TakePending())
	{
		const FFinishPending Finish(*this); // also when reading throws: the others wait for it
		ReadFolder(*Taken, Worker);
	}
}

void FFolderWalk::ReadFolder(const FPendingFolder& Task, FWorker& Worker)
{
	FFileHandle Handle = OpenFolder(Task);
	if (!Handle.IsOpen())
	{
		if (IsUnreadable(errno))
			Worker.Unreadable.push_back(Task.Path);
		return;
	}
	Worker.Path = Task.Path.empty() ? "" : Task.Path + "/";
	const std::size_t PrefixLength = Worker.Path.size();
	FFolder& Folder = *Task.Folder;
	Folder.Reader = &Worker;
	Folder.FirstEntry = Worker.Entries.size();
	std::vector<FPendingFolder> Found;
	if (!ReadEntries(Handle, PrefixLength, Worker, Found))
		Worker.Unreadable.push_back(Task.Path);
	SortEntries(Folder, Worker);
	std::shared_ptr<const FAnchor> Anchor = Task.Anchor;
	if (!Found.empty() && NumOpenAnchors < MaxAnchors)
		Anchor = std::make_shared<const FAnchor>(std::move(Handle), PrefixLength, NumOpenAnchors);
	for (FPendingFolder& Child : Found)
		Child.Anchor = Anchor;
	AddPending(Found);
}

FFileHandle FFolderWalk::OpenFolder(const FPendingFolder& Task) const
{
	if (Task.Path.empty())
		return SecureOpen::MakeHandle(openat(Root.Get(), ".", SecureOpen::ToReadFolder | O_CLOEXEC)); // an own reading position
	const std::size_t From = Task.Anchor ? Task.Anchor->PathLength : 0;
	const FFileHandle& Start = Task.Anchor ? Task.Anchor->Handle : Root;
	return SecureOpen::OpenBeneath(Start.Get(), std::string_view(Task.Path).substr(From), SecureOpen::ToReadFolder);
}

/** False when reading failed on the way; what came before is kept. */
bool FFolderWalk::ReadEntries(
	const FFileHandle& Handle, std::size_t PrefixLength, FWorker& Worker, std::vector<FPendingFolder>& Found) const
{
	if (!Worker.ReadBuffer)
		Worker.ReadBuffer = std::make_unique<char[]>(ReadBufferBytes);
	while (!IsStopped())
	{
		const ssize_t NumRead = getdents64(Handle.Get(), Worker.ReadBuffer.get(), ReadBufferBytes);
		if (NumRead <= 0)
			return NumRead == 0 || !IsUnreadable(errno);
		for (ssize_t At = 0; At < NumRead;)
		{
			const dirent64* Raw = reinterpret_cast<const dirent64*>(Worker.ReadBuffer.get() + At);
			AddEntry(Handle, Raw->d_name, Raw->d_type, PrefixLength, Worker, Found);
			At += Raw->d_reclen;
		}
	}
	return true;
}

void FFolderWalk::AddEntry(const FFileHandle& Handle, std::string_view Name, unsigned char Type, std::size_t PrefixLength,
	FWorker& Worker, std::vector<FPendingFolder>& Found) const
{
	if (Name == "." || Name == "..")
		return;
	FFileStamp Stamp;
	const bool bTypeIsUnknown = Type == DT_UNKNOWN; // some file systems do not keep it beside the name
	if (bTypeIsUnknown)
		Type = SecureOpen::LookAt(Handle, Name.data(), Stamp);
	if (Type != DT_REG && Type != DT_DIR)
		return;
	Worker.Path.resize(PrefixLength);
	Worker.Path += Name;
	if (Type == DT_DIR)
	{
		if (!Options.EnterFolder || Options.EnterFolder(Worker.Path))
			AddFolder(Name, Worker, Found);
		return;
	}
	if (Options.KeepFile && !Options.KeepFile(Worker.Path))
		return;
	if (Options.bWithStamps && !bTypeIsUnknown && SecureOpen::LookAt(Handle, Name.data(), Stamp) != DT_REG)
		return;
	AddFile(Name, Stamp, Worker);
}

void FFolderWalk::AddFile(std::string_view Name, const FFileStamp& Stamp, FWorker& Worker) const
{
	FEntry& Entry = Worker.Entries.emplace_back();
	Entry.SortKey = MakeSortKey(Name);
	Entry.NameStart = Worker.Names.size();
	Entry.NameLength = static_cast<uint32>(Name.size());
	Worker.Names += Name;
	if (Options.bWithStamps)
	{
		Entry.Stamp = static_cast<uint32>(Worker.Stamps.size());
		Worker.Stamps.push_back(Stamp);
	}
	++Worker.NumFiles;
	Worker.NumPathBytes += Worker.Path.size();
}

void FFolderWalk::AddFolder(std::string_view Name, FWorker& Worker, std::vector<FPendingFolder>& Found) const
{
	FFolder& Folder = Worker.Folders.emplace_back();
	FEntry& Entry = Worker.Entries.emplace_back();
	Entry.NameStart = Worker.Names.size();
	Entry.NameLength = static_cast<uint32>(Name.size() + 1);
	Worker.Names += Name;
	Worker.Names += '/';
	Entry.SortKey = MakeSortKey(Worker.GetName(Entry));
	Entry.Folder = &Folder;
	Found.push_back({.Folder = &Folder, .Path = Worker.Path, .Anchor = nullptr});
}

void FFolderWalk::SortEntries(FFolder& Folder, FWorker& Worker)
{
	const auto First = Worker.Entries.begin() + static_cast<std::ptrdiff_t>(Folder.FirstEntry);
	std::sort(First, Worker.Entries.end(),
		[&Worker](const FEntry& A, const FEntry& B)
		{ return A.SortKey != B.SortKey ? A.SortKey < B.SortKey : Worker.GetName(A) < Worker.GetName(B); });
	// A folder that changes while it is being read may name an entry twice.
	const auto IsSame = [&Worker](const FEntry& A, const FEntry& B)
	{ return A.SortKey == B.SortKey && Worker.GetName(A) == Worker.GetName(B); };
	Worker.Entries.erase(std::unique(First, Worker.Entries.end(), IsSame), Worker.Entries.end());
	Folder.NumEntries = Worker.Entries.size() - Folder.FirstEntry;
}
