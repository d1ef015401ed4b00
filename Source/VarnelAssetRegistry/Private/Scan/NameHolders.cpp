#include "Scan/NameHolders.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"

#include <algorithm>
#include <numeric>

namespace
{
/** Numbers of the texts in ascending byte order; equal ones in ascending order of their numbers. */
std::vector<uint32> SortTexts(const std::vector<std::string_view>& Texts)
{
	std::vector<uint32> Order(Texts.size());
	std::iota(Order.begin(), Order.end(), 0u);
	const auto IsBefore = [&Texts](uint32 A, uint32 B)
	{
		const int Compared = Texts[A].compare(Texts[B]);
		return Compared != 0 ? Compared < 0 : A < B;
	};
	std::sort(Order.begin(), Order.end(), IsBefore);
	return Order;
}
}

void FNameHolders::Choose(const std::vector<uint32>& FilesToRead, FCacheComparison& InOutCached)
{
	AddNames(FilesToRead);
	std::string Folded;
	std::vector<std::string_view> FoldedNames;
	FoldNames(Folded, FoldedNames);
	const std::vector<uint32> Order = SortTexts(FoldedNames);
	std::vector<FCandidate> Chosen;
	Chosen.reserve(Order.size());
	for (std::size_t Begin = 0, End = 0; Begin < Order.size(); Begin = End)
	{
		while (End < Order.size() && FoldedNames[Order[Begin]] == FoldedNames[Order[End]])
			++End;
		ChooseOne(std::span(Order).subspan(Begin, End - Begin), InOutCached, Chosen);
	}
	Candidates = std::move(Chosen);
}

void FNameHolders::AddNames(const std::vector<uint32>& FilesToRead)
{
	std::size_t NumBytes = 0;
	for (const uint32 File : FilesToRead)
		NumBytes += Files.GetRoot(File).Name.View().size() + 1 + Files.GetRelativePath(File).size();
	Names.reserve(NumBytes); // the views into it must stay
	Candidates.reserve(FilesToRead.size());
	for (const uint32 File : FilesToRead)
		AddName(File);
}

void FNameHolders::AddName(uint32 File)
{
	const std::string_view Path = Files.GetRelativePath(File);
	const std::size_t Start = Names.size();
	Names.append(Files.GetRoot(File).Name).append("/").append(Path.substr(0, Path.size() - Files.GetExtension(File).size()));
	const std::string_view LongName = std::string_view(Names).substr(Start);
	if (Unicode::IsValidUtf8(LongName) && FPackageName::IsValidLongPackageName(LongName))
		Candidates.push_back({File, LongName});
	else
		Report(File, "bad-package-name",
			"'" + FString::FromExternal(LongName) + "' is not a valid package name; rename the file or its folder");
}

void FNameHolders::FoldNames(std::string& OutFolded, std::vector<std::string_view>& OutNames) const
{
	std::vector<std::size_t> Starts = {0};
	Starts.reserve(Candidates.size() + 1);
	OutFolded.reserve(Names.size());
	for (const FCandidate& Candidate : Candidates)
	{
		Unicode::AppendFolded(OutFolded, Candidate.LongName);
		Starts.push_back(OutFolded.size());
	}
	OutNames.reserve(Candidates.size());
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
		OutNames.push_back(std::string_view(OutFolded).substr(Starts[Index], Starts[Index + 1] - Starts[Index]));
}

/** SameName are indices of candidates whose names are equal without regard to case. */
void FNameHolders::ChooseOne(std::span<const uint32> SameName, FCacheComparison& Cached, std::vector<FCandidate>& Chosen)
{
	const FCandidate& First = Candidates[*std::min_element(SameName.begin(), SameName.end(),
		[this](uint32 A, uint32 B) { return LiesBefore(Candidates[A].File, Candidates[B].File); })];
	const uint32 CachedPackage = Cached.FindCarriedOver(First.LongName);
	uint32 Holder = First.File;
	if (CachedPackage == NoId || LiesBefore(First.File, Cached.FileOfPackage[CachedPackage]))
		Chosen.push_back(First);
	else
		Holder = Cached.FileOfPackage[CachedPackage];
	for (const uint32 Candidate : SameName)
	{
		if (Candidates[Candidate].File != Holder)
			ReportTaken(Candidates[Candidate].File, Holder);
	}
	if (CachedPackage != NoId && Holder == First.File)
	{
		ReportTaken(Cached.FileOfPackage[CachedPackage], Holder);
		Cached.FileOfPackage[CachedPackage] = NoId;
	}
}

bool FNameHolders::LiesBefore(uint32 FileA, uint32 FileB) const
{
	const auto PathOf = [this](uint32 File)
	{ return Files.GetRoot(File).Folder.ToStdString() + std::string(Files.GetRelativePath(File)); };
	return PathOf(FileA) < PathOf(FileB);
}

void FNameHolders::ReportTaken(uint32 File, uint32 Holder)
{
	bContested = true;
	Report(File, "duplicate-package",
		"the package's name belongs to " + Files.GetDisplayName(Holder) +
			" already; two packages must not differ by upper and lower case alone");
}

void FNameHolders::Report(uint32 File, const char* Rule, FString Text) const
{
	if (Diagnostics)
		Diagnostics->Add({.File = Files.GetDisplayName(File), .Text = std::move(Text), .Rule = Rule});
}
