#include "Files/FolderEvents.h"

#include "Files/FolderWalk.h"
#include "Files/SecureOpen.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace
{
constexpr uint32 ContentMask = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE |
	IN_DELETE_SELF | IN_MOVE_SELF | IN_EXCL_UNLINK | IN_ONLYDIR;
constexpr uint32 AncestorMask = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::size_t ReadBytes = 64 * 1024;
// More than what the system queues, so that everything is read that was there at the beginning, and yet an end for files that are
// written all the time.
constexpr int32 MaxReads = 256;

/** File systems that others change without this system's knowledge. */
constexpr struct
{
	uint32 Magic;
	const char* Where;
} SilentFileSystems[] = {
	{NFS_SUPER_MAGIC, "on a network (NFS)"},
	{SMB_SUPER_MAGIC, "on a network (SMB)"},
	{0xFF534D42, "on a network (CIFS)"},
	{0xFE534D42, "on a network (SMB2)"},
	{CEPH_SUPER_MAGIC, "on a network (Ceph)"},
	{AFS_SUPER_MAGIC, "on a network (AFS)"},
	{CODA_SUPER_MAGIC, "on a network (Coda)"},
	{V9FS_MAGIC, "in a folder shared with another system (9p)"},
	{0x786F4256, "in a folder shared with another system (vboxsf)"},
	{FUSE_SUPER_MAGIC, "on a file system that a program provides (FUSE)"},
};

const char* FindSilentFileSystem(const FFileHandle& Folder)
{
	struct statfs Status;
	if (fstatfs(Folder.Get(), &Status) != 0)
		return nullptr;
	for (const auto& [Magic, Where] : SilentFileSystems)
	{
		if (static_cast<uint32>(Status.f_type) == Magic)
			return Where;
	}
	return nullptr;
}

bool IsSameFolder(const FFileHandle& A, const FFileHandle& B)
{
	struct stat First;
	struct stat Second;
	return A.IsOpen() && B.IsOpen() && fstat(A.Get(), &First) == 0 && fstat(B.Get(), &Second) == 0 &&
		First.st_dev == Second.st_dev && First.st_ino == Second.st_ino;
}
}

FFolderEvents::FFolderEvents(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions) : Options(InOptions)
{
	for (const std::string& Path : InRoots)
		Roots.push_back({Path, false});
	Start();
}

void FFolderEvents::Start()
{
	bLost = true; // should memory run out on the way
	Folders.clear();
	Watches.clear();
	Ancestors.clear();
	Queue = FFileHandle(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)); // with the old one its watches go
	if (!Queue.IsOpen())
		return Fail("the system gives no events (" + FString::FromExternal(std::strerror(errno)) + ")");
	for (FRoot& Root : Roots)
		StartRoot(Root);
	bLost = Options.Stop.stop_requested();
}

void FFolderEvents::StartRoot(FRoot& Root)
{
	WatchAncestors(Root.Path);
	WatchTree(Root.Path);
	Root.bThere = Folders.contains(Root.Path);
	if (!Root.bThere && OpenRoot(Root.Path).IsOpen())
		Fail(FString::FromExternal(Root.Path) + " cannot be read");
}

/** A root moves with any folder above it, which alone is told so. Those that cannot be read cannot be watched. */
void FFolderEvents::WatchAncestors(const std::string& Path)
{
	for (std::size_t End = Path.size() - 1; End > 0;)
	{
		End = Path.rfind('/', End - 1);
		const int Watch = inotify_add_watch(Queue.Get(), Path.substr(0, std::max<std::size_t>(End, 1)).c_str(), AncestorMask);
		if (Watch >= 0)
			Ancestors.insert(Watch);
	}
}

bool FFolderEvents::IsAnyRootBack() const
{
	return std::any_of(
		Roots.begin(), Roots.end(), [](const FRoot& Root) { return !Root.bThere && OpenRoot(Root.Path).IsOpen(); });
}

/** The path to a root is the user's own: links on it are followed. Nothing keeps the handle, or the system would not tell of the
 * folder's removal. */
