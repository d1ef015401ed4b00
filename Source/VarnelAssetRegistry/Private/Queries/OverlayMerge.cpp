#include "Queries/OverlayMerge.h"

#include <algorithm>

FOverlayMerge::FOverlayMerge(
	const FRegistrySnapshot& Snapshot, std::vector<uint32> InAdded, std::function<bool(FRowRange Assets)> InVisit)
	: Overlay(*Snapshot.Overlay)
	, Base(Snapshot.Base->Image->GetTables())
	, Added(std::move(InAdded))
	, Visit(std::move(InVisit))
{
}

uint32 FOverlayMerge::GetNextPlace() const
{
	if (NextAdded == Added.size())
		return NoId;
	const uint32 Package = Overlay.Part->Image->GetTables().AssetPackages[Added[NextAdded]];
	return Base.FirstAssets[Overlay.Places[Package]];
}

bool FOverlayMerge::TakeAdded(uint32 EndAsset)
{
	for (; !bEnded && NextAdded < Added.size() && GetNextPlace() <= EndAsset; ++NextAdded)
	{
		const uint32 Asset = static_cast<uint32>(Base.AssetPackages.size()) + Added[NextAdded];
		bEnded = !Visit({Asset, Asset + 1});
	}
	return !bEnded;
}

bool FOverlayMerge::Take(FRowRange Assets)
{
	while (Assets.Begin < Assets.End && TakeAdded(Assets.Begin))
	{
		FRowRange Next = {NoId, NoId}; // hidden
		for (; NextHidden < Overlay.Hidden.size(); ++NextHidden)
		{
			Next = FRegistryTables::RangeOf(Base.FirstAssets, Overlay.Hidden[NextHidden]);
			if (Next.End > Assets.Begin)
				break;
		}
		if (NextHidden == Overlay.Hidden.size())
			Next = {NoId, NoId};
		if (Next.Begin <= Assets.Begin)
		{
			Assets.Begin = std::min(Next.End, Assets.End);
			continue;
		}
		const uint32 End = std::min({Assets.End, Next.Begin, GetNextPlace()});
		bEnded = !Visit({Assets.Begin, End});
		Assets.Begin = End;
	}
	return !bEnded;
}

void FOverlayMerge::Finish()
{
	TakeAdded(static_cast<uint32>(Base.AssetPackages.size()));
}
