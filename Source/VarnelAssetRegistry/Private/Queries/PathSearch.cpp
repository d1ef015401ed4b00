#include "Queries/PathSearch.h"

#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "Image/TextRun.h"
#include "Image/TrigramIndex.h"

#include <algorithm>

namespace
{
/** Neither package names nor asset names hold these. */
constexpr std::string_view Separators = ".:";

std::string_view FindLongestPiece(std::string_view Text)
{
	std::string_view Longest;
	for (std::size_t Begin = 0; Begin <= Text.size();)
	{
		const std::size_t End = std::min(Text.find_first_of(Separators, Begin), Text.size());
		if (End - Begin > Longest.size())
			Longest = Text.substr(Begin, End - Begin);
		Begin = End + 1;
	}
	return Longest;
}
}

FPathSearch::FPathSearch(
	const FRegistryImage& InImage, const FAssetPathQuery& Query, std::function<void(FRowRange Assets)> InVisit)
	: Image(InImage)
	, Tables(InImage.GetTables())
	, Visit(std::move(InVisit))
	, bFolded(Query.Case == ESearchCase::IgnoreCase)
	, bExact(Query.bExact)
	, Wanted(Fold(Query.Text))
	, Piece(FindLongestPiece(Wanted))
	, bVerify(bExact || Piece.size() < Wanted.size())
	, Finder(Piece, ESearchCase::CaseSensitive)
{
}

std::string FPathSearch::Fold(std::string_view Text) const
{
	return bFolded ? Unicode::Fold(Text) : std::string(Text);
}

void FPathSearch::Run()
{
	if (Wanted.empty() || Wanted.find('\0') != std::string::npos) // a zero byte ends every text
		return;
	if (!Tables.OwnNamedAssets.empty())
		FindNames();
	FindPackages();
	VisitOwnNamed(Image.NumAssets());
}

void FPathSearch::FindNames()
{
	const uint32 NumNames = Tables.NumTexts(EZone::Names);
	const FTextRun Run(Tables, bFolded, EZone::Names, {0, NumNames});
	FoundNames.resize(NumNames);
	uint32 Name = 0;
	for (std::size_t At = 0; NumNames > 0 && (At = Finder.Find(Run.Bytes, At)) != std::string_view::npos;)
	{
		Name = Run.FindText(At, Name);
		FoundNames[Name] = true;
		if (Name + 1 == NumNames)
			return;
		At = Run.GetStart(++Name);
	}
}

void FPathSearch::FindPackages()
{
	uint32 Next = 0;
	for (const FRowRange Packages :
		TrigramIndex::FindRuns(Tables.NameTrigrams, TrigramIndex::GetPackageNames(Tables), Unicode::Fold(Piece)))
		Next = FindPackagesIn({std::max(Next, Packages.Begin), std::max(Next, Packages.End)});
}

uint32 FPathSearch::FindPackagesIn(FRowRange Packages)
{
	if (Packages.Num() == 0)
		return Packages.End;
	const FTextRun Run(Tables, bFolded, EZone::Nodes, Packages);
	uint32 Next = Packages.Begin;
	for (std::size_t At = 0; (At = Finder.Find(Run.Bytes, At)) != std::string_view::npos;
		 At = Run.GetStart(Next - Packages.Begin))
	{
		if (IsStopRequested())
			break;
		const uint32 Found = Run.FindText(At, Next - Packages.Begin);
		const std::size_t PrefixBytes = At - Run.GetStart(Found) + Piece.size();
		Next = FindEndOfPrefix(Packages.Begin + Found, PrefixBytes);
		VisitPackages({Packages.Begin + Found, Next});
		if (Next >= Packages.End)
			return Next;
	}
	return Packages.End;
}

/** After the last package whose name begins like that of the given one; these lie side by side, but only without regard to case.
 */
uint32 FPathSearch::FindEndOfPrefix(uint32 Package, std::size_t PrefixBytes) const
{
	const std::string_view Prefix = GetText(EZone::Nodes, Package).substr(0, PrefixBytes);
	const auto Shares = [&](uint32 Other) { return Tables.GetFolded(EZone::Nodes, Other).starts_with(Prefix); };
	uint32 Step = 1;
	while (bFolded && Step < Image.NumPackages() - Package && Shares(Package + Step))
	{
		Package += Step;
		Step *= 2;
	}
	while (bFolded && Step > 1)
	{
		Step /= 2;
		if (Step < Image.NumPackages() - Package && Shares(Package + Step))
			Package += Step;
	}
	return Package + 1;
}

void FPathSearch::VisitPackages(FRowRange Packages)
{
	const FRowRange Assets = {Tables.FirstAssets[Packages.Begin], Tables.FirstAssets[Packages.End]};
	VisitOwnNamed(Assets.Begin);
	uint32 Begin = Assets.Begin;
	for (; NextOwnNamed < Tables.OwnNamedAssets.size() && Tables.OwnNamedAssets[NextOwnNamed] < Assets.End; ++NextOwnNamed)
	{
		const uint32 Asset = Tables.OwnNamedAssets[NextOwnNamed];
		if (bVerify || Tables.AssetOuters[Asset] == NoId) // the path begins with the package's name
			continue;
		VisitMatching({Begin, Asset});
		if (Matches(Asset))
			Visit({Asset, Asset + 1});
		Begin = Asset + 1;
	}
	VisitMatching({Begin, Assets.End});
}

/** The piece was found in the names of these assets' packages. */
void FPathSearch::VisitMatching(FRowRange Assets)
{
	if (!bVerify && Assets.Num() > 0)
		Visit(Assets);
	for (uint32 Asset = Assets.Begin; bVerify && Asset < Assets.End && !IsStopRequested(); ++Asset)
	{
		if (Matches(Asset))
			Visit({Asset, Asset + 1});
	}
}

/** Assets before EndAsset that have not been looked at: their packages' names do not hold the piece. */
void FPathSearch::VisitOwnNamed(uint32 EndAsset)
{
	for (; NextOwnNamed < Tables.OwnNamedAssets.size() && Tables.OwnNamedAssets[NextOwnNamed] < EndAsset; ++NextOwnNamed)
	{
		if (IsStopRequested())
			return;
		const uint32 Asset = Tables.OwnNamedAssets[NextOwnNamed];
		if (MayMatch(Asset) && (!bVerify || Matches(Asset)))
			Visit({Asset, Asset + 1});
	}
}

bool FPathSearch::MayMatch(uint32 Asset) const
{
	return IsNameFound(Tables.AssetNames[Asset]) || IsNameFound(Tables.AssetOuters[Asset]);
}

bool FPathSearch::Matches(uint32 Asset)
{
	if (bExact && Fold(Image.GetAssetName(Asset)) == Wanted)
		return true;
	if (bExact && !Wanted.starts_with('/'))
		return false;
	Path.Empty();
	Image.AppendObjectPath(Asset, Path);
	const std::string Whole = Fold(Path);
	return bExact ? Whole == Wanted : Whole.find(Wanted) != std::string::npos;
}