FFileHandle FFolderEvents::OpenRoot(const std::string& Path)
{
	return FFileHandle(open(Path.c_str(), SecureOpen::ToPassFolder | O_CLOEXEC));
}

const FFolderEvents::FRoot* FFolderEvents::FindRoot(std::string_view Path) const
{
	const auto Found =
		std::find_if(Roots.begin(), Roots.end(), [Path](const FRoot& Root) { return Path.starts_with(Root.Path); });
	return Found == Roots.end() ? nullptr : &*Found;
}

FFileHandle FFolderEvents::OpenFolder(std::string_view Path) const
{
	const std::string& RootPath = FindRoot(Path)->Path;
	FFileHandle Root = OpenRoot(RootPath);
	if (!Root.IsOpen() || Path.size() == RootPath.size())
		return Root;
	Path.remove_prefix(RootPath.size());
	Path.remove_suffix(1);
	return SecureOpen::OpenBeneath(Root.Get(), Path, SecureOpen::ToPassFolder);
}

bool FFolderEvents::IsWatched(std::string_view Path) const
{
	Path.remove_suffix(1);
	return !Options.EnterFolder || Options.EnterFolder(Path);
}

/** The folder and all below it, each watched before it is listed. Nothing where there is no folder. */
void FFolderEvents::WatchTree(const std::string& Path)
{
	const FFileHandle Top = OpenFolder(Path);
	if (!Top.IsOpen() || !WatchFolder(Top, Path))
		return;
	FFileTreeOptions Listing;
	Listing.Stop = Options.Stop;
	Listing.KeepFile = [](std::string_view) { return false; };
	Listing.EnterFolder = [&](std::string_view Relative)
	{
		const std::string Child = Path + std::string(Relative) + "/";
		if (!IsWatched(Child))
			return false;
		const FFileHandle Folder = SecureOpen::OpenBeneath(Top.Get(), Relative, SecureOpen::ToPassFolder);
		return Folder.IsOpen() && WatchFolder(Folder, Child);
	};
	if (!FFolderWalk(Top, Listing).Run())
		bLost = true; // stopped: folders are missing
}

/** False where it cannot be watched: it has gone, or may not be listed, or events cannot be had at all. */
bool FFolderEvents::WatchFolder(const FFileHandle& Folder, const std::string& Path)
{
	const char* const Where = FindSilentFileSystem(Folder);
	// By its handle: no link is followed on the way, and no path is too long.
	const std::string Handle = "/proc/self/fd/" + std::to_string(Folder.Get());
	const std::lock_guard Guard(Lock);
	if (!Failure.IsEmpty())
		return false;
	if (Where)
		Fail(FString::FromExternal(Path) + " lies " + Where);
	else if (Options.MaxWatches > 0 && Folders.size() >= static_cast<std::size_t>(Options.MaxWatches))
		Fail(FString::Printf("there are more than %d folders", Options.MaxWatches));
	else if (const int Watch = inotify_add_watch(Queue.Get(), Handle.c_str(), ContentMask); Watch >= 0)
	{
		Keep(Watch, Folder, Path);
		return true;
	}
	else if (errno == ENOSPC)
		Fail("the system watches as many folders as it may for this user; raise fs.inotify.max_user_watches");
	else if (errno == ENOENT)
		Fail("/proc is not mounted");
	else if (errno != EACCES)
		Fail(FString::FromExternal(Path) + " cannot be watched (" + FString::FromExternal(std::strerror(errno)) + ")");
	return false;
}

/** A folder that was moved keeps its watch, under the path where it was known before the event of the move was read. */
void FFolderEvents::Keep(int Watch, const FFileHandle& Folder, const std::string& Path)
{
	if (const auto Known = Watches.find(Watch); Known != Watches.end())
	{
		const std::string& Before = Known->second->first;
		if (Before == Path)
			return;
		if (IsSameFolder(OpenFolder(Before), Folder))
			return Fail(FString::FromExternal(Before) + " and " + FString::FromExternal(Path) + " are one folder");
		Folders.erase(Known->second);
		Watches.erase(Known);
	}
	if (const auto Known = Folders.find(Path); Known != Folders.end()) // another folder that was there
		Forget(Known);
	Ancestors.erase(Watch);
	Watches.emplace(Watch, Folders.emplace(Path, Watch).first);
}

