#include "Image/TableChecks.h"

#include "Image/RegistryColumns.h"

#include <algorithm>
#include <type_traits>

namespace
{
/** Checks columns against the numbers of rows that the tables have. */
class FColumnChecks
{
public:
	explicit FColumnChecks(const FRegistryTables& InTables);
	bool AreColumnsSound() const;

private:
	template <class TElement>
	bool IsSound(const FColumn& Column, std::span<const TElement> Elements) const;
	template <class TElement>
	bool AreRanges(const FColumn& Column, std::span<const TElement> First) const;
	std::size_t Num(ERows Rows) const { return NumRows[static_cast<std::size_t>(Rows)]; }

	const FRegistryTables& Tables;
	std::array<std::size_t, NumRowKinds> NumRows = {};
};

FColumnChecks::FColumnChecks(const FRegistryTables& InTables) : Tables(InTables)
{
	std::array<bool, NumRowKinds> IsKnown = {};
	for (std::size_t Zone = 0; Zone < NumZones; ++Zone)
	{
		NumRows[Zone] = Tables.NumTexts(static_cast<EZone>(Zone));
		IsKnown[Zone] = true;
	}
	ForEachColumn(
		[&](const FColumn& Column, const auto& Elements)
		{
			const auto Rows = static_cast<std::size_t>(Column.Rows);
			const std::size_t NumExtra = Column.HasEnd() ? 1 : 0;
			if (!std::exchange(IsKnown[Rows], true))
				NumRows[Rows] = std::max(Elements.size(), NumExtra) - NumExtra;
		},
		Tables);
}

bool FColumnChecks::AreColumnsSound() const
{
	bool bSound = true;
	ForEachColumn([&](const FColumn& Column, const auto& Elements) { bSound = bSound && IsSound(Column, Elements); }, Tables);
	return bSound;
}

template <class T>
bool IsStrictlyAscending(std::span<const T> Column)
{
	bool bAscending = true; // no early exit: sound columns are the rule, and this loop runs many elements at once
	for (std::size_t Index = 1; Index < Column.size(); ++Index)
		bAscending &= Column[Index - 1] < Column[Index];
	return bAscending;
}

template <class T>
bool IsAscending(std::span<const T> Column)
{
	bool bAscending = true;
	for (std::size_t Index = 1; Index < Column.size(); ++Index)
		bAscending &= Column[Index - 1] <= Column[Index];
	return bAscending;
}

template <class T>
bool AreBelow(std::span<const T> Ids, std::size_t Limit)
{
	bool bBelow = true;
	for (const T Id : Ids)
		bBelow &= Id < Limit;
	return bBelow;
}

template <class T>
bool AreBelowOrNone(std::span<const T> Ids, std::size_t Limit)
{
	bool bBelow = true;
	for (const T Id : Ids)
		bBelow &= (Id < Limit) | (Id == NoId);
	return bBelow;
}

template <class TElement>
bool FColumnChecks::AreRanges(const FColumn& Column, std::span<const TElement> First) const
{
	return First.size() == Num(Column.Rows) + 1 && First.front() == 0 && First.back() == Num(Column.Into) &&
		(Column.Kind == EColumn::Ranges ? IsAscending(First) : IsStrictlyAscending(First));
}

template <class TElement>
bool FColumnChecks::IsSound(const FColumn& Column, std::span<const TElement> Elements) const
{
	if (!Column.HasEnd() && Column.Rows != ERows::Some && Elements.size() != Num(Column.Rows))
		return false;
	if constexpr (std::is_unsigned_v<TElement>)
	{
		switch (Column.Kind)
		{
			case EColumn::Values:
				return true;
			case EColumn::Ascending:
				return IsStrictlyAscending(Elements);
			case EColumn::Ids:
				return AreBelow(Elements, Num(Column.Into));
			case EColumn::IdsOrNone:
				return AreBelowOrNone(Elements, Num(Column.Into));
			case EColumn::AscendingIds:
				return AreBelow(Elements, Num(Column.Into)) && IsStrictlyAscending(Elements);
			case EColumn::Ranges:
			case EColumn::Starts:
				return AreRanges(Column, Elements);
			case EColumn::FoldedStarts:
				return Elements.empty() ? AreRanges(Column, Tables.TextStarts) : AreRanges(Column, Elements);
		}
	}
	return Column.Kind == EColumn::Values;
}

bool AreZonesSound(const FRegistryTables& Tables)
{
	return Tables.ZoneStarts.front() == 0 && std::is_sorted(Tables.ZoneStarts.begin(), Tables.ZoneStarts.end()) &&
		std::size_t{Tables.ZoneStarts.back()} + 1 == Tables.TextStarts.size();
}

/** Walks from every class up to the first one that is known to end. */
bool HasNoCircle(std::span<const uint32> Parents)
{
	enum EState : uint8
	{
		Unseen,
		OnPath,
		Done,
	};
	std::vector<uint8> States(Parents.size(), Unseen);
	for (uint32 Class = 0; Class < Parents.size(); ++Class)
	{
		uint32 At = Class;
		for (; At != NoId && States[At] == Unseen; At = Parents[At])
			States[At] = OnPath;
		if (At != NoId && States[At] == OnPath)
			return false;
		for (At = Class; At != NoId && States[At] == OnPath; At = Parents[At])
			States[At] = Done;
	}
	return true;
}

/** Every class is listed once at most, and below its parent: the lists then have no cycle when the parents have none. */
bool AreChildrenSound(const FRegistryTables& Tables)
{
	for (uint32 Class = 0; Class < Tables.ClassParents.size(); ++Class)
	{
		const FRowRange Children = FRegistryTables::RangeOf(Tables.FirstClassChildren, Class);
		for (uint32 Child = Children.Begin; Child < Children.End; ++Child)
		{
			const bool bRepeated = Child > Children.Begin && Tables.ClassChildren[Child - 1] >= Tables.ClassChildren[Child];
			if (bRepeated || Tables.ClassParents[Tables.ClassChildren[Child]] != Class)
				return false;
		}
	}
	return true;
}

/** What no row of the list of columns says. */
bool AreColumnsSoundTogether(const FRegistryTables& Tables)
{
	return Tables.PackageFolders.size() <= Tables.NumTexts(EZone::Nodes) &&
		(Tables.Uses.empty() || !Tables.IndexedAssets.empty()) && HasNoCircle(Tables.ClassParents) && AreChildrenSound(Tables);
}
}

// What the lists of trigrams hold is checked where they are read: looking into each would make opening slower than searching.
bool AreTablesSound(const FRegistryTables& Tables)
{
	return AreZonesSound(Tables) && FColumnChecks(Tables).AreColumnsSound() && AreColumnsSoundTogether(Tables);
}
