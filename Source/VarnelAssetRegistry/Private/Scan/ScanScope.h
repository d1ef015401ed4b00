#pragma once

#include "Queries/RegistrySnapshot.h"

#include <set>
#include <string>

/** Files that have changed: single ones, and all below some folders. Absolute paths, bytes of the file system; folders end with a
 * slash. */
class FScanScope
{
public:
	void AddFile(std::string_view Path);
	void AddFolder(std::string_view Folder);
	void Add(const FScanScope& Other);
	bool IsEmpty() const { return Files.empty() && Folders.empty(); }

	bool HoldsFile(std::string_view Path) const;
	/** Whether a file below the folder may be held. */
	bool ReachesBelow(std::string_view Folder) const;
	/** Packages of an image whose files are held, ascending. */
	std::vector<uint32> FindPackages(const FRegistryPart& Part) const;

private:
	using FPaths = std::set<std::string, std::less<>>;
	static void EraseBelow(FPaths& Paths, std::string_view Folder);
	static bool AnyBelow(const FPaths& Paths, std::string_view Folder);
	bool IsInFolder(std::string_view Path) const;

	FPaths Files;	// none of them in a folder of Folders
	FPaths Folders; // none below another
};
