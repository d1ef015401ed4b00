#pragma once

#include "Scan/RegistryBuilder.h"

#include <functional>

/** Gives the texts of one zone of all sources new ids; every distinct text of a source is looked up once. One thread at a time.
 */
class FTextMap
{
public:
	/** AddText gives a text its new id. */
	FTextMap(const FRegistryInput& InInput, EZone InZone, std::function<uint32(std::string_view Text)> InAddText)
		: Input(InInput)
		, Zone(InZone)
		, AddText(std::move(InAddText))
		, NewIds(Input.Sources.size())
	{
	}

	/** NoId stays NoId. */
	uint32 operator()(uint32 Source, uint32 OldId)
	{
		if (OldId == NoId)
			return NoId;
		std::vector<uint32>& Known = NewIds[Source];
		if (OldId >= Known.size())
			Known.resize(std::max<std::size_t>(OldId + std::size_t{1}, 2 * Known.size()), NoId);
		if (Known[OldId] == NoId)
			Known[OldId] = AddText(Input.Sources[Source].GetText(Zone, OldId));
		return Known[OldId];
	}

private:
	const FRegistryInput& Input;
	const EZone Zone;
	const std::function<uint32(std::string_view Text)> AddText;
	std::vector<std::vector<uint32>> NewIds;
};
