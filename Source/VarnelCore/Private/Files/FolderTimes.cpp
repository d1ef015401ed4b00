#include "Files/FolderTimes.h"

#include <sys/stat.h>

FFolderTimes::FFolderTimes(const std::vector<std::string>& InRoots, const FFolderWatchOptions& InOptions)
	: Roots(InRoots)
	, Options(InOptions)
	, LastLook(std::chrono::steady_clock::now())
{
	for (const std::string& Root : Roots)
		Listings.push_back(List(Root));
}

FFolderChanges FFolderTimes::Take()
{
	const auto Now = std::chrono::steady_clock::now();
	if (Now - LastLook < Options.TimesInterval)
		return {};
	std::vector<FListing> Found;
	for (const std::string& Root : Roots)
		Found.push_back(List(Root));
	if (Options.Stop.stop_requested()) // what is listed is not complete
		return {};
	FFolderChanges Changes;
	for (std::size_t Index = 0; Index < Roots.size(); ++Index)
		Compare(Roots[Index], Listings[Index], Found[Index], Changes);
	Listings = std::move(Found);
	LastLook = Now;
	return Changes.bAll ? FFolderChanges{.bAll = true, .Files = {}, .Folders = {}} : Changes;
}

FFolderTimes::FListing FFolderTimes::List(const std::string& Root) const
{
	FListing Listing;
	struct stat Status;
	if (stat(Root.c_str(), &Status) == 0)
	{
		Listing.Device = Status.st_dev;
		Listing.Inode = Status.st_ino;
	}
	FFileTreeOptions Tree;
	if (Options.EnterFolder)
		Tree.EnterFolder = [&](std::string_view Relative) { return Options.EnterFolder(Root + std::string(Relative)); };
	Tree.bWithStamps = true;
	Tree.Stop = Options.Stop;
	Listing.Files = FFileTree::List(Root, Tree);
	for (int32 Index = 0; Index < Listing.Files.Num(); ++Index)
		Listing.bSettled.push_back(Listing.Files.GetStamp(Index).IsSettled());
	return Listing;
}

void FFolderTimes::Compare(const std::string& Root, const FListing& Before, const FListing& After, FFolderChanges& Out)
{
	if (Before.Device != After.Device || Before.Inode != After.Inode)
		Out.bAll = true;
	int32 Old = 0;
	int32 New = 0;
	while (!Out.bAll && (Old < Before.Files.Num() || New < After.Files.Num()))
	{
		const bool bOldLeft = Old < Before.Files.Num();
		const bool bNewLeft = New < After.Files.Num();
		const std::string_view OldPath = bOldLeft ? Before.Files.GetRelativePath(Old) : std::string_view();
		const std::string_view NewPath = bNewLeft ? After.Files.GetRelativePath(New) : std::string_view();
		const int Order = !bNewLeft ? -1 : !bOldLeft ? 1 : OldPath.compare(NewPath);
		const bool bSame = Order == 0 && Before.bSettled[static_cast<std::size_t>(Old)] &&
			Before.Files.GetStamp(Old) == After.Files.GetStamp(New);
		if (!bSame)
			Out.Files.push_back(Root + std::string(Order <= 0 ? OldPath : NewPath));
		Old += Order <= 0 ? 1 : 0;
		New += Order >= 0 ? 1 : 0;
	}
}
