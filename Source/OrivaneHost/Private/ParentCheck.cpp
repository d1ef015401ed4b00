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
	constexpr int32 MaxParents = UMaterialInterface::MaxParents;
	TMap<FString, int32> NumParents; // of those that are settled; a cycle counts as none
	for (const auto& [First, FirstParent] : ParentOf)
	{
		TSet<FString> Met;
		TArray<const FString*> Line;
		const FString* Next = &First;
		for (; Next && !NumParents.Contains(*Next) && Met.Add(*Next); Next = ParentOf.Find(*Next))
			Line.Add(Next);
		const bool bCycle = Next && Met.Contains(*Next);
		if (bCycle)
			ReportCycle(*Next, ParentOf, Diagnostics);
		const int32* Above = Next ? NumParents.Find(*Next) : nullptr;
		int32 Count = Above ? *Above + 1 : 1;
		for (; !Line.IsEmpty(); ++Count)
		{
			const FString& Instance = *Line.Pop();
			NumParents.Add(Instance, bCycle ? 0 : Count);
			if (!bCycle && Count == MaxParents + 1)
				ReportAt(Instance, Diagnostics, EDiagnosticSeverity::Warning, "long-parents",
					FString::Printf(
						"a material instance has more than %d parents above it; parameters of those beyond are not seen",
						MaxParents));
		}
	}
}
