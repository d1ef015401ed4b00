#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Core/Files/FileTree.h"
#include "Scan/ScanScope.h"

/**
 * The package files below all roots of a scan, with their stamps. A file has one number over all roots: by root, in byte order of
 * the path below it. A folder that is a root itself belongs to that root alone. Immutable once listed; any thread.
 */
class FListedFiles
{
public:
	struct FRoot
	{
		FString Name;		  // "/Game"
		FString Folder;		  // absolute, with a trailing slash
		FString StoredFolder; // the same, relative to the project folder where it lies in there: an image survives that its
							  // project moves
		FFileTree Tree;
		uint32 FirstFile = 0;
	};

	/** Of a scope alone, unless it is null. */
	FListedFiles(const FRegistryScanOptions& Options, const FScanScope* Scope);

	uint32 Num() const { return NumFiles; }
	const std::vector<FRoot>& GetRoots() const { return Roots; }
	uint32 GetRootIndex(uint32 File) const;
	const FRoot& GetRoot(uint32 File) const { return Roots[GetRootIndex(File)]; }
	/** Below its root's folder; the bytes of the file system. */
	std::string_view GetRelativePath(uint32 File) const;
	const FFileStamp& GetStamp(uint32 File) const;
	/** Index of the first source that the file's name fits. */
	uint8 GetSource(uint32 File) const;
	/** End of the name, from the dot on, as long as its source says. */
	std::string_view GetExtension(uint32 File) const;
	/** For people: relative to the project folder where it lies in there. Repaired where it is not UTF-8. */
	FString GetDisplayName(uint32 File) const;

private:
	void List(FRoot& Root, const FRegistryScanOptions& Options, const FScanScope* Scope);
	void ReportUnreadableFolders(const FRoot& Root, const FRegistryScanOptions& Options) const;

	TArray<const IPackageSource*> Sources;
	std::vector<FRoot> Roots;
	uint32 NumFiles = 0;
};
