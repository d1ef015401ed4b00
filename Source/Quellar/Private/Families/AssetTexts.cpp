#include "Families/AssetTexts.h"

#include "Core/Base/Map.h"
#include "Core/Base/SeededHash.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/Object.h"
#include "CoreObject/Packages/Loader.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Assets/OrivaneFindUtils.h"
#include "Quellar/Families/SearchMemory.h"

#include <algorithm>

namespace
{
/** Of all scans, as they were counted last. */
int64 NumAllBytes = 0;

/** Never destroyed, as what it holds refers to other modules. */
TMap<FString, TUniquePtr<FAssetTexts>>& GetAllTexts()
{
	static auto* const All = new TMap<FString, TUniquePtr<FAssetTexts>>;
	return *All;
}

struct FAssetKey
{
	FName Package;
	FName Asset;
	FName Outer;
	friend bool operator==(const FAssetKey&, const FAssetKey&) = default;
};

struct FHashAssetKey
{
	std::size_t operator()(const FAssetKey& Key) const
	{
		return SeededHash::MixHash(SeededHash::MixHash(GetTypeHash(Key.Package), GetTypeHash(Key.Asset)), GetTypeHash(Key.Outer));
	}
};

FAssetKey MakeKey(const FAssetData& Asset)
{
	return {Asset.PackageName, Asset.AssetName, Asset.OuterPath};
}

uint64 GetPackageSerial(FName Name)
{
	const UPackage* const Package = FindPackage(Name);
	return Package && Package->IsFullyLoaded() ? Package->GetSerialNumber() : 0;
}
}

void FNotedTexts::Append(std::string& Texts, const FString& Text)
{
	Unicode::AppendFolded(Texts, Text.View());
	Texts.push_back('\0');
}

FAssetTexts::FAssetTexts(ETextOrigin InOrigin, std::function<TArray<FAssetData>()> InList)
	: Origin(InOrigin)
	, List(std::move(InList))
{
}

FAssetTexts::~FAssetTexts()
{
	NumAllBytes -= NumBytes;
}

FAssetTexts& FAssetTexts::Get(const FString& Name, ETextOrigin Origin, std::function<TArray<FAssetData>()> List)
{
	TUniquePtr<FAssetTexts>& Texts = GetAllTexts().FindOrAdd(Name);
	if (!Texts)
		Texts = MakeUnique<FAssetTexts>(Origin, std::move(List));
	return *Texts;
}

void FAssetTexts::ForgetAll()
{
	GetAllTexts() = {};
}

int64 FAssetTexts::GetMemory()
{
	return NumAllBytes;
}

void FAssetTexts::Refresh()
{
	const IAssetRegistry* const Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	const uint64 NewState = Registry ? Registry->GetStateNumber() : 0;
	const uint64 NewRules = FOrivaneFindUtils::GetRulesNumber();
	if (NewState == 0 || NewState != StateNumber || NewRules != RulesNumber)
		ListAgain();
	StateNumber = NewState;
	RulesNumber = NewRules;
	if (Origin == ETextOrigin::Package && NumDestructions != GetNumDestructions())
		DropStale();
	NumDestructions = GetNumDestructions();
	UpdateMemory();
}

void FAssetTexts::ListAgain()
{
	const TArray<FAssetData> OldAssets = std::move(Assets);
	const std::vector<uint32> OldBlocks = std::move(Blocks);
	Assets = List();
	Blocks.assign(static_cast<std::size_t>(Assets.Num()), NoBlock);
	if (Origin == ETextOrigin::Package)
		CarryOver(OldAssets, OldBlocks);
	else
		DropTexts();
}

void FAssetTexts::DropTexts()
{
	Texts = {};
	AllBlocks.clear();
	SharedOf.clear();
	SharedBlocks.clear();
	std::fill(Blocks.begin(), Blocks.end(), NoBlock);
}

/** What becomes of the texts shows where packages were loaded anew; an asset that is still listed keeps them until then. */
void FAssetTexts::CarryOver(const TArray<FAssetData>& OldAssets, const std::vector<uint32>& OldBlocks)
{
	THashMap<FAssetKey, uint32, FHashAssetKey> Known;
	for (int32 Place = 0; Place < OldAssets.Num(); ++Place)
	{
		if (const uint32 Block = OldBlocks[static_cast<std::size_t>(Place)]; Block != NoBlock)
			Known.insert({MakeKey(OldAssets[Place]), Block});
	}
	for (int32 Place = 0; Place < Assets.Num() && !Known.empty(); ++Place)
	{
		if (const auto Found = Known.find(MakeKey(Assets[Place])); Found != Known.end())
			Blocks[static_cast<std::size_t>(Place)] = Found->second;
	}
	NumDestructions = 0; // the texts of what is listed no more go too
}

