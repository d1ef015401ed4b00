#pragma once

#include "Core/Base/Map.h"
#include "Core/Program/Diagnostics.h"
#include "CoreObject/Objects/Object.h"

/**
 * Rings that cross packages and that no load notices: of material instances and their parents, of blackboards and theirs, of
 * behaviour trees that run one another. Told package by package, so that none has to stay in memory, and looked at in the end.
 * Game thread.
 */
class FRingCheck
{
public:
	/** Notes what a package's objects refer to. Loads none of it, but packages that hold nodes of a tree. */
	void Add(const UPackage& Package);
	/** Reports each group of objects that lead to one another once, by one ring in it, at the first object of that ring. */
	void Report(FDiagnosticSink& Diagnostics) const;

private:
	using FLinks = TMap<FString, TArray<FString>>; // object paths

	FLinks MaterialParents;
	FLinks BlackboardParents;
	FLinks SubTrees;
};
