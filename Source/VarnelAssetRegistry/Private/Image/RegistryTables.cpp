#include "Image/RegistryTables.h"

#include "Image/RegistryColumns.h"

FRegistryTables FRegistryDraft::View() const
{
	FRegistryTables Tables;
	ForEachColumn([](const FColumn&, auto& Span, const auto& Column) { Span = Column; }, Tables, *this);
	Tables.ZoneStarts = ZoneStarts;
	return Tables;
}
