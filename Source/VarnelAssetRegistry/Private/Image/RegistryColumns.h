#pragma once

#include "Image/RegistryTables.h"

/** Kinds of rows, each with a number in every image. The texts of a zone come first, in the order of the zones. */
enum class ERows : uint8
{
	Nodes,
	Folders,
	Classes,
	Names,
	TagKeys,
	TagValues,
	EntryTexts,
	FileTexts,
	FaultTexts,

	// As many as the first column that has them says
	Texts, // of all zones
	TextBytes,
	FoldedBytes,
	Packages, // their files too
	Faults,
	NameTrigrams,
	NameTrigramBytes,
	Assets,
	Tags,
	Entries,
	Uses,
	EntryTrigrams,
	EntryTrigramBytes,
	ChildClasses,
	Edges,
	Roots,

	Some, // any number, of this column alone
	Num,
};
inline constexpr std::size_t NumRowKinds = static_cast<std::size_t>(ERows::Num);
static_assert(static_cast<std::size_t>(ERows::Texts) == NumZones);

enum class EColumn : uint8
{
	Values,		  // anything
	Ascending,	  // values, each above the one before
	Ids,		  // rows of another kind
	IdsOrNone,	  // these, or NoId
	AscendingIds, // ids, each above the one before
	Ranges, // one element more than there are rows: where each row's part of another kind's rows begins, all in all every one
	Starts, // the same with no empty part
	FoldedStarts, // the same; left out where it equals TextStarts
};

/** What a column of the image holds. */
struct FColumn
{
	std::string_view Name;
	ERows Rows = ERows::Num;
	EColumn Kind = EColumn::Values;
	ERows Into = ERows::Num; // what ids and ranges point at

	constexpr bool HasEnd() const { return Kind == EColumn::Ranges || Kind == EColumn::Starts || Kind == EColumn::FoldedStarts; }
};

/**
 * Calls Visit(FColumn, the column in each of the sets) in the order in which the columns lie in an image. This list is all that
 * images know about columns: their places, their checks and the version of the layout come from it.
 */
