#include "TextFileLookup.h"

#include "Core/File.h"
#include "Core/FileTree.h"
#include "Core/Unicode.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace
{
namespace fs = std::filesystem;

std::string_view CutAtFirstDot(std::string_view Text)
{
	return Text.substr(0, Text.find('.'));
}

/** What one folder held when it was listed. */
struct FFolderListing
{
	struct FDottedFolder
	{
		std::string FoldedStem;
		std::string Name;
	};
	std::unordered_set<std::string> FoldedFileStems;
	std::vector<FDottedFolder> DottedFolders; // a path is cut at its first dot, which may stand in the name of a folder
	fs::file_time_type FolderTime;
	bool bSettled = false; // the folder had been quiet for a while, so its time tells of every later change
};

/** A folder's time has the kernel's tick as its grain: a change within the same tick as the listing would go unnoticed. */
constexpr auto SettleTime = std::chrono::seconds(1);

FFolderListing ListFolder(const FString& ProjectDir, const std::string& Folder, fs::file_time_type FolderTime)
{
	FFolderListing Listing;
	Listing.FolderTime = FolderTime;
	Listing.bSettled = fs::file_time_type::clock::now() - FolderTime > SettleTime;

	FFileTreeOptions Options;
	Options.NumThreads = 1;
	Options.EnterFolder = [&](std::string_view Name)
	{
		if (Name.find('.') != std::string_view::npos)
			Listing.DottedFolders.push_back({Unicode::Fold(CutAtFirstDot(Name)), std::string(Name)});
		return false;
	};
	const FFileTree Files = FFileTree::List(ProjectDir.ToStdString() + Folder, Options); // follows no link below the project
	for (int32 Index = 0; Index < Files.Num(); ++Index)
		Listing.FoldedFileStems.insert(Unicode::Fold(CutAtFirstDot(Files.GetRelativePath(Index))));
	return Listing;
}

bool HoldsAnyFile(const FString& ProjectDir, const std::string& Folder)
{
	std::stop_source FoundOne;
	std::atomic<bool> bFound = false;
	FFileTreeOptions Options;
	Options.NumThreads = 1;
	Options.Stop = FoundOne.get_token();
	Options.KeepFile = [&](std::string_view)
	{
		bFound = true;
		FoundOne.request_stop();
		return true;
	};
	FFileTree::List(ProjectDir.ToStdString() + Folder, Options);
	return bFound;
}

/** The spelling on disk of one folder name below Parent; "" when there is none. */
std::string FindFolderName(const std::string& Parent, std::string_view Name)
{
	std::error_code Error;
	if (fs::is_directory(Parent + std::string(Name), Error))
		return std::string(Name);
	for (const fs::directory_entry& Entry : fs::directory_iterator(Parent, Error))
	{
		const std::string Candidate = Entry.path().filename().string();
		if (Entry.is_directory(Error) && Unicode::EqualsFolded(Candidate, Name))
			return Candidate;
	}
	return {};
}

/** The spelling on disk of a folder path below the project, both with a trailing slash; false when there is none. */
bool ResolveFolder(const FString& ProjectDir, std::string_view Folder, std::string& Out)
{
	while (!Folder.empty())
	{
		const std::size_t Slash = Folder.find('/');
		const std::string Name = FindFolderName(ProjectDir.ToStdString() + Out, Folder.substr(0, Slash));
		if (Name.empty())
			return false;
		Out += Name + "/";
		Folder.remove_prefix(Slash + 1);
	}
	return true;
}

/** Null when there is no such folder. Costs one look at the folder's time while nothing changes. */
const FFolderListing* FindListing(const FString& ProjectDir, const std::string& Folder)
{
	static std::unordered_map<std::string, FFolderListing> Listings;
	std::string Key = ProjectDir.ToStdString() + Folder;
	std::error_code Error;
	const fs::file_time_type FolderTime = fs::last_write_time(Key, Error);
	if (Error)
	{
		Listings.erase(Key);
		return nullptr;
	}
	FFolderListing& Listing = Listings[std::move(Key)];
	if (!Listing.bSettled || Listing.FolderTime != FolderTime)
		Listing = ListFolder(ProjectDir, Folder, FolderTime);
	return &Listing;
}
}

bool TextFileExists(const FString& Stem)
{
	const FString& ProjectDir = FPaths::ProjectDir();
	const std::string_view Text = Stem.View();
	const std::size_t Slash = Text.rfind('/');
	const std::string_view FolderPart = Slash == std::string_view::npos ? std::string_view() : Text.substr(0, Slash + 1);
	const bool bSafe = FolderPart.empty() || FPaths::IsSafeRelativePath(FolderPart.substr(0, Slash));
	if (ProjectDir.IsEmpty() || !bSafe || Text.find('.') != std::string_view::npos || Text.find('\0') != std::string_view::npos)
		return false;

	std::string Folder(FolderPart);
	const FFolderListing* Listing = FindListing(ProjectDir, Folder);
	if (!Listing && (Folder.clear(), ResolveFolder(ProjectDir, FolderPart, Folder)))
		Listing = FindListing(ProjectDir, Folder);
	if (!Listing)
		return false;
	const std::string FoldedStem = Unicode::Fold(Text.substr(FolderPart.size()));
	if (Listing->FoldedFileStems.contains(FoldedStem))
		return true;
	for (const FFolderListing::FDottedFolder& Dotted : Listing->DottedFolders)
	{
		if (Dotted.FoldedStem == FoldedStem && HoldsAnyFile(ProjectDir, Folder + Dotted.Name))
			return true;
	}
	return false;
}
