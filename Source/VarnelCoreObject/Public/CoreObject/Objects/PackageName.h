#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/**
 * Long package names ("/Game/UI/W_Menu") and the folders they are mounted from. Mounting happens while a project opens, on the
 * game thread; queries from any thread afterwards.
 */
namespace FPackageName
{
/** A root of package names with its folder. */
struct FMountPoint
{
	FString Root;	// "/Game", without a trailing slash
	FString Folder; // absolute, with a trailing slash
};

/** False for a root that is mounted already, which keeps its first folder, for "/Script" and for what is not a single name after
 * a slash. */
bool MountRoot(const FString& Root, const FString& Folder);
void UnmountAll();
const TArray<FMountPoint>& GetMountPoints();

/** Text before the first ".", or all of it: "/Game/A.A" gives "/Game/A". */
FString ObjectPathToPackageName(FStringView ObjectPath);
/** Text after the last "/": "/Game/UI/W_Menu" gives "W_Menu". */
FStringView GetShortName(FStringView PackageName);
/** Longest long package name, bytes: what a path may take on the systems this runs on. */
constexpr std::size_t MaxLongPackageNameBytes = 4096;
/** "/Root/..." with a segment after the root, no empty segment, none of \ : * ? " < > | . and no control character, not longer
 * than MaxLongPackageNameBytes. */
bool IsValidLongPackageName(FStringView Text);

/** The path inside the export form Class'/Game/A.A', where the class may be a path too; anything else as it is. */
FStringView ExportTextPathToObjectPath(FStringView Text);

/**
 * The package of a file with a package's extension below a mounted folder: an absolute path, or one relative to the project
 * folder, with slashes or backslashes, in any case. The file need not exist. ".." never leads out of a mounted folder.
 */
bool TryConvertPackageFileToLongPackageName(FStringView Filename, FString& OutPackageName);
/**
 * As above; accepts also a long package name or object path below any mounted root (what follows the name is cut), plain or in
 * the export form. The package need not exist. False for anything else.
 */
bool TryConvertFilenameToLongPackageName(const FString& Filename, FString& OutPackageName);
}
