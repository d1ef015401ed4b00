#include "Files/FolderTimes.h"

#include "Core/Threads/Tasks.h"
#include "Files/FolderWalk.h"

#include <algorithm>
#include <dirent.h>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace
{
constexpr int32 FoldersPerChunk = 16;

/** A folder by its path relative to the root, with a slash at the end; "" is the root. */
FFileHandle OpenFolder(const FFileHandle& Root, const std::string& Path)
{
	if (Path.empty())
		return FFileHandle(openat(Root.Get(), ".", SecureOpen::ToPassFolder | O_CLOEXEC));
	return SecureOpen::OpenBeneath(Root.Get(), std::string_view(Path).substr(0, Path.size() - 1), SecureOpen::ToPassFolder);
}
}

FFolderTimes::FFolderTimes(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions) : Options(InOptions)
{
	for (const std::string& Path : InRoots)
		Roots.push_back({.Path = Path, .Folders = {}});
	LastLook = LastFullLook = std::chrono::steady_clock::now();
	LookTime = std::chrono::system_clock::now();
	for (FRoot& Root : Roots)
		LookAtRoot(Root, EFolderLook::All);
	Changes.bAll = IsStopped();
}

FFolderChanges FFolderTimes::Take(EFolderLook Look)
{
	const auto Now = std::chrono::steady_clock::now();
	if (Now - (Look == EFolderLook::All ? LastFullLook : LastLook) < Options.TimesInterval)
		return {};
	LookTime = std::chrono::system_clock::now();
	for (FRoot& Root : Roots)
		LookAtRoot(Root, Look);
	if (IsStopped())
		return {};
	LastLook = Now;
	if (Look == EFolderLook::All)
		LastFullLook = Now;
	FFolderChanges Told = std::exchange(Changes, {});
	if (Told.bAll)
		return {.bAll = true, .Files = {}, .Folders = {}};
	std::sort(Told.Files.begin(), Told.Files.end());
	Told.Files.erase(std::unique(Told.Files.begin(), Told.Files.end()), Told.Files.end());
	return Told;
}

void FFolderTimes::LookAtRoot(FRoot& Root, EFolderLook Look)
{
	const FFileHandle Handle(open(Root.Path.c_str(), SecureOpen::ToPassFolder | O_CLOEXEC));
	struct stat Status = {};
	const bool bThere = Handle.IsOpen() && fstat(Handle.Get(), &Status) == 0;
	if (bThere && Root.Inode == Status.st_ino && Root.Device == Status.st_dev)
		return LookAtFolders(Root, Handle, Look);
	Changes.bAll = Changes.bAll || bThere || Root.Inode != 0;
	Root.Folders.clear();
	Root.Inode = 0;
	if (bThere && ListTree(Root, Handle, ""))
	{
		Root.Device = Status.st_dev;
		Root.Inode = Status.st_ino;
	}
}

void FFolderTimes::LookAtFolders(FRoot& Root, const FFileHandle& Handle, EFolderLook Look)
{
	std::vector<FFolders::iterator> Folders;
	for (auto Folder = Root.Folders.begin(); Folder != Root.Folders.end(); ++Folder)
		Folders.push_back(Folder);
	std::vector<FLook> Looks(Folders.size());
	ParallelFor(static_cast<int32>(Folders.size()), FoldersPerChunk,
		[&](int32 Begin, int32 End, int32)
		{
			for (auto Index = static_cast<std::size_t>(Begin); Index < static_cast<std::size_t>(End) && !IsStopped(); ++Index)
				Looks[Index] = LookAtFolder(Handle, Folders[Index]->first, Folders[Index]->second, Look);
		});
	if (IsStopped())
		return;
	std::vector<std::string> ToList; // when those that have gone are no longer known: others may be in their places
	for (std::size_t Index = 0; Index < Folders.size(); ++Index)
	{
		if (Looks[Index].bListAgain)
			ToList.push_back(Folders[Index]->first);
		TakeOver(Root, Folders[Index], Looks[Index]);
	}
	for (const std::string& Path : ToList)
		ListTree(Root, Handle, Path);
}

FFolderTimes::FLook FFolderTimes::LookAtFolder(
	const FFileHandle& Root, const std::string& Path, const FFolder& Folder, EFolderLook Look) const
{
	FLook Found;
	FFileStamp Stamp;
	const FFileHandle Handle = OpenFolder(Root, Path);
	Found.bGone = !Handle.IsOpen();
	Found.bListAgain =
		!Found.bGone && (!Folder.bSettled || SecureOpen::LookAt(Handle, "", Stamp) != DT_DIR || Stamp != Folder.Stamp);
	if (Found.bGone || Found.bListAgain)
		return Found;
	for (std::size_t Index = 0; Index < Folder.Files.size(); ++Index)
	{
		const FFile& File = Folder.Files[Index];
		if (File.bBulk && Look == EFolderLook::WithoutBulk)
			continue;
		if (SecureOpen::LookAt(Handle, Folder.GetName(File), Stamp) != DT_REG)
			Found.bListAgain = true;
		else if (!File.bSettled || Stamp != File.Stamp)
			Found.Changed.emplace_back(static_cast<uint32>(Index), Stamp);
	}
	return Found;
}

