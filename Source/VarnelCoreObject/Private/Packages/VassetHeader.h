#pragma once

#include "Core/Base/HashMap.h"
#include "Core/Base/SeededHash.h"
#include "CoreObject/Packages/PackageSource.h"
#include "Reflection/JsonFaults.h"

/** Keys of a package file's root. */
namespace VassetKeys
{
inline constexpr std::string_view Version = "varnel_package";
inline constexpr std::string_view Assets = "assets";
inline constexpr std::string_view Dependencies = "dependencies";
inline constexpr std::string_view BlueprintIndex = "blueprint_index";
inline constexpr std::string_view Objects = "objects";
inline constexpr std::array<std::string_view, 5> All{Version, Assets, Dependencies, BlueprintIndex, Objects};
}

/** All members of the header stand before the body (or before the end of what was parsed), so that nothing of it can follow the
 * body. */
bool HasWholeHeaderBeforeBody(const FJsonRef& Root);
/** Turns the members beside the body into a header record. Made to be reused: it keeps its tables from file to file. */
class FVassetHeaderReader
{
public:
	/** Root is that of a package of the right version. Views in Out point into its document. */
	void Read(const FJsonRef& Root, FJsonFaults& InFaults, FPackageHeader& Out);

private:
	struct FAssetKey
	{
		std::string_view Outer;
		std::string_view Name;
	};
	struct FTagKey
	{
		std::size_t Asset;
		std::string_view Key;
		friend bool operator==(const FTagKey&, const FTagKey&) = default;
	};
	struct FHashTag
	{
		std::size_t operator()(const FTagKey& Key) const { return SeededHash::HashBytes(Key.Key, Key.Asset); }
	};
	struct FHashFolded
	{
		std::size_t operator()(std::string_view Text) const;
		std::size_t operator()(const FAssetKey& Key) const;
	};
	struct FEqualFolded
	{
		bool operator()(std::string_view A, std::string_view B) const;
		bool operator()(const FAssetKey& A, const FAssetKey& B) const;
	};
	template <class TKey>
	using TPlaces = THashMap<TKey, std::size_t, FHashFolded, FEqualFolded>;

	void Reset(FJsonFaults& InFaults, FPackageHeader& Out);
	void ReadAsset(const FJsonRef& Json);
	bool IsUsableAsset(const FJsonRef& Json, const FPackageHeader::FAsset& Asset);
	bool IsInThisPackage(std::string_view ObjectPath);
	void ReadTags(const FJsonRef& Json, FPackageHeader::FAsset& Asset);
	void AddTag(const FPackageHeader::FTag& Tag);
	void ReadDependency(const FJsonRef& Json);
	void ReadIndexEntries(const FJsonRef& Json, uint32 Depth);
	void CheckIndexOwner(const FJsonRef& Index);

	FJsonFaults* Faults = nullptr; // those of the reading in progress
	FPackageHeader* Header = nullptr;
	FString PackageName; // of the file, when an asset needed it
	TPlaces<FAssetKey> AssetPlaces;
	TPlaces<std::string_view> DependencyPlaces;
	THashMap<FTagKey, std::size_t, FHashTag> TagPlaces; // only used where keys are repeated
};
