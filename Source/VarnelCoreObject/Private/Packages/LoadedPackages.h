#pragma once

#include "Core/Base/HashMap.h"
#include "Core/Base/KeyHash.h"
#include "CoreObject/Reflection/Class.h"
#include "Packages/PackageEviction.h"

#include <functional>
#include <vector>

/** The packages that were loaded from files: what they take, what they refer to, and which of them must stay. Game thread. */
class FLoadedPackages
{
public:
	/** References: names of other packages, in any order, repeated at will; those that are not loaded from files mean nothing. */
	void Add(const UPackage& Package, std::size_t NumFileBytes, std::vector<FName> References);
	void Pin(FName PackageName) { Pinned.insert(PackageName); }
	void Unpin(FName PackageName) { Pinned.erase(PackageName); }
	void SetMaxBytes(int64 InMaxBytes) { MaxBytes = InMaxBytes; }
	int64 GetNumBytes() const { return NumBytes; }
	int32 Evict();
	/** See DropLoadedPackages. */
	int32 Drop(const std::function<bool(FName PackageName)>& HasChanged);
	/** Pins stay. */
	void UnloadAll();
	/** Grows with every package that is loaded, until packages are dropped or evicted. */
	std::size_t NumEntries() const { return Entries.size(); }
	/** Unloads what was loaded since there were so many entries. Pins stay. */
	void UnloadSince(std::size_t NumBefore);

private:
	struct FEntry
	{
		FName Name;
		int64 NumBytes = 0;
		std::vector<FName> References;
	};
	void ForgetUnloaded();
	/** Of the entries, which are all loaded and each once. */
	std::vector<FLoadedPackageUse> MakeUses() const;
	/** Unloads the entries whose place is not set. Returns how many. */
	int32 KeepOnly(const std::vector<uint8>& Kept);

	std::vector<FEntry> Entries; // in the order of loading; some may have been unloaded by others meanwhile
	THashSet<FName, FKeyHash> Pinned;
	int64 NumBytes = 0; // of all entries
	int64 MaxBytes = 0; // 0: no limit
};
