#include "Families/TextStore.h"

#include "Core/Files/File.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Assets/QuellarSettings.h"
#include "Quellar/Families/TextSearch.h"

#include <algorithm>
#include <utility>

namespace
{
const TArray<FString>& GetExtensions()
{
	return UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>()->TextSearchExtensions;
}

/** Of text files below some folders that lie directly in Root. */
FFolderWatchOptions MakeWatchOptions(const FString& Root, const TArray<FString>& Folders, EFolderWatchMode Mode)
{
	const auto IsBelow = [Root, Folders](std::string_view Path)
	{
		const std::string_view Relative = Path.substr(std::min(Root.View().size(), Path.size()));
		const std::string_view Top = Relative.substr(0, Relative.find('/'));
		return Folders.ContainsByPredicate([Top](const FString& Folder) { return Folder.View() == Top; });
	};
	return {.EnterFolder = IsBelow,
		.KeepFile = [IsBelow](std::string_view Path) { return IsBelow(Path) && IsSearchableTextFile(Path); },
		.IsBulk = nullptr,
		.bTimesOnly = Mode == EFolderWatchMode::Times,
		.TimesInterval = {},
		.Stop = {}};
}
}

FTextStore& FTextStore::Get()
{
	static FTextStore Store;
	return Store;
}

FTextStore::FUntoldFiles::FUntoldFiles(const FString& Root, const TArray<FString>& Folders, EFolderWatchMode Mode)
{
	const std::stop_callback Forward(GetStopToken(), [this] { Stop.request_stop(); });
	FFolderWatchOptions Options = MakeWatchOptions(Root, Folders, Mode);
	Options.Stop = Stop.get_token();
	Watch = MakeUnique<FFolderWatch>(TArray<FString>{Root}, std::move(Options));
}

FFolderChanges FTextStore::FUntoldFiles::Take()
{
	const std::stop_callback Forward(GetStopToken(), [this] { Stop.request_stop(); });
	return Watch->Take();
}

void FTextStore::Start(const TArray<FString>& InUntoldFolders, EFolderWatchMode Mode)
{
	Stop();
	UntoldFolders = InUntoldFolders;
	UntoldMode = Mode;
	bOn = true;
}

void FTextStore::Stop()
{
	bOn = false;
	Untold = nullptr;
	DropFiles();
}

void FTextStore::DropFiles()
{
	bListed = false;
	Files = {};
	UnreadableFolders = {};
	NumBytes = 0;
}

void FTextStore::Note(const FFolderChanges& Changes)
{
	if (Changes.bAll)
		DropFiles();
	for (const std::string& File : Changes.Files)
		NoteFile(File);
	for (const std::string& Folder : Changes.Folders)
		NoteFolder(Folder);
}

void FTextStore::NoteFile(std::string_view Path)
{
	const FString& Root = FPaths::ProjectDir();
	if (!Path.starts_with(Root.View()))
		return;
	Path.remove_prefix(Root.View().size());
	const auto File = FindFirst(Path);
	const bool bKnown = File != Files.end() && File->Path == Path;
	if (bKnown)
		DropGrams(*File);
	if (Extensions != GetExtensions()) // the settings may change back before the next search
		bListed = false;
	if (!IsSearchableTextFile(Path))
		return;
	bListed = bListed && bKnown && IFileManager::Get().FileExists(Root + FString::FromExternal(Path));
}

void FTextStore::NoteFolder(std::string_view Path)
{
	const FString& Root = FPaths::ProjectDir();
	if (Root.View().starts_with(Path))
		return DropFiles();
	if (!Path.starts_with(Root.View()))
		return;
	Path.remove_prefix(Root.View().size());
	bListed = false;
	for (auto File = FindFirst(Path); File != Files.end() && File->Path.starts_with(Path); ++File)
		DropGrams(*File);
}

std::vector<FTextStore::FFile>::iterator FTextStore::FindFirst(std::string_view Path)
{
	return std::lower_bound(
		Files.begin(), Files.end(), Path, [](const FFile& File, std::string_view Given) { return File.Path < Given; });
}

void FTextStore::DropGrams(FFile& File)
{
	NumBytes -= File.Grams.GetBytes();
	File.Grams = {};
}

void FTextStore::Refresh(const FString& Root)
{
	if (Extensions != GetExtensions())
	{
		Untold = nullptr; // it knows of files with the old ones
		bListed = false;
	}
	NoteUntold(Root);
	if (!bListed)
		ListAgain(Root);
}

void FTextStore::NoteUntold(const FString& Root)
{
	FFolderChanges Changes{.bAll = !Untold, .Files = {}, .Folders = {}};
	if (Untold)
		Changes = Untold->Take();
	else
		Untold = MakeUnique<FUntoldFiles>(Root, UntoldFolders, UntoldMode);
	if (Changes.bAll)
	{
		for (const FString& Folder : UntoldFolders)
			Changes.Folders.push_back((Root + Folder + "/").ToStdString());
	}
	if (IsStopRequested())
		Untold = nullptr;
	Changes.bAll = false; // of the untold folders alone
	Note(Changes);
}

/** Files that are still there keep their grams: had one changed meanwhile, it would have been told. */
void FTextStore::ListAgain(const FString& Root)
{
	bListed = false;
	FFileTreeOptions Options;
	Options.KeepFile = [](std::string_view Path) { return IsSearchableTextFile(Path); };
	Options.Stop = GetStopToken();
	const FFileTree Tree = FFileTree::List(Root, Options);
	std::vector<FFile> Old = std::exchange(Files, {});
	NumBytes = 0;
	auto Known = Old.begin();
	for (int32 Index = 0; Index < Tree.Num(); ++Index)
	{
		FFile File{.Path = std::string(Tree.GetRelativePath(Index)), .Grams = {}};
		while (Known != Old.end() && Known->Path < File.Path)
			++Known;
		if (Known != Old.end() && Known->Path == File.Path)
			File.Grams = std::move(Known->Grams);
		NumBytes += File.Grams.GetBytes();
		Files.push_back(std::move(File));
	}
	UnreadableFolders = Tree.GetUnreadableFolders();
	Extensions = GetExtensions();
	bListed = !Options.Stop.stop_requested(); // what a stop has cut short is not the list
}

FTextFiles FTextStore::Find(const FString& Root, const FTermGrams& Term, const std::function<bool(std::string_view Path)>& Filter)
{
	Refresh(Root);
	FTextFiles Found;
	Found.UnreadableFolders = UnreadableFolders;
	std::vector<std::string_view> Paths;
	for (std::size_t Place = 0; Place < Files.size(); ++Place)
	{
		const auto& [Path, Grams] = Files[Place];
		if ((Grams.IsKnown() && !Grams.MayMatch(Term)) || !Filter(Path))
			continue;
		Paths.push_back(Path);
		Found.Places.push_back(Grams.IsKnown() ? FTextFiles::NoPlace : static_cast<int32>(Place));
	}
	Found.Tree = FFileTree::FromPaths(Root, Paths);
	return Found;
}

void FTextStore::Keep(int32 Place, FTextGrams Grams)
{
	FFile& File = Files[static_cast<std::size_t>(Place)];
	File.Grams = std::move(Grams);
	NumBytes += File.Grams.GetBytes();
}
