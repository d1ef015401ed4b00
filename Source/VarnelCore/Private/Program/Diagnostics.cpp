#include "Core/Program/Diagnostics.h"

#include <tuple>

namespace
{
constexpr int32 MaxNamedMembers = 8;

/** Total order: faults that differ only in the case of their file's name do not depend on who reported first either. */
bool IsBefore(const FDiagnostic& A, const FDiagnostic& B)
{
	if (const int32 Order = A.File.Compare(B.File, ESearchCase::IgnoreCase); Order != 0)
		return Order < 0;
	const auto Rest = [](const FDiagnostic& Diagnostic)
	{
		return std::tuple(Diagnostic.Line, Diagnostic.Column, Diagnostic.Text.View(), Diagnostic.File.View(),
			Diagnostic.Rule.View(), Diagnostic.Severity);
	};
	return Rest(A) < Rest(B);
}

int32 Count(const TArray<FDiagnostic>& Diagnostics, EDiagnosticSeverity Severity)
{
	const auto IsCounted = [Severity](const FDiagnostic& Diagnostic) { return Diagnostic.Severity == Severity; };
	return static_cast<int32>(std::count_if(Diagnostics.begin(), Diagnostics.end(), IsCounted));
}
}

FString FDiagnostic::ToString() const
{
	FString Out = File;
	if (Line > 0)
		Out += ":" + FString::FromInt(Line);
	if (Line > 0 && Column > 0)
		Out += ":" + FString::FromInt(Column);
	if (!Out.IsEmpty())
		Out += ": ";
	Out += Severity == EDiagnosticSeverity::Error ? "error: " : "warning: ";
	Out += Text;
	if (!Rule.IsEmpty())
		Out += " [" + Rule + "]";
	return Out;
}

FString DescribeRing(const TArray<FString>& Members)
{
	TArray<FString> Steps;
	for (int32 Index = 0; Index < Members.Num() && Index < MaxNamedMembers; ++Index)
		Steps.Add(Members[Index]);
	if (Members.Num() > MaxNamedMembers)
		Steps.Add("...");
	Steps.Add(Members[0]);
	return FString::Join(Steps, " -> ");
}

void FDiagnosticSink::Add(FDiagnostic Diagnostic)
{
	const std::lock_guard Guard(Lock);
	if (Seen.insert(Diagnostic.ToString().ToStdString()).second)
		Diagnostics.Add(std::move(Diagnostic));
}

TArray<FDiagnostic> FDiagnosticSink::GetSorted() const
{
	TArray<FDiagnostic> Sorted;
	{
		const std::lock_guard Guard(Lock);
		Sorted = Diagnostics;
	}
	Sorted.Sort(IsBefore);
	return Sorted;
}

int32 FDiagnosticSink::NumErrors() const
{
	const std::lock_guard Guard(Lock);
	return Count(Diagnostics, EDiagnosticSeverity::Error);
}

int32 FDiagnosticSink::NumWarnings() const
{
	const std::lock_guard Guard(Lock);
	return Count(Diagnostics, EDiagnosticSeverity::Warning);
}
