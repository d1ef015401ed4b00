#pragma once

#include "AssetRegistry/AssetData.h"

/** An asset of the open project, as somebody has named it. */
struct FNamedAsset
{
	FAssetData Asset;
	FString SubPath; // of the object inside the asset, where the name led on to one: "Root.Deeper"
};

/**
 * The asset that a text names:
 *   a package           /Game/AI/BT_Guard, of which the asset named like it is meant, else the first one,
 *   an object path      /Game/AI/BT_Guard.BT_Guard, also of a Blueprint's class, or of an object inside the asset,
 *   an export text      BehaviorTree'/Game/AI/BT_Guard.BT_Guard',
 *   a package's file    absolute, relative to the project, or to the current folder,
 *   a bare name         BT_Guard, where one asset alone has it.
 * Case is ignored; registry-filtered assets count. Empty, and a sentence, where there is none or a bare name has several. Keeps
 * no name of the text. Game thread.
 */
TOptional<FNamedAsset> FindNamedAsset(const FString& Text, FString& OutError);

/** Assets that the registry leaves out of queries. */
enum class EHiddenAssets : uint8
{
	Skip,
	Include,
};
/** The first assets of that name in registry order. */
TArray<FAssetData> FindAssetsByName(FStringView Name, int32 MaxAssets, EHiddenAssets Hidden = EHiddenAssets::Include);
