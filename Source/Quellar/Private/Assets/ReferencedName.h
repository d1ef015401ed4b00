#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/**
 * The name of the object that a reference of Holder leads to; None where there is none, or none of that native class. Loads
 * nothing, and does not depend on what is in memory beside Holder. What is there is
 *   below /Script        the classes and structures of the program and of script modules,
 *   in Holder's package  its objects,
 *   in other packages    the assets that the registry lists, where their class is declared, and the classes of Blueprints among
 *                        them. Objects inside assets that the registry does not list cannot be known, and count as missing.
 */
FName FindReferencedName(const FObjectPtr& Reference, const UObject& Holder, const UClass& Class);
