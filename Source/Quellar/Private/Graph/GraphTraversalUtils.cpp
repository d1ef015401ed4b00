#include "Quellar/Graph/GraphTraversalUtils.h"

bool GraphTraversalUtils::ShouldExpandNode(
	const IAssetRegistry& Registry, const FName& Package, int32 MaxFanout, bool bDependencies)
{
	return (bDependencies ? Registry.GetNumDependencies(Package) : Registry.GetNumReferencers(Package)) <= MaxFanout;
}

FString GraphTraversalUtils::BuildRelationString(bool bRuntime, bool bDependency)
{
	return FString(bRuntime ? "Runtime" : "Editor") + (bDependency ? "Dependency" : "Referencer");
}
