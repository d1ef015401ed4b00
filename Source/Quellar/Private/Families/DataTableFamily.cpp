#include "Engine/DataTable.h"
#include "Families/FamilyScan.h"
#include "Families/PropertyTypeName.h"

namespace
{
constexpr int32 MaxColumns = 10; // columns read per table, matching or not

void ReadColumns(const UScriptStruct& RowStruct, FHitSink& Hits)
{
	int32 NumRead = 0;
	for (const FProperty* Column : PropertiesOf(RowStruct))
	{
		if (NumRead++ == MaxColumns)
			return;
		const FString Name = Column->GetAuthoredName();
		const FString Type = GetPropertyTypeName(Column);
		if (Hits.Matches(Name) || Hits.Matches(Type))
			Hits.AddMatched("ColumnName", Name + ":" + Type, "Schema/Columns");
		if (Hits.IsFull())
			return;
	}
}

void ReadTable(const UDataTable& Table, FHitSink& Hits)
{
	if (const UScriptStruct* RowStruct = Table.RowStruct)
	{
		Hits.Add("RowStruct", RowStruct->GetName(), "Schema");
		ReadColumns(*RowStruct, Hits);
	}
	Hits.Add("RowCount", FString::FromInt(Table.GetRowMap().Num()), "Rows");
}
}

/** Row structure, its first columns, and the row count. Cells are never read. Loads tables. */
void SearchDataTables(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UDataTable>({.ClassText = "DataTable", .NameContainer = "DataTable"}, Params, OnDone, ReadTable);
}
