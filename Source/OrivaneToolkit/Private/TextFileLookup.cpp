#include "TextFileLookup.h"

#include "Core/Base/SeededHash.h"
#include "Core/Files/ProjectFolder.h"
#include "Core/Text/Unicode.h"

#include <atomic>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{
FIsTextFile TextFileRule = nullptr;

/** Game thread. */
struct FLookingOnce
{
	int32 Depth = 0;
	uint64 Moment = 0; // counts what BeginLookingOnce begins

	bool IsSeen(uint64 SeenAt) const { return Depth > 0 && SeenAt == Moment; }
} LookingOnce;

std::string_view CutAtFirstDot(std::string_view Text)
{
	return Text.substr(0, Text.find('.'));
}

/** Names on disk need not be valid UTF-8; they are known by their repaired form. */
std::string FoldName(std::string_view Name)
{
	return Unicode::Fold(Unicode::RepairUtf8(Name));
}

/** Names on disk by a folded form of theirs. */
using FNames = std::unordered_multimap<std::string, std::string, SeededHash::FHashText>;

/** What one folder held when it was listed. */
struct FFolderListing
{
	FNames FilesByStem;			// the stem is the name up to its first dot
	FNames FoldersByName;		//
	FNames DottedFoldersByStem; // a path is cut at its first dot, which may stand in the name of a folder
	FFileStamp Stamp;
	bool bSettled = false; // the stamp was when the folder was listed, so it shows every later change
	uint64 SeenAt = 0;	   // the moment, see FLookingOnce, in which the folder was last looked at
};

/** Folders of the open project, each listed anew when its stamp shows a change. Paths are relative to the project, "" or with a
 * slash at the end, in the spelling of the disk. */
class FFolderListings
{
public:
	explicit FFolderListings(const FString& InProjectDir) : ProjectDir(InProjectDir), Project(InProjectDir) {}

	bool IsOf(const FString& OtherProjectDir) const { return ProjectDir.View() == OtherProjectDir.View() && Project.IsOpen(); }
	/** Null when there is no such folder. Costs one look at the folder while nothing changes; see BeginLookingOnce. */
	const FFolderListing* Find(const std::string& Folder);
	/** The folders whose paths equal the given one without regard to case. */
	std::vector<std::string> FindFolders(std::string_view Path);
	bool HoldsTextFile(const std::string& Folder, const std::string& FoldedStem);

private:
	FFolderListing List(const std::string& Folder, const FFileStamp& Stamp) const;
	bool HoldsTextFileBelow(const std::string& Folder) const;

	const FString ProjectDir;
	const FProjectFolder Project;
	std::unordered_map<std::string, FFolderListing, SeededHash::FHashText> Listings;
};

FFolderListing FFolderListings::List(const std::string& Folder, const FFileStamp& Stamp) const
{
	FFolderListing Listing{.Stamp = Stamp, .bSettled = Stamp.IsSettled()};

	FFileTreeOptions Options;
	Options.NumThreads = 1;
	Options.EnterFolder = [&](std::string_view Name)
	{
		Listing.FoldersByName.emplace(FoldName(Name), Name);
		if (Name.find('.') != std::string_view::npos)
			Listing.DottedFoldersByStem.emplace(FoldName(CutAtFirstDot(Name)), Name);
		return false;
	};
	const FFileTree Files = FFileTree::List(ProjectDir.ToStdString() + Folder, Options);
	for (int32 Index = 0; Index < Files.Num(); ++Index)
	{
		const std::string_view Name = Files.GetRelativePath(Index);
		Listing.FilesByStem.emplace(FoldName(CutAtFirstDot(Name)), Name);
	}
	return Listing;
}

const FFolderListing* FFolderListings::Find(const std::string& Folder)
{
	if (const auto Known = Listings.find(Folder); Known != Listings.end() && LookingOnce.IsSeen(Known->second.SeenAt))
		return &Known->second;
	FFileStamp Stamp;
	if (!Project.GetFolderStamp(std::string_view(Folder).substr(0, Folder.empty() ? 0 : Folder.size() - 1), Stamp))
	{
		Listings.erase(Folder);
		return nullptr;
	}
	FFolderListing& Listing = Listings[Folder];
	if (!Listing.bSettled || Listing.Stamp != Stamp)
		Listing = List(Folder, Stamp);
	Listing.SeenAt = LookingOnce.Moment;
	return &Listing;
}

