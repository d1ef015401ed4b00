#include "Families/TextStore.h"

#include "Core/Files/File.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Assets/QuellarSettings.h"
#include "Quellar/Families/TextSearch.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{
const TArray<FString>& GetExtensions()
{
	return UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>()->TextSearchExtensions;
}

/** Both ascending. */
std::vector<std::string> Unite(const std::vector<std::string>& A, const std::vector<std::string>& B)
{
	std::vector<std::string> Both;
	std::set_union(A.begin(), A.end(), B.begin(), B.end(), std::back_inserter(Both));
	return Both;
}
}

FTextStore& FTextStore::Get()
{
	static FTextStore Store;
	return Store;
}

void FTextStore::Start(const TArray<FString>& UntoldFolders)
{
	Stop();
	Untold = UntoldFolders;
	bOn = true;
}

void FTextStore::Stop()
{
	bOn = false;
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

bool FTextStore::IsUntold(std::string_view Path) const
{
	const std::string_view Top = Path.substr(0, Path.find('/'));
	return Untold.ContainsByPredicate([Top](const FString& Folder) { return Folder.View() == Top; });
}

void FTextStore::Refresh(const FString& Root)
{
	if (!bListed || Extensions != GetExtensions())
		ListAgain(Root);
}

/** Files that are still there keep their grams: had one changed meanwhile, it would have been told. */
void FTextStore::ListAgain(const FString& Root)
{
	bListed = false;
	FFileTreeOptions Options;
	Options.KeepFile = [](std::string_view Path) { return IsSearchableTextFile(Path); };
	Options.EnterFolder = [this](std::string_view Path) { return !IsUntold(Path); };
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

FFileTree FTextStore::ListUntold(const FString& Root) const
{
	FFileTreeOptions Options;
	Options.KeepFile = [](std::string_view Path)
	{ return Path.find('/') != std::string_view::npos && IsSearchableTextFile(Path); };
	Options.EnterFolder = [this](std::string_view Path) { return IsUntold(Path); };
	Options.Stop = GetStopToken();
	return FFileTree::List(Root, Options);
}

FTextFiles FTextStore::Find(const FString& Root, const FTermGrams& Term, const std::function<bool(std::string_view Path)>& Filter)
{
	Refresh(Root);
	const FFileTree Others = ListUntold(Root);
	FTextFiles Found;
	Found.UnreadableFolders = Unite(UnreadableFolders, Others.GetUnreadableFolders());
	std::vector<std::string_view> Paths;
	const auto Add = [&](std::string_view Path, int32 Place)
	{
		if (!Filter(Path))
			return;
		Paths.push_back(Path);
		Found.Places.push_back(Place);
	};
	int32 Other = 0;
	for (std::size_t Place = 0; Place < Files.size(); ++Place)
	{
		const auto& [Path, Grams] = Files[Place];
		for (; Other < Others.Num() && Others.GetRelativePath(Other) < Path; ++Other)
			Add(Others.GetRelativePath(Other), FTextFiles::NoPlace);
		if (!Grams.IsKnown() || Grams.MayMatch(Term))
			Add(Path, Grams.IsKnown() ? FTextFiles::NoPlace : static_cast<int32>(Place));
	}
	for (; Other < Others.Num(); ++Other)
		Add(Others.GetRelativePath(Other), FTextFiles::NoPlace);
	Found.Tree = FFileTree::FromPaths(Root, Paths);
	return Found;
}

void FTextStore::Keep(int32 Place, FTextGrams Grams)
{
	FFile& File = Files[static_cast<std::size_t>(Place)];
	File.Grams = std::move(Grams);
	NumBytes += File.Grams.GetBytes();
}
