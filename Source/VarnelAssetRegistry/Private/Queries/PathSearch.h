#pragma once

#include "AssetRegistry/AssetPaths.h"
#include "Core/Text/TextFinder.h"
#include "Image/RegistryImage.h"

#include <functional>
#include <string>
#include <vector>

/**
 * One search for a text in the object paths of all assets.
 *
 * Most assets are named like their package, so the text, or its longest piece between the signs that packages and names do not
 * hold, stands in the package's name: package names are searched where they lie, and a match that several neighbours share is
 * taken for all of them at once. Assets with a name or an outer of their own are looked at apart.
 */
class FPathSearch
{
public:
	FPathSearch(const FRegistryImage& InImage, const FAssetPathQuery& Query, std::function<void(FRowRange Assets)> InVisit);
	/** Visits what matches, ascending; a stop, see Core/StopToken.h, ends it early. */
	void Run();

private:
	void FindPackages();
	/** Packages below Begin are done with; returns the first one that is not afterwards. */
	uint32 FindPackagesIn(FRowRange Packages);
	uint32 FindEndOfPrefix(uint32 Package, std::size_t PrefixBytes) const;

	void VisitPackages(FRowRange Packages);
	void VisitOwnNamed(uint32 EndAsset);
	void VisitMatching(FRowRange Assets);

	void FindNames();
	bool IsNameFound(uint32 Name) const { return Name != NoId && FoundNames[Name]; }
	bool MayMatch(uint32 Asset) const;
	bool Matches(uint32 Asset);

	/** The text as this search compares it. */
	std::string_view GetText(EZone Zone, uint32 Id) const
	{
		return bFolded ? Tables.GetFolded(Zone, Id) : Tables.GetText(Zone, Id);
	}
	std::string Fold(std::string_view Text) const;

	const FRegistryImage& Image;
	const FRegistryTables& Tables;
	const std::function<void(FRowRange)> Visit;
	const bool bFolded;
	const bool bExact;
	const std::string Wanted; // folded when case is ignored
	const std::string_view Piece;
	const bool bVerify; // that a name holds the piece is not enough
	const FTextFinder Finder;
	std::vector<bool> FoundNames; // by id of a name or outer: it holds the piece
	uint32 NextOwnNamed = 0;
	FString Path; // scratch
};
