#pragma once

#include "Core/Json/JsonDocument.h"
#include "Core/Text/Name.h"
#include "CoreObject/Packages/PackageSource.h"

class FPropertyReader;

/** An object as the file of its package lists it, whether one can be made of it or not. Good as long as it is visited. */
struct FStoredObject
{
	std::string_view Path;	// inside the package: "Asset", "Asset:Sub.Deeper"
	std::string_view Class; // class path as written
	FJsonRef ClassPlace;	// where that stands, for reports
	FJsonRef Properties;	// an object; empty where none are stored
};

/**
 * Reads the file of a package again, for what objects do not keep (the cells of tables) and for what no object could be made of.
 * Visits in file order until Visit returns false; the reader reads values, and reports faults in them to Diagnostics (may be
 * null). Makes no objects and loads nothing, but for what Visit asks for. False, and a diagnostic, where the file cannot be read
 * or its list of objects is none. Game thread.
 */
bool VisitStoredObjects(FName PackageName, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit);

/**
 * Packages that are loaded from files while it lives are unloaded when it goes, whatever loaded them: for a look that must leave
 * memory as it was, since some answers tell what is there. Nobody may hold their objects then. Those that were in memory before
 * stay. Game thread; not while a package is being loaded, nor while packages are dropped or evicted.
 */
class FTemporaryLoads
{
public:
	FTemporaryLoads();
	~FTemporaryLoads();
	FTemporaryLoads(const FTemporaryLoads&) = delete;
	FTemporaryLoads& operator=(const FTemporaryLoads&) = delete;

private:
	std::size_t NumBefore;
};
