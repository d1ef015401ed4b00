#pragma once

#include "Image/TextTable.h"

#include <array>

/** The texts of a registry that is being built. Each zone may be filled by a thread of its own. */
class FTextZones
{
public:
	FTextTable& operator[](EZone Zone) { return Tables[static_cast<std::size_t>(Zone)]; }
	const FTextTable& operator[](EZone Zone) const { return Tables[static_cast<std::size_t>(Zone)]; }
	/** Fills the columns of texts and of their folded twins. The tables must not be used any more. */
	void MoveTo(FRegistryDraft& Draft);

private:
	// In the order of the zones
	std::array<FTextTable, NumZones> Tables = {FTextTable(ESearchCase::IgnoreCase), FTextTable(ESearchCase::CaseSensitive),
		FTextTable(ESearchCase::IgnoreCase), FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive),
		FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive), FTextTable(ESearchCase::CaseSensitive),
		FTextTable(ESearchCase::CaseSensitive)};
};
