#include "ParentCheck.h"

#include "CoreObject/PackageName.h"
#include "Engine/Blackboard.h"
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

/** What is there to say about lines of one class. */
struct FKind
{
	const char* Name;
	int32 MaxParents; // those beyond are not seen
};

void ReportCycle(const FKind& Kind, const FString& Start, const TMap<FString, FString>& ParentOf, FDiagnosticSink& Diagnostics)
{
	FString Line = Start;
	const FString* Parent = ParentOf.Find(Start);
	for (int32 NumNamed = 1; !(*Parent == Start); Parent = ParentOf.Find(*Parent), ++NumNamed)
		if (NumNamed <= MaxNamed)
			Line += FString(" -> ") + (NumNamed < MaxNamed ? Parent->View() : "...");
	ReportAt(Start, Diagnostics, EDiagnosticSeverity::Error, "parent-cycle",
		FString("parents of a ") + Kind.Name + " lead back to it: " + Line + " -> " + Start);
}

void ReportLongLine(const FKind& Kind, const FString& Object, FDiagnosticSink& Diagnostics)
{
	ReportAt(Object, Diagnostics, EDiagnosticSeverity::Warning, "long-parents",
		FString::Printf(
			"a %s has more than %d parents above it; parameters of those beyond are not seen", Kind.Name, Kind.MaxParents));
}

void ReportLines(const FKind& Kind, const TMap<FString, FString>& ParentOf, FDiagnosticSink& Diagnostics)
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
			ReportCycle(Kind, *Next, ParentOf, Diagnostics);
		int32 Count = (Above ? *Above : -1) + Line.Num();
		for (const FString& Object : Line)
		{
			NumParents.Add(Object, bCycle ? 0 : Count);
			if (!bCycle && Count-- == Kind.MaxParents + 1)
				ReportLongLine(Kind, Object, Diagnostics);
		}
	}
}
}

void FParentCheck::Add(const UPackage& Package)
{
	TArray<UObject*> Objects;
	GetObjectsWithOuter(&Package, Objects, true);
	for (const UObject* Object : Objects)
	{
		if (const auto* Instance = Cast<UMaterialInstance>(Object); Instance && !Instance->Parent.IsNull())
			MaterialParents.Add(Instance->GetPathName(), Instance->Parent.GetPath().ToString());
		else if (const auto* Blackboard = Cast<UBlackboardData>(Object); Blackboard && !Blackboard->Parent.IsNull())
			BlackboardParents.Add(Blackboard->GetPathName(), Blackboard->Parent.GetPath().ToString());
	}
}

void FParentCheck::Report(FDiagnosticSink& Diagnostics) const
{
	ReportLines({.Name = "material instance", .MaxParents = UMaterialInterface::MaxParents}, MaterialParents, Diagnostics);
	ReportLines({.Name = "blackboard", .MaxParents = INT32_MAX - 1}, BlackboardParents, Diagnostics);
}
