#pragma once

#include "Core/Diagnostics.h"
#include "CoreObject/Object.h"

/**
 * Lines of material instances, and of blackboards, and their parents, which cross packages: told package by package, so that none
 * has to stay in memory, and looked at in the end. Game thread.
 */
class FParentCheck
{
public:
	/** Notes the parents that a package's objects name; loads none of them. */
	void Add(const UPackage& Package);
	/** Reports each cycle of parents, and lines so long that parents are left out, once. */
	void Report(FDiagnosticSink& Diagnostics) const;

private:
	using FParents = TMap<FString, FString>; // object paths

	FParents MaterialParents;
	FParents BlackboardParents;
};
