#pragma once

#include "Core/Base/Containers.h"
#include "Core/Program/Log.h"
#include "Core/Text/String.h"

// For callers of these helpers, which write nothing themselves.
DECLARE_LOG_CATEGORY(LogClassLookupUtils);
DECLARE_LOG_CATEGORY(LogEditorClassViewer);

/** Blueprints and their native parent classes. Game thread. */
namespace OrivaneClassLookupUtils
{
/**
 * Fills the list with the object paths of Blueprints whose native parent is the class; returns their number. Blueprints without
 * the registry tag are loaded to look, unless bRegistryOnly is set; a tag must name the very class, a loaded Blueprint's parent
 * may also derive from it.
 */
int32 FindBlueprintsByNativeParent(const FString& NativeParentClassPath, TArray<FString>& OutBlueprintPaths, bool bRegistryOnly);
/** The native parent tag of one Blueprint; false (and Out unchanged) without one. */
bool GetBlueprintNativeParent(const FString& BlueprintObjectPath, FString& OutNativeParentClassPath);
/** Strips the export form Class'...'; empty when the rest is not an object path. */
FString NormalizeClassPath(const FString& In);
}
