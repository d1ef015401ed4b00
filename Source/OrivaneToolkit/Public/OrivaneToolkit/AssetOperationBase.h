#pragma once

#include "Core/Json.h"

/** What the family's tool operations share. Game thread. */
class FAssetOperationBase
{
public:
	/**
	 * Whether an asset is there, without regard to case: a package with at least one asset that is not registry-filtered; an
	 * object path of such an asset; a file-system path that converts to such a package; or a project file whose path relative to
	 * the project, cut at its first dot, equals Path.
	 */
	static bool AssetExists(const FString& Path);
	/** Compact JSON text; "{}" for null. */
	static FString SerializeJson(const TSharedPtr<FJsonObject>& Object);
};
