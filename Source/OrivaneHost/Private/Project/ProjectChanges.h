#pragma once

#include "Core/Base/Map.h"
#include "Core/Files/FolderWatch.h"
#include "Core/Text/Name.h"
#include "CoreObject/Packages/PackageSource.h"

/** What changes of files mean for the open project. */
struct FProjectChanges
{
	bool bReopen = false;  // the descriptor, a script module or a plugin, or anything, may be another
	bool bPlugins = false; // plugins may have come or gone
	bool bSettings = false;
	TSet<FName> Packages;			// whose files changed
	TArray<FString> PackageFolders; // "/Game/UI/", with everything below
	// For the registry, as they were told.
	std::vector<std::string> Files;
	std::vector<std::string> Folders;

	bool HasPackages() const { return !Files.empty() || !Folders.empty(); }
	bool IsEmpty() const { return !bReopen && !bPlugins && !bSettings && !HasPackages(); }
	bool Concerns(FName Package) const;
	/** Files that mean nothing, such as texts, which are kept by their search alone, add nothing. Paths as the mount points
	 * spell them; ProjectFolder with a slash at the end. */
	void Add(const FFolderChanges& Changes, const FString& ProjectFolder, const TArray<const IPackageSource*>& Sources);

private:
	void AddFile(std::string_view Path, std::string_view ProjectFolder, const TArray<const IPackageSource*>& Sources);
	void AddFolder(std::string_view Path, std::string_view ProjectFolder);
};
