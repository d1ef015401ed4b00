#pragma once

#include "Core/Text/Name.h"

class UClass;
class UObject;

/**
 * What objects, values and types ask of those who load them. The loader lies above them and implements this
 * (Packages/Loader.cpp), so that nothing here needs to know it. Game thread, but for GetPackageStem.
 */
namespace ObjectLoading
{
/** The object at a path, loading its package if it is not in memory; null when there is none, or when it is not a Class. */
UObject* Load(UClass* Class, FStringView ObjectPath);
/** Called while a package is read, for each package that it refers to for good: by a hard reference, a class, a type. */
void NoteReferenceToPackage(FName PackageName);
/** A file's path without the extension that makes it a package, in any case; empty where its name is not a package's. Any thread.
 */
FStringView GetPackageStem(FStringView FilePath);
}
