#pragma once

#include "Core/Base/Types.h"
#include "Core/Files/FileTree.h"
#include "Core/Program/Diagnostics.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

/** An id or row that points nowhere. */
inline constexpr uint32 NoId = UINT32_MAX;

/**
 * Texts lie in zones, one after the other; a column that holds ids of texts counts from the start of its zone. Within a zone
 * every text is there once (Nodes and Classes: once without regard to case), so that a search over a zone looks at every distinct
 * text once.
 */
enum class EZone : uint8
{
	Nodes,	 // long package names: those with a file, then those that only others refer to, each part in registry order. A node's
			 // id is its text's id
	Folders, // of packages, in registry order
	Classes, // class paths, in registry order
	Names,	 // of assets, and the object paths of their outers
	TagKeys, //
	TagValues, //
	Entries,   // texts, comments and categories of Blueprint index entries
	Files,	   // names and folders of roots, file name extensions
	Faults,	   // texts and rules of faults
	Num,
};
inline constexpr std::size_t NumZones = static_cast<std::size_t>(EZone::Num);

namespace EAssetFlags
{
inline constexpr uint8 RegistryFiltered = 1;
}

/** Rows or ids from Begin up to but not including End. */
struct FRowRange
{
	uint32 Begin = 0;
	uint32 End = 0;

	uint32 Num() const { return End - Begin; }
};

/** Columns of an index of trigrams, see TrigramIndex. */
template <template <class> class TStorage>
struct TTrigramColumns
{
	TStorage<uint32> Keys;	 // the trigrams that occur, ascending
	TStorage<uint64> Starts; // of each one's list, and the end
	TStorage<uint8> Lists;
};

/**
 * Everything the registry knows, as columns. A column named First... has one element more than there are rows: row R owns the
 * elements from First[R] up to First[R + 1] of the columns after it. TStorage is a vector while columns grow and a span of an
 * image afterwards. RegistryColumns.h lists them all, with what their elements point at.
 */
template <template <class> class TStorage>
struct TRegistryColumns
{
	TStorage<uint64> TextStarts;   // of every text of all zones, and the end; a zero byte after every text belongs to it
	TStorage<uint64> FoldedStarts; // the same for the folded twin; left out where no text changes its length
	TStorage<char> TextBytes;
	TStorage<char> FoldedBytes;

	// By package, in registry order
	TStorage<uint32> PackageFolders;
	TStorage<uint32> PackageFiles;
	TStorage<uint32> FirstAssets;
	TStorage<uint32> FirstEntries;
	TStorage<uint32> RespelledPackages; // rows whose file writes a class or a dependency in other case than this registry does

	// What was wrong with the headers of packages all the same, ascending by package
	TStorage<uint32> FaultPackages;
	TStorage<uint32> FaultLines;
	TStorage<uint32> FaultColumns;
	TStorage<uint8> FaultSeverities; // EDiagnosticSeverity
	TStorage<uint32> FaultTexts;
	TStorage<uint32> FaultRules;

	TTrigramColumns<TStorage> NameTrigrams;

	// By asset, in registry order
	TStorage<uint32> AssetPackages;
	TStorage<uint32> AssetNames; // NoId: the package's short name
	TStorage<uint32> AssetClasses;
	TStorage<uint32> AssetOuters; // NoId: directly in the package
	TStorage<uint8> AssetFlags;
	TStorage<uint32> FirstTags;
	TStorage<uint32> TagKeys;
	TStorage<uint32> TagValues;
	TStorage<uint32> OwnNamedAssets; // rows with a name or an outer of their own

	// Blueprint index entries, parents before children
	TStorage<uint32> EntryCategories;
	TStorage<uint32> EntryTexts;
	TStorage<uint32> EntryComments; // NoId: none
	TStorage<uint16> EntryDepths;
	TStorage<uint32> IndexedAssets; // the Blueprints that own their package's entries, in registry order
	TStorage<uint32> FirstUses;		// by text of EZone::Entries
	TStorage<uint32> Uses;			// entries of these Blueprints that have it as text or comment, ascending, each once
	TTrigramColumns<TStorage> EntryTrigrams;

	// By class
	TStorage<uint32> ClassParents; // NoId: none known; never a cycle
	TStorage<uint32> FirstClassAssets;
	TStorage<uint32> ClassAssets;	 // in registry order
	TStorage<uint32> UnclearClasses; // given several parents, or one that did not count: what other packages say decides
	TStorage<uint32> FirstClassChildren;
	TStorage<uint32> ClassChildren;

	// By node
	TStorage<uint32> FirstDependencies;
	TStorage<uint32> DependencyTargets;
	TStorage<uint8> DependencyFlags;
	TStorage<uint32> FirstReferencers;
	TStorage<uint32> ReferencerSources;
	TStorage<uint8> ReferencerFlags;

	// By file of a package, in byte order of the path below its root
	TStorage<uint32> FilePackages;
	TStorage<FFileStamp> FileStamps;
	TStorage<uint32> FileExtensions;
	TStorage<uint8> FileSources;

	// By root
	TStorage<uint32> RootNames;
	TStorage<uint32> RootFolders;
	TStorage<uint32> FirstRootFiles;
};

template <class T>
using TColumnSpan = std::span<const T>;
template <class T>
using TColumnVector = std::vector<T>;

using FZoneStarts = std::array<uint32, NumZones + 1>; // ids of texts

/** Columns to read, owned elsewhere. */
struct FRegistryTables : TRegistryColumns<TColumnSpan>
{
	FZoneStarts ZoneStarts = {};

	uint32 NumTexts(EZone Zone) const
	{
		return ZoneStarts[static_cast<std::size_t>(Zone) + 1] - ZoneStarts[static_cast<std::size_t>(Zone)];
	}
	std::string_view GetText(EZone Zone, uint32 Id) const { return TextAt(TextStarts, TextBytes, Zone, Id); }
	std::string_view GetFolded(EZone Zone, uint32 Id) const
	{
		return TextAt(FoldedStarts.empty() ? TextStarts : FoldedStarts, FoldedBytes, Zone, Id);
	}
	static FRowRange RangeOf(std::span<const uint32> First, uint32 Row) { return {First[Row], First[Row + 1]}; }
	FRowRange FindFaults(uint32 Package) const;
	/** Without the file's name. */
	FDiagnostic GetFault(uint32 Fault) const;

private:
	std::string_view TextAt(std::span<const uint64> Starts, std::span<const char> Bytes, EZone Zone, uint32 Id) const
	{
		const std::size_t Text = std::size_t{ZoneStarts[static_cast<std::size_t>(Zone)]} + Id;
		return std::string_view(Bytes.data() + Starts[Text], Starts[Text + 1] - Starts[Text] - 1);
	}
};

/** Columns that grow. */
struct FRegistryDraft : TRegistryColumns<TColumnVector>
{
	FZoneStarts ZoneStarts = {};

	/** Valid until a column changes. */
	FRegistryTables View() const;
};
