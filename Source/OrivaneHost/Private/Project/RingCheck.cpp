#include "Project/RingCheck.h"

#include "Core/Base/Map.h"
#include "Core/Base/StrongComponents.h"
#include "CoreObject/Objects/PackageName.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Engine/Material.h"
#include "Project/Project.h"

#include <vector>

namespace
{
/** How rings of one kind of objects are told. */
struct FKind
{
	EDiagnosticSeverity Severity;
	const char* Rule;
	const char* Text;
};

/** Objects by number, in ascending order of their paths, so that reports do not depend on the order of loading. */
class FLinkGraph
{
public:
	explicit FLinkGraph(const TMap<FString, TArray<FString>>& Links)
	{
		TArray<FString> Paths;
		for (const auto& [From, Targets] : Links)
			Paths.Add(From);
		Paths.Sort([](const FString& A, const FString& B) { return A < B; });
		for (const FString& Path : Paths)
			Places.Add(Path, Places.Num());
		for (const auto& [Path, Place] : Places)
			Edges.push_back(FindPlaces(*Links.Find(Path)));
		Names = std::move(Paths);
	}

	void Report(const FKind& Kind, FDiagnosticSink& Diagnostics) const
	{
		const std::vector<int32> Components = FindStrongComponents(Edges);
		TSet<int32> Looked;
		for (int32 Place = 0; Place < Names.Num(); ++Place)
		{
			if (!Looked.Add(Components[static_cast<std::size_t>(Place)]))
				continue;
			const std::vector<int32> Ring = FindRing(Edges, Components, Place);
			if (!Ring.empty())
				ReportRing(Kind, Ring, Diagnostics);
		}
	}

private:
	/** Of those that lead anywhere themselves: others close no ring. */
	std::vector<int32> FindPlaces(const TArray<FString>& Targets) const
	{
		std::vector<int32> Found;
		for (const FString& Target : Targets)
		{
			if (const int32* Place = Places.Find(Target))
				Found.push_back(*Place);
		}
		return Found;
	}

	void ReportRing(const FKind& Kind, const std::vector<int32>& Ring, FDiagnosticSink& Diagnostics) const
	{
		TArray<FString> Members;
		for (const int32 Place : Ring)
			Members.Add(Names[Place]);
		const FName Package(FPackageName::ObjectPathToPackageName(Members[0]));
		Diagnostics.Add({FProject::GetPackageFileName(Package), 0, 0, Kind.Severity,
			FString(Kind.Text) + " lead back to it: " + DescribeRing(Members), Kind.Rule});
	}

	TArray<FString> Names;
	TMap<FString, int32> Places;
	std::vector<std::vector<int32>> Edges;
};

void AddLink(TMap<FString, TArray<FString>>& Links, const UObject& From, const FObjectPtr& To)
{
	if (!To.IsNull())
		Links.FindOrAdd(From.GetPathName()).Add(To.GetPath().ToString());
}
}

void FRingCheck::Add(const UPackage& Package)
{
	TArray<UObject*> Objects;
	GetObjectsWithOuter(&Package, Objects, true);
	for (const UObject* Object : Objects)
	{
		if (const auto* Instance = Cast<UMaterialInstance>(Object))
			AddLink(MaterialParents, *Instance, Instance->Parent);
		else if (const auto* Blackboard = Cast<UBlackboardData>(Object))
			AddLink(BlackboardParents, *Blackboard, Blackboard->Parent);
		else if (const auto* Tree = Cast<UBehaviorTree>(Object))
		{
			for (const UBTTask_RunBehavior* Task : Tree->GetRunBehaviorTasks())
				AddLink(SubTrees, *Tree, Task->BehaviorAsset);
		}
	}
}

void FRingCheck::Report(FDiagnosticSink& Diagnostics) const
{
	constexpr EDiagnosticSeverity Error = EDiagnosticSeverity::Error;
	FLinkGraph(MaterialParents).Report({Error, "parent-cycle", "parents of a material instance"}, Diagnostics);
	FLinkGraph(BlackboardParents).Report({Error, "parent-cycle", "parents of a blackboard"}, Diagnostics);
	FLinkGraph(SubTrees).Report({EDiagnosticSeverity::Warning, "subtree-cycle", "trees that a behaviour tree runs"}, Diagnostics);
}
