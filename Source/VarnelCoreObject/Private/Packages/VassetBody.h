#pragma once

#include "CoreObject/Packages/PackageSource.h"
#include "Reflection/JsonFaults.h"

/**
 * Creates the objects of a package from its whole file, whose root is an object, as IPackageReader::OpenBody does. Null, with the
 * package left without objects, where the list of objects is none; a package without such a list is empty. The document outlives
 * the body.
 */
TUniquePtr<IPackageBody> OpenVassetBody(
	const FJsonDocument& Document, const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics);
/** Visits the elements of the whole file's list of objects, as IPackageReader::VisitObjects does; faulty ones are passed over. */
bool VisitVassetObjects(const FJsonDocument& Document, const FString& FileName, UPackage* Package, FDiagnosticSink* Diagnostics,
	const FStoredObjectVisit& Visit);
