#pragma once

#include "Queries/RegistryOverlay.h"

#include <functional>

/**
 * Puts assets of a snapshot's overlay between those of its base, in registry order, and leaves out what is hidden. Used once, for
 * one query that has found assets of both parts.
 */
class FOverlayMerge
{
public:
	/** Added are rows of the overlay's part, ascending. Visit takes assets of the snapshot and returns false to end. */
	FOverlayMerge(const FRegistrySnapshot& Snapshot, std::vector<uint32> InAdded, std::function<bool(FRowRange Assets)> InVisit);

	/** Takes assets of the base, ascending from call to call. False once ended. */
	bool Take(FRowRange Assets);
	/** After the last. */
	void Finish();

private:
	bool TakeAdded(uint32 EndAsset);
	/** Of the base: where the next added one goes. */
	uint32 GetNextPlace() const;

	const FRegistryOverlay& Overlay;
	const FRegistryTables& Base;
	const std::vector<uint32> Added;
	const std::function<bool(FRowRange)> Visit;
	std::size_t NextAdded = 0;
	std::size_t NextHidden = 0;
	bool bEnded = false;
};
