#include "Image/RegistryTables.h"

#include "Image/RegistryColumns.h"

#include <algorithm>

FRowRange FRegistryTables::FindFaults(uint32 Package) const
{
	const auto [First, End] = std::equal_range(FaultPackages.begin(), FaultPackages.end(), Package);
	return {static_cast<uint32>(First - FaultPackages.begin()), static_cast<uint32>(End - FaultPackages.begin())};
}

FDiagnostic FRegistryTables::GetFault(uint32 Fault) const
{
	return {.Line = static_cast<int32>(FaultLines[Fault]),
		.Column = static_cast<int32>(FaultColumns[Fault]),
		.Severity = static_cast<EDiagnosticSeverity>(FaultSeverities[Fault]),
		.Text = FString(GetText(EZone::Faults, FaultTexts[Fault])),
		.Rule = FString(GetText(EZone::Faults, FaultRules[Fault]))};
}

FRegistryTables FRegistryDraft::View() const
{
	FRegistryTables Tables;
	ForEachColumn([](const FColumn&, auto& Span, const auto& Column) { Span = Column; }, Tables, *this);
	Tables.ZoneStarts = ZoneStarts;
	return Tables;
}