void FFolderTimes::TakeOver(FRoot& Root, FFolders::iterator Folder, const FLook& Look)
{
	const std::string Path = Root.Path + Folder->first;
	for (const auto& [Index, Stamp] : Look.Changed)
	{
		FFile& File = Folder->second.Files[Index];
		Changes.Files.push_back(Path + Folder->second.GetName(File));
		File.Stamp = Stamp;
		File.bSettled = Stamp.IsSettled(LookTime);
	}
	if (!Look.bGone)
		return;
	Compare(Path, Folder->second, {});
	Root.Folders.erase(Folder);
}

bool FFolderTimes::IsWatched(const FRoot& Root, std::string_view Folder) const
{
	return !Options.EnterFolder || Options.EnterFolder(Root.Path + std::string(Folder));
}

/** A folder, and what is new below it; known ones have stamps of their own. Nothing has changed where it was stopped. */
bool FFolderTimes::ListTree(FRoot& Root, const FFileHandle& Handle, const std::string& Path)
{
	const FFileHandle Top = OpenFolder(Handle, Path);
	FFolders Listed;
	if (!Top.IsOpen() || SecureOpen::LookAt(Top, "", Listed[Path].Stamp) != DT_DIR)
		return true; // gone, which the next look tells
	std::mutex Lock;
	FFileTreeOptions Listing;
	Listing.EnterFolder = [&](std::string_view Relative)
	{
		const std::string Below = Path + std::string(Relative);
		FFileStamp Stamp;
		if (Root.Folders.contains(Below + "/") || !IsWatched(Root, Below))
			return false;
		const FFileHandle Folder = SecureOpen::OpenBeneath(Top.Get(), Relative, SecureOpen::ToPassFolder);
		if (!Folder.IsOpen() || SecureOpen::LookAt(Folder, "", Stamp) != DT_DIR)
			return false;
		const std::lock_guard Guard(Lock);
		Listed[Below + "/"].Stamp = Stamp;
		return true;
	};
	if (Options.KeepFile)
		Listing.KeepFile = [&](std::string_view Relative) { return Options.KeepFile(Root.Path + Path + std::string(Relative)); };
	Listing.bWithStamps = true;
	Listing.Stop = Options.Stop;
	FFolderWalk Walk(Top, Listing);
	if (!Walk.Run())
		return false;
	auto Folder = Listed.begin();
	Walk.Visit(
		[&](std::string_view Relative, std::string_view Name, const FFileStamp* Stamp)
		{
			if (std::string_view(Folder->first).substr(Path.size()) != Relative)
				Folder = Listed.find(Path + std::string(Relative));
			AddFile(Folder->second, Root.Path + Folder->first, Name, *Stamp);
		});
	for (auto& [Below, New] : Listed)
	{
		New.bSettled = New.Stamp.IsSettled(LookTime);
		FFolder& Known = Root.Folders[Below];
		Compare(Root.Path + Below, Known, New);
		Known = std::move(New);
	}
	return true;
}

void FFolderTimes::AddFile(FFolder& Folder, const std::string& Path, std::string_view Name, const FFileStamp& Stamp) const
{
	Folder.Files.push_back({.NameStart = static_cast<uint32>(Folder.Names.size()),
		.bSettled = Stamp.IsSettled(LookTime),
		.bBulk = Options.IsBulk && Options.IsBulk(Path + std::string(Name)),
		.Stamp = Stamp});
	Folder.Names.append(Name).push_back('\0');
}

void FFolderTimes::Compare(const std::string& Path, const FFolder& Old, const FFolder& New)
{
	if (Changes.bAll)
		return;
	auto Before = Old.Files.begin();
	auto After = New.Files.begin();
	while (Before != Old.Files.end() || After != New.Files.end())
	{
		const std::string_view OldName = Before != Old.Files.end() ? Old.GetName(*Before) : std::string_view();
		const std::string_view NewName = After != New.Files.end() ? New.GetName(*After) : std::string_view();
		const int Order = NewName.empty() ? -1 : OldName.empty() ? 1 : OldName.compare(NewName);
		if (Order != 0 || !Before->bSettled || Before->Stamp != After->Stamp)
			Changes.Files.push_back(Path + std::string(Order <= 0 ? OldName : NewName));
		Before += Order <= 0 ? 1 : 0;
		After += Order >= 0 ? 1 : 0;
	}
}