template <class TVisit, class... TSets>
constexpr void ForEachColumn(TVisit&& Visit, TSets&... In)
{
	using enum ERows;
	using enum EColumn;
	Visit(FColumn{"TextStarts", Texts, Starts, TextBytes}, In.TextStarts...);
	Visit(FColumn{"FoldedStarts", Texts, FoldedStarts, FoldedBytes}, In.FoldedStarts...);
	Visit(FColumn{"TextBytes", TextBytes}, In.TextBytes...);
	Visit(FColumn{"FoldedBytes", FoldedBytes}, In.FoldedBytes...);

	Visit(FColumn{"PackageFolders", Packages, Ids, Folders}, In.PackageFolders...);
	Visit(FColumn{"PackageFiles", Packages, Ids, Packages}, In.PackageFiles...);
	Visit(FColumn{"FirstAssets", Packages, Ranges, Assets}, In.FirstAssets...);
	Visit(FColumn{"FirstEntries", Packages, Ranges, Entries}, In.FirstEntries...);
	Visit(FColumn{"RespelledPackages", Some, Ids, Packages}, In.RespelledPackages...);
	Visit(FColumn{"FaultPackages", Faults, Ids, Packages}, In.FaultPackages...);
	Visit(FColumn{"FaultLines", Faults}, In.FaultLines...);
	Visit(FColumn{"FaultColumns", Faults}, In.FaultColumns...);
	Visit(FColumn{"FaultSeverities", Faults}, In.FaultSeverities...);
	Visit(FColumn{"FaultTexts", Faults, Ids, FaultTexts}, In.FaultTexts...);
	Visit(FColumn{"FaultRules", Faults, Ids, FaultTexts}, In.FaultRules...);
	Visit(FColumn{"NameTrigrams.Keys", NameTrigrams, Ascending}, In.NameTrigrams.Keys...);
	Visit(FColumn{"NameTrigrams.Starts", NameTrigrams, Starts, NameTrigramBytes}, In.NameTrigrams.Starts...);
	Visit(FColumn{"NameTrigrams.Lists", NameTrigramBytes}, In.NameTrigrams.Lists...);

	Visit(FColumn{"AssetPackages", Assets, Ids, Packages}, In.AssetPackages...);
	Visit(FColumn{"AssetNames", Assets, IdsOrNone, Names}, In.AssetNames...);
	Visit(FColumn{"AssetClasses", Assets, Ids, Classes}, In.AssetClasses...);
	Visit(FColumn{"AssetOuters", Assets, IdsOrNone, Names}, In.AssetOuters...);
	Visit(FColumn{"AssetFlags", Assets}, In.AssetFlags...);
	Visit(FColumn{"FirstTags", Assets, Ranges, Tags}, In.FirstTags...);
	Visit(FColumn{"TagKeys", Tags, Ids, TagKeys}, In.TagKeys...);
	Visit(FColumn{"TagValues", Tags, Ids, TagValues}, In.TagValues...);
	Visit(FColumn{"OwnNamedAssets", Some, AscendingIds, Assets}, In.OwnNamedAssets...);

	Visit(FColumn{"EntryCategories", Entries, Ids, EntryTexts}, In.EntryCategories...);
	Visit(FColumn{"EntryTexts", Entries, Ids, EntryTexts}, In.EntryTexts...);
	Visit(FColumn{"EntryComments", Entries, IdsOrNone, EntryTexts}, In.EntryComments...);
	Visit(FColumn{"EntryDepths", Entries}, In.EntryDepths...);
	Visit(FColumn{"IndexedAssets", Some, AscendingIds, Assets}, In.IndexedAssets...);
	Visit(FColumn{"FirstUses", EntryTexts, Ranges, Uses}, In.FirstUses...);
	Visit(FColumn{"Uses", Uses, Ids, Entries}, In.Uses...);
	Visit(FColumn{"EntryTrigrams.Keys", EntryTrigrams, Ascending}, In.EntryTrigrams.Keys...);
	Visit(FColumn{"EntryTrigrams.Starts", EntryTrigrams, Starts, EntryTrigramBytes}, In.EntryTrigrams.Starts...);
	Visit(FColumn{"EntryTrigrams.Lists", EntryTrigramBytes}, In.EntryTrigrams.Lists...);

	Visit(FColumn{"ClassParents", Classes, IdsOrNone, Classes}, In.ClassParents...);
	Visit(FColumn{"FirstClassAssets", Classes, Ranges, Assets}, In.FirstClassAssets...);
	Visit(FColumn{"ClassAssets", Assets, Ids, Assets}, In.ClassAssets...);
	Visit(FColumn{"UnclearClasses", Some, AscendingIds, Classes}, In.UnclearClasses...);
	Visit(FColumn{"FirstClassChildren", Classes, Ranges, ChildClasses}, In.FirstClassChildren...);
	Visit(FColumn{"ClassChildren", ChildClasses, Ids, Classes}, In.ClassChildren...);

	Visit(FColumn{"FirstDependencies", Nodes, Ranges, Edges}, In.FirstDependencies...);
	Visit(FColumn{"DependencyTargets", Edges, Ids, Nodes}, In.DependencyTargets...);
	Visit(FColumn{"DependencyFlags", Edges}, In.DependencyFlags...);
	Visit(FColumn{"FirstReferencers", Nodes, Ranges, Edges}, In.FirstReferencers...);
	Visit(FColumn{"ReferencerSources", Edges, Ids, Nodes}, In.ReferencerSources...);
	Visit(FColumn{"ReferencerFlags", Edges}, In.ReferencerFlags...);

	Visit(FColumn{"FilePackages", Packages, Ids, Packages}, In.FilePackages...);
	Visit(FColumn{"FileStamps", Packages}, In.FileStamps...);
	Visit(FColumn{"FileExtensions", Packages, Ids, FileTexts}, In.FileExtensions...);
	Visit(FColumn{"FileSources", Packages}, In.FileSources...);

	Visit(FColumn{"RootNames", Roots, Ids, FileTexts}, In.RootNames...);
	Visit(FColumn{"RootFolders", Roots, Ids, FileTexts}, In.RootFolders...);
	Visit(FColumn{"FirstRootFiles", Roots, Ranges, Packages}, In.FirstRootFiles...);
}

/** A column without elements: names the element type where nothing else counts. */
template <class T>
struct TColumnType
{
	using value_type = T;
};

constexpr std::size_t CountColumns()
{
	std::size_t Num = 0;
	const TRegistryColumns<TColumnType> Columns = {};
	ForEachColumn([&Num](const FColumn&, const auto&) { ++Num; }, Columns);
	return Num;
}
inline constexpr std::size_t NumColumns = CountColumns();
static_assert(sizeof(TRegistryColumns<TColumnSpan>) == NumColumns * sizeof(TColumnSpan<char>), "a column is missing in the list");
