#pragma once

#include "JsonFaults.h"

class UPackage;

/**
 * Creates the objects of a package from the root of its whole file and fills them. Faults of single objects are reported and
 * skipped; false, with the package left without objects, where there is no list of objects to speak of. May load packages whose
 * classes the objects are of. Game thread.
 */
bool ReadVassetBody(const FJsonRef& Root, FJsonFaults& Faults, UPackage& Package);