void FFolderEvents::Forget(FFolders::iterator Folder)
{
	inotify_rm_watch(Queue.Get(), Folder->second); // fails where the folder has gone
	Watches.erase(Folder->second);
	Folders.erase(Folder);
}

void FFolderEvents::ForgetTree(const std::string& Path)
{
	for (auto Folder = Folders.lower_bound(Path); Folder != Folders.end() && Folder->first.starts_with(Path);)
		Forget(Folder++);
}

void FFolderEvents::Fail(const FString& Why)
{
	if (Failure.IsEmpty())
		Failure = Why;
}

FFolderChanges FFolderEvents::Take()
{
	bLost = bLost || IsAnyRootBack();
	ReadEvents();
	if (bLost)
	{
		Start();
		ChangedFiles.clear();
		ChangedFolders.clear();
		return {.bAll = true, .Files = {}, .Folders = {}};
	}
	FFolderChanges Changes;
	Changes.Files.assign(ChangedFiles.begin(), ChangedFiles.end());
	Changes.Folders.assign(ChangedFolders.begin(), ChangedFolders.end());
	ChangedFiles.clear();
	ChangedFolders.clear();
	return Changes;
}

void FFolderEvents::ReadEvents()
{
	alignas(inotify_event) char Buffer[ReadBytes];
	for (int32 Read = 0; Read < MaxReads && !bLost; ++Read)
	{
		const ssize_t NumBytes = read(Queue.Get(), Buffer, sizeof Buffer);
		if (NumBytes <= 0)
			return;
		try
		{
			HandleEvents({Buffer, static_cast<std::size_t>(NumBytes)});
		}
		catch (...) // out of memory: what was read is not told again
		{
			bLost = true;
			throw;
		}
	}
}

void FFolderEvents::HandleEvents(std::string_view Bytes)
{
	while (!Bytes.empty())
	{
		const auto* Raw = reinterpret_cast<const inotify_event*>(Bytes.data());
		HandleEvent({Raw->wd, Raw->mask, Raw->len > 0 ? std::string_view(Raw->name) : std::string_view()});
		Bytes.remove_prefix(sizeof(inotify_event) + Raw->len);
	}
}

void FFolderEvents::HandleEvent(const FEvent& Event)
{
	const auto Known = Watches.find(Event.Watch);
	if ((Event.Mask & IN_Q_OVERFLOW) != 0 || Ancestors.contains(Event.Watch))
		bLost = true;
	else if (Known == Watches.end()) // forgotten since
		return;
	else if (Event.Name.empty())
		HandleOwnEvent(Event, Known->second);
	else if (std::string Path = Known->second->first + std::string(Event.Name); (Event.Mask & IN_ISDIR) != 0)
		HandleFolder(Event.Mask, Path + "/");
	else if (!Options.KeepFile || Options.KeepFile(Path))
		ChangedFiles.insert(std::move(Path));
}

/** What happens to a folder itself is told by the one above it, unless that is not watched. */
void FFolderEvents::HandleOwnEvent(const FEvent& Event, FFolders::iterator Folder)
{
	const bool bIsRoot = FindRoot(Folder->first)->Path == Folder->first;
	if (bIsRoot || (Event.Mask & IN_UNMOUNT) != 0)
		bLost = true;
	else if ((Event.Mask & IN_IGNORED) != 0)
		Forget(Folder);
}

/** A folder that has come, or gone, or that others may list now: its watches are set anew, and files may have been made in it
 * before they were. */
void FFolderEvents::HandleFolder(uint32 Mask, const std::string& Path)
{
	if (!IsWatched(Path))
		return;
	ForgetTree(Path);
	if ((Mask & (IN_DELETE | IN_MOVED_FROM)) == 0)
		WatchTree(Path);
	ChangedFolders.insert(Path);
}
