#pragma once

#include "Core/Json/Json.h"

/** Whether a file counts as text, by its path. Any thread. */
using FIsTextFile = bool (*)(FStringView Path);

/** What the toolkit's tool operations share. Game thread. */
class FAssetOperationBase
{
public:
	/**
	 * Whether an asset is there, without regard to case: a package with at least one asset that is not registry-filtered; the
	 * object path of any asset, filtered or not; both also in the export form Class'/Game/A.A'; the file of such a package,
	 * absolute or relative to the project; or a text file whose path relative to the project, cut at its first dot, equals Path.
	 * Below /Game, /Script and /Engine a path counts as it is, with one dot at most: explorations would make something else
	 * of "/Game//A" and "/Game/A.A.uasset". Keeps nothing of Path.
	 */
	static bool AssetExists(const FString& Path);
	/** Says which of the project's files are text files; null, as before the first call: none. */
	static void SetTextFileRule(FIsTextFile Rule);
	/** Drops what is kept of the project's folders: another one may lie under the same path from now on. */
	static void ForgetTextFiles();
	/** Compact JSON text; "{}" for null. */
	static FString SerializeJson(const TSharedPtr<FJsonObject>& Object);
};

/**
 * While one lives, AssetExists looks at each folder once and keeps to what it saw: for many questions about one moment, such as
 * all results of a search. Within one task of the game thread.
 */
class FAssetExistsScope
{
public:
	FAssetExistsScope();
	~FAssetExistsScope();
	FAssetExistsScope(const FAssetExistsScope&) = delete;
	FAssetExistsScope& operator=(const FAssetExistsScope&) = delete;
};
