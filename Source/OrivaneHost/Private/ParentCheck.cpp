#include "ParentCheck.h"

#include "CoreObject/PackageName.h"
#include "Engine/Material.h"
#include "Project.h"

namespace
{
constexpr int32 MaxNamed = 8; // members of a cycle that are named

void ReportAt(const FString& Object, FDiagnosticSink& Diagnostics, EDiagnosticSeverity Severity, const char* Rule, FString Text)
{
	const FName Package(FPackageName::ObjectPathToPackageName(Object));
	Diagnostics.Add({FProject::GetPackageFileName(Package), 0, 0, Severity, std::move(Text), Rule});
}

void ReportCycle(const FString& Start, const TMap<FString, FString>& ParentOf, FDiagnosticSink& Diagnostics)
{
	FString Line = Start;
	const FString* Parent = ParentOf.Find(Start);
	for (int32 NumNamed = 1; !(*Parent == Start); Parent = ParentOf.Find(*Parent), ++NumNamed)
		if (NumNamed <= MaxNamed)
			Line += FString(" -> ") + (NumNamed < MaxNamed ? Parent->View() : "...");
	ReportAt(Start, Diagnostics, EDiagnosticSeverity::Error, "parent-cycle",
		"parents of a material instance lead back to it: " + Line + " -> " + Start);
}

void ReportLongLine(const FString& Instance, FDiagnosticSink& Diagnostics)
{
	ReportAt(Instance, Diagnostics, EDiagnosticSeverity::Warning, "long-parents",
		FString::Printf("a material instance has more than %d parents above it; parameters of those beyond are not seen",
			UMaterialInterface::MaxParents));
}
}

void FParentCheck::Add(const UPackage& Package)
{
	TArray<UObject*> Objects;
	GetObjectsWithOuter(&Package, Objects, true);
	for (const UObject* Object : Objects)
		if (const auto* Instance = Cast<UMaterialInstance>(Object); Instance && !Instance->Parent.IsNull())
			ParentOf.Add(Instance->GetPathName(), Instance->Parent.GetPath().ToString());
}

void FParentCheck::Report(FDiagnosticSink& Diagnostics) const
{
	TMap<FString, int32> NumParents; // of objects that are settled; in a cycle, none
	for (const auto& [First, FirstParent] : ParentOf)
	{
		TSet<FString> Line;
		const FString* Next = &First;
		while (Next && !NumParents.Contains(*Next) && Line.Add(*Next))
			Next = ParentOf.Find(*Next);
		const int32* Above = Next ? NumParents.Find(*Next) : nullptr;
		const bool bCycle = Next && !Above;
		if (bCycle)
			ReportCycle(*Next, ParentOf, Diagnostics);
		int32 Count = (Above ? *Above : -1) + Line.Num();
		for (const FString& Object : Line)
		{
			NumParents.Add(Object, bCycle ? 0 : Count);
			if (!bCycle && Count-- == UMaterialInterface::MaxParents + 1)
				ReportLongLine(Object, Diagnostics);
		}
	}
}
