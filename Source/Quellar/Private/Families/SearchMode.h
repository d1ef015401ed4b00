#pragma once

#include "Families/FamilyScan.h"
#include "OrivaneToolkit/OrivaneSettings.h"

#include <functional>

/** How a family whose depth is a setting reads one asset. */
struct FModeReaders
{
	using FReadAsset = std::function<void(const FAssetData&, FAssetResult&, FHitSink&)>;
	FReadAsset Names;	 // mode 0: from the registry's record alone
	FReadAsset Contents; // mode 1
	ETextOrigin ContentsOrigin;
};

/** ScanAssets with the reader of the mode that the settings hold now; finds nothing in a mode that has none. */
inline void ScanByMode(const FString& Family, uint8 UOrivaneSettings::*Mode, const FModeReaders& Readers,
	const TArray<UClass*>& Classes, const FAssetSearchParams& Params, const FOnAssetSearchComplete& OnDone)
{
	const auto* Settings = UOrivaneSettings::StaticClass()->GetDefaultObject<UOrivaneSettings>();
	switch (Settings ? Settings->*Mode : 0)
	{
		case 0:
			return ScanAssets(Family + " names", ETextOrigin::Record, Classes, Params, OnDone, Readers.Names);
		case 1:
			return ScanAssets(Family, Readers.ContentsOrigin, Classes, Params, OnDone, Readers.Contents);
		default:
			OnDone.ExecuteIfBound({});
	}
}
