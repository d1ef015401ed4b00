#pragma once

#include "Core/Text/String.h"

/** The forms of names and paths as they stand in project files, checked as text: nothing is interned or allocated. Any thread. */
namespace PathText
{
/** A name that an object may have: not empty, not "None", none of . : / \ " and no control character. */
bool IsObjectName(FStringView Text);
/** "/Package/Path.Asset": a valid long package name, a dot, an object name. */
bool IsTopLevelPath(FStringView Text);
/** A path inside a package: "Asset", "Asset:Sub", "Asset:Sub.Deeper". */
bool IsInnerPath(FStringView Text);
/** The path of any object: "/Package/Path.Asset", or that with ":Sub.Deeper" after it. */
bool IsObjectPath(FStringView Text);

/** Lies below "/Script", where the program and script modules declare classes: in memory or nowhere, never in a file. */
bool IsScriptPath(FStringView Path);
/** Text before the first dot of a path that is one: "/Game/A.A:Sub" gives "/Game/A". */
FStringView PackageOf(FStringView ObjectPath);
/** The segment after the last separator of an inner path: "Asset:Sub.Deeper" gives "Deeper". */
FStringView LastSegment(FStringView InnerPath);
/** The inner path of the outer: "Asset:Sub.Deeper" gives "Asset:Sub", "Asset" gives "". */
FStringView OuterOf(FStringView InnerPath);
/** Number of segments of an inner path; 1 for "Asset". */
int32 CountSegments(FStringView InnerPath);
}
