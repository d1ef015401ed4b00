#pragma once

#include "Core/Program/Diagnostics.h"
#include "CoreObject/Objects/ObjectPath.h"

#include <functional>

/** A hard reference to an object of another package, as it is read; nobody has looked yet whether that object is there. */
struct FForeignReference
{
	FSoftObjectPath Target;
	FTopLevelAssetPath
		Class; // the object, or for class references the class, must be or derive from it; invalid: anything will do
	bool bIsClassReference = false;
	FDiagnostic At; // file, line and column; completed by the code that finds the reference broken
};

/** Told of every such reference while packages load, for a check of all packages; null: none listens. Must not load. */
void SetReferenceListener(std::function<void(const FForeignReference&)> Listener);
/** What SetReferenceListener was given. */
const std::function<void(const FForeignReference&)>& GetReferenceListener();
