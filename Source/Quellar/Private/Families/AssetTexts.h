#pragma once

#include "AssetRegistry/AssetData.h"
#include "Core/Base/HashMap.h"

#include <functional>
#include <string>
#include <vector>

class FAssetTexts;

/** What is noted of an asset while its reader runs, instead of hits. */
struct FNotedTexts
{
	static void Append(std::string& Texts, const FString& Text);

	const FAssetTexts* For = nullptr;
	struct FShared
	{
		TSharedPtr<const void> Key; // keeps its address
		std::string Texts;			// empty where they are known
	};
	std::string Texts; // folded, a zero byte after each
	std::vector<FShared> Shared;
};

/** What an asset's texts come from, and so how long they are right. */
enum class ETextOrigin : uint8
{
	Record,	 // the registry's record alone
	Package, // its loaded package, and what that refers to
	Unkept,	 // whatever is in memory at the time: they are not kept
};

/**
 * The assets that one family's scan goes through, kept from search to search with the texts that its reader has compared with the
 * term, folded, one behind the other: a search looks through these first, and reads assets only where the term occurs, or where
 * no texts are known. Assets are listed anew when the registry or the settings have changed; texts of an asset go when its
 * package is loaded anew, which it is when what it refers to has changed.
 *
 * Texts take memory up to the limit of SearchMemory; beyond it assets are read for every search. Game thread.
 */
class FAssetTexts
{
public:
	/** Lists give the assets, in the order of the scan. */
	FAssetTexts(ETextOrigin InOrigin, std::function<TArray<FAssetData>()> InList);
	~FAssetTexts();
	FAssetTexts(const FAssetTexts&) = delete;
	FAssetTexts& operator=(const FAssetTexts&) = delete;

	/** For the scan of that name, which has one list and origin as long as the program runs. */
	static FAssetTexts& Get(const FString& Name, ETextOrigin Origin, std::function<TArray<FAssetData>()> List);

	/** Of all scans. */
	static void ForgetAll();
	static int64 GetMemory();

	/** Brings list and texts up to date. To be called once at the start of a search; what follows holds until it ends. */
	void Refresh();
	const TArray<FAssetData>& GetAssets() const { return Assets; }
	/** Places of the assets in which a term may be found, ascending; all that have no texts among them. */
	std::vector<int32> FindCandidates(const FString& Term) const;
	/** Whether the asset's texts are to be noted, and can be. */
	bool WantsTexts(int32 Place) const;
	/** Notes texts, and says whether the asset may match: the folded term is among them, or they could not be kept. */
	bool Note(int32 Place, const FNotedTexts& Noted, std::string_view FoldedTerm);
	/** Texts that several assets share are noted with the first of them. */
	bool KnowsShared(const void* Key) const { return SharedBlocks.contains(Key); }

private:
	static constexpr uint32 NoBlock = UINT32_MAX;
	struct FBlock
	{
		uint64 Begin = 0;
		uint64 End = 0;
		uint64 PackageSerial = 0; // of the package that the texts come from
		uint32 FirstShared = 0;	  // into SharedOf
		uint32 EndShared = 0;
	};
	struct FSharedBlock
	{
		TSharedPtr<const void> Key;
		uint32 Block = NoBlock;
	};

	void ListAgain();
	void DropTexts();
	void CarryOver(const TArray<FAssetData>& OldAssets, const std::vector<uint32>& OldBlocks);
	void DropStale();
	uint32 AddBlock(std::string_view Texts, uint64 PackageSerial);
	std::vector<bool> FindBlocks(std::string_view Folded) const;
	int64 CountBytes() const;
	void UpdateMemory();

	const ETextOrigin Origin;
	const std::function<TArray<FAssetData>()> List;
	uint64 StateNumber = 0; // of the registry, when the assets were listed
	uint64 RulesNumber = 0; // of the settings
	uint64 NumDestructions = 0;
	TArray<FAssetData> Assets;
	std::vector<uint32> Blocks; // by asset
	std::string Texts;
	std::vector<FBlock> AllBlocks; // ascending
	std::vector<uint32> SharedOf;
	THashMap<const void*, FSharedBlock> SharedBlocks;
	int64 NumBytes = 0; // as counted in the memory of all
};
