#include "Engine/DataTable.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "CoreObject/Reflection/StructValue.h"

namespace
{
constexpr FStringView RowsKey = "Rows";

/** Cells are never used, so the faults in them are warnings. */
void CheckCells(const FJsonRef& Rows, const UScriptStruct& RowStruct, FPropertyReader& Reader)
{
	const FStructValue Row(RowStruct);
	const EDiagnosticSeverity Before = Reader.SetWorstSeverity(EDiagnosticSeverity::Warning);
	for (const FJsonRef Cells : Rows)
		Reader.ReadProperties(RowStruct, Row.Get(), Cells, nullptr);
	Reader.SetWorstSeverity(Before);
}
}

UClass* UDataTable::StaticClass()
{
	static UClass* const Class = TClassBuilder<UDataTable>("/Script/Engine.DataTable", UObject::StaticClass())
									 .Member("RowStruct", &UDataTable::RowStruct)
									 .Build();
	return Class;
}

bool UDataTable::ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader)
{
	if (Key != RowsKey)
		return false;
	if (!Value.IsObject())
	{
		Reader.Report(Value, EDiagnosticSeverity::Error, "property-type", "'Rows' is an object, row name to row");
		return true;
	}
	for (const FJsonRef Row : Value)
		if (!RowNames.Add(FName(Row.Key())))
			Reader.Report(
				Row, EDiagnosticSeverity::Warning, "repeated-row", "the table has a row '" + FString(Row.Key()) + "' already");
	return true;
}

void UDataTable::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	const FJsonRef Rows = Reader.HasListener() ? Json.Find(RowsKey) : FJsonRef();
	if (!Rows || !Rows.IsObject())
		return;
	const UScriptStruct* const Struct = RowStruct;
	if (Struct && Struct->IsLinked())
		CheckCells(Rows, *Struct, Reader);
}