std::vector<std::string> FFolderListings::FindFolders(std::string_view Path)
{
	std::vector<std::string> Found = {""};
	while (!Path.empty() && !Found.empty())
	{
		const std::string Segment = Unicode::Fold(Path.substr(0, Path.find('/')));
		Path.remove_prefix(Path.find('/') + 1);
		std::vector<std::string> Deeper;
		for (const std::string& Folder : Found)
		{
			const FFolderListing* const Listing = Find(Folder);
			const auto [First, End] = Listing ? Listing->FoldersByName.equal_range(Segment)
											  : std::pair<FNames::const_iterator, FNames::const_iterator>();
			for (auto Name = First; Name != End; ++Name)
				Deeper.push_back(Folder + Name->second + "/");
		}
		Found = std::move(Deeper);
	}
	return Found;
}

bool FFolderListings::HoldsTextFile(const std::string& Folder, const std::string& FoldedStem)
{
	const FFolderListing* const Listing = Find(Folder);
	if (!Listing)
		return false;
	const auto [FirstFile, EndFiles] = Listing->FilesByStem.equal_range(FoldedStem);
	if (std::any_of(FirstFile, EndFiles, [](const auto& File) { return TextFileRule(File.second); }))
		return true;
	const auto [FirstFolder, EndFolders] = Listing->DottedFoldersByStem.equal_range(FoldedStem);
	return std::any_of(FirstFolder, EndFolders, [&](const auto& Dotted) { return HoldsTextFileBelow(Folder + Dotted.second); });
}

bool FFolderListings::HoldsTextFileBelow(const std::string& Folder) const
{
	std::stop_source FoundOne;
	std::atomic<bool> bFound = false;
	FFileTreeOptions Options;
	Options.NumThreads = 1;
	Options.Stop = FoundOne.get_token();
	Options.KeepFile = [&](std::string_view Path)
	{
		if (!TextFileRule(Path))
			return false;
		bFound = true;
		return FoundOne.request_stop();
	};
	FFileTree::List(ProjectDir.ToStdString() + Folder, Options);
	return bFound;
}

TUniquePtr<FFolderListings>& GetKept()
{
	static TUniquePtr<FFolderListings> Kept;
	return Kept;
}

FFolderListings& GetListings(const FString& ProjectDir)
{
	TUniquePtr<FFolderListings>& Listings = GetKept();
	if (!Listings || !Listings->IsOf(ProjectDir))
		Listings = MakeUnique<FFolderListings>(ProjectDir);
	return *Listings;
}
}

void SetTextFileRule(FIsTextFile Rule)
{
	TextFileRule = Rule;
}

void BeginLookingOnce()
{
	if (LookingOnce.Depth++ == 0)
		++LookingOnce.Moment;
}

void EndLookingOnce()
{
	--LookingOnce.Depth;
}

void ForgetTextFileFolders()
{
	GetKept() = nullptr;
}

bool TextFileExists(const FString& Stem)
{
	const FString& ProjectDir = FPaths::ProjectDir();
	const std::string_view Text = Stem.View();
	if (!TextFileRule || ProjectDir.IsEmpty() || Text.find('.') != std::string_view::npos)
		return false;
	const std::string_view FolderPath = Text.substr(0, Text.rfind('/') + 1); // npos + 1: no folder
	const std::string FoldedStem = Unicode::Fold(Text.substr(FolderPath.size()));
	FFolderListings& Listings = GetListings(ProjectDir);
	const std::string AsSpelled(FolderPath);
	if (Listings.HoldsTextFile(AsSpelled, FoldedStem)) // as results of a search are, at the cost of one look
		return true;
	for (const std::string& Folder : Listings.FindFolders(FolderPath))
	{
		if (Folder != AsSpelled && Listings.HoldsTextFile(Folder, FoldedStem))
			return true;
	}
	return false;
}
