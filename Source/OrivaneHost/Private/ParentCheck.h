#pragma once

#include "Core/Diagnostics.h"
#include "CoreObject/Object.h"

/**
 * Lines of material instances and their parents, which cross packages: told package by package, so that none has to stay in
 * memory, and looked at in the end. Game thread.
 */
class FParentCheck
{
public:
	/** Notes the parents that a package's material instances name; loads none of them. */
	void Add(const UPackage& Package);
	/** Reports each cycle of parents, and lines so long that parents are left out, once. */
	void Report(FDiagnosticSink& Diagnostics) const;

private:
	TMap<FString, FString> ParentOf; // object paths
};