/** Keeps the blocks of assets whose packages are those that they come from. */
void FAssetTexts::DropStale()
{
	const std::string OldTexts = std::move(Texts);
	const std::vector<FBlock> OldBlocks = std::move(AllBlocks);
	const std::vector<uint32> OldSharedOf = std::move(SharedOf);
	THashMap<uint32, TSharedPtr<const void>> KeyOfBlock;
	for (const auto& [Key, Shared] : SharedBlocks)
		KeyOfBlock.insert({Shared.Block, Shared.Key});
	Texts = {};
	AllBlocks = {};
	SharedOf = {};
	SharedBlocks = {};
	const auto GetTexts = [&OldTexts](const FBlock& Block)
	{ return std::string_view(OldTexts).substr(Block.Begin, Block.End - Block.Begin); };
	for (int32 Place = 0; Place < Assets.Num(); ++Place)
	{
		uint32& Number = Blocks[static_cast<std::size_t>(Place)];
		if (Number == NoBlock)
			continue;
		const FBlock Old = OldBlocks[Number];
		if (GetPackageSerial(Assets[Place].PackageName) != Old.PackageSerial)
		{
			Number = NoBlock;
			continue;
		}
		FNotedTexts Noted{.Texts = std::string(GetTexts(Old)), .Shared = {}};
		for (uint32 At = Old.FirstShared; At < Old.EndShared; ++At)
		{
			const TSharedPtr<const void>& Key = KeyOfBlock.find(OldSharedOf[At])->second;
			Noted.Shared.push_back(
				{Key, KnowsShared(Key.get()) ? std::string() : std::string(GetTexts(OldBlocks[OldSharedOf[At]]))});
		}
		Note(Place, Noted, {});
	}
}

bool FAssetTexts::WantsTexts(int32 Place) const
{
	return Origin != ETextOrigin::Unkept && StateNumber > 0 && Blocks[static_cast<std::size_t>(Place)] == NoBlock &&
		SearchMemory::GetBytesLeft() > CountBytes() - NumBytes;
}

bool FAssetTexts::Note(int32 Place, const FNotedTexts& Noted, std::string_view FoldedTerm)
{
	const uint64 Serial = Origin == ETextOrigin::Package ? GetPackageSerial(Assets[Place].PackageName) : 0;
	if (Origin == ETextOrigin::Package && Serial == 0) // nothing would show that the file has changed
		return true;
	bool bFound = Noted.Texts.find(FoldedTerm) != std::string::npos;
	const auto FirstShared = static_cast<uint32>(SharedOf.size());
	for (const FNotedTexts::FShared& Shared : Noted.Shared)
	{
		const auto [Known, bIsNew] = SharedBlocks.insert({Shared.Key.get(), {Shared.Key, NoBlock}});
		if (bIsNew)
			Known.value().Block = AddBlock(Shared.Texts, 0);
		SharedOf.push_back(Known->second.Block);
		const FBlock& Block = AllBlocks[Known->second.Block];
		bFound = bFound ||
			std::string_view(Texts).substr(Block.Begin, Block.End - Block.Begin).find(FoldedTerm) != std::string_view::npos;
	}
	const uint32 Block = AddBlock(Noted.Texts, Serial);
	AllBlocks[Block].FirstShared = FirstShared;
	AllBlocks[Block].EndShared = static_cast<uint32>(SharedOf.size());
	Blocks[static_cast<std::size_t>(Place)] = Block;
	return bFound;
}

uint32 FAssetTexts::AddBlock(std::string_view NewTexts, uint64 PackageSerial)
{
	const uint64 Begin = Texts.size();
	Texts.append(NewTexts);
	AllBlocks.push_back({.Begin = Begin, .End = Texts.size(), .PackageSerial = PackageSerial});
	return static_cast<uint32>(AllBlocks.size() - 1);
}

std::vector<bool> FAssetTexts::FindBlocks(std::string_view Folded) const
{
	std::vector<bool> Found(AllBlocks.size());
	const FTextFinder Finder(Folded, ESearchCase::CaseSensitive);
	for (std::size_t At = 0; At < Texts.size() && (At = Finder.Find(Texts, At)) != std::string_view::npos;)
	{
		const auto Above = std::upper_bound(
			AllBlocks.begin(), AllBlocks.end(), At, [](uint64 Byte, const FBlock& Block) { return Byte < Block.Begin; });
		const auto Block = static_cast<std::size_t>(Above - AllBlocks.begin()) - 1;
		Found[Block] = true;
		At = AllBlocks[Block].End;
	}
	return Found;
}

std::vector<int32> FAssetTexts::FindCandidates(const FString& Term) const
{
	const std::string Folded = Unicode::Fold(Term.View());
	const bool bTellsNothing = Folded.empty() || !Unicode::IsValidUtf8(Term.View()); // folding keeps whole code points alone
	const std::vector<bool> Found = bTellsNothing ? std::vector<bool>(AllBlocks.size(), true) : FindBlocks(Folded);
	const auto IsFound = [&](uint32 Number)
	{
		const FBlock& Block = AllBlocks[Number];
		return Found[Number] ||
			std::any_of(SharedOf.begin() + Block.FirstShared, SharedOf.begin() + Block.EndShared,
				[&Found](uint32 Shared) { return Found[Shared]; });
	};
	std::vector<int32> Candidates;
	for (std::size_t Place = 0; Place < Blocks.size(); ++Place)
	{
		if (Blocks[Place] == NoBlock || IsFound(Blocks[Place]))
			Candidates.push_back(static_cast<int32>(Place));
	}
	return Candidates;
}

int64 FAssetTexts::CountBytes() const
{
	return static_cast<int64>(Texts.capacity() + AllBlocks.capacity() * sizeof(FBlock) + SharedOf.capacity() * sizeof(uint32) +
		Blocks.capacity() * sizeof(uint32) + static_cast<std::size_t>(Assets.Num()) * sizeof(FAssetData));
}

void FAssetTexts::UpdateMemory()
{
	const int64 Now = CountBytes();
	NumAllBytes += Now - NumBytes;
	NumBytes = Now;
}
