#include "Scan/ScanScope.h"

#include <algorithm>

void FScanScope::AddFile(std::string_view Path)
{
	if (!IsInFolder(Path))
		Files.emplace(Path);
}

void FScanScope::AddFolder(std::string_view Folder)
{
	if (IsInFolder(Folder))
		return;
	EraseBelow(Files, Folder);
	EraseBelow(Folders, Folder);
	Folders.emplace(Folder);
}

void FScanScope::Add(const FScanScope& Other)
{
	for (const std::string& Folder : Other.Folders)
		AddFolder(Folder);
	for (const std::string& File : Other.Files)
		AddFile(File);
}

void FScanScope::EraseBelow(FPaths& Paths, std::string_view Folder)
{
	const auto Begin = Paths.lower_bound(Folder);
	auto End = Begin;
	while (End != Paths.end() && End->starts_with(Folder))
		++End;
	Paths.erase(Begin, End);
}

bool FScanScope::AnyBelow(const FPaths& Paths, std::string_view Folder)
{
	const auto Found = Paths.lower_bound(Folder);
	return Found != Paths.end() && Found->starts_with(Folder);
}

/** No folder is below another, so the last one that does not come after the path is the only one that may hold it. */
bool FScanScope::IsInFolder(std::string_view Path) const
{
	const auto Above = Folders.upper_bound(Path);
	return Above != Folders.begin() && Path.starts_with(*std::prev(Above));
}

bool FScanScope::HoldsFile(std::string_view Path) const
{
	return Files.find(Path) != Files.end() || IsInFolder(Path);
}

bool FScanScope::ReachesBelow(std::string_view Folder) const
{
	return IsInFolder(Folder) || AnyBelow(Files, Folder) || AnyBelow(Folders, Folder);
}

std::vector<uint32> FScanScope::FindPackages(const FRegistryPart& Part) const
{
	const FRegistryTables& Tables = Part.Image->GetTables();
	std::vector<uint32> Packages;
	for (uint32 Root = 0; Root < Part.RootFolders.size(); ++Root)
	{
		const std::string_view RootFolder = Part.RootFolders[Root].View();
		const FRowRange Rows = FRegistryTables::RangeOf(Tables.FirstRootFiles, Root);
		const auto FindFirst = [&](std::string_view Relative)
		{
			uint32 File = Rows.Begin;
			for (uint32 Num = Rows.Num(); Num > 0;)
			{
				const uint32 Half = Num / 2;
				const bool bBelow = Part.Image->GetRelativePath(File + Half) < Relative;
				File = bBelow ? File + Half + 1 : File;
				Num = bBelow ? Num - Half - 1 : Half;
			}
			return File;
		};
		const auto TakeBelow = [&](std::string_view Relative)
		{
			uint32 File = Relative.empty() ? Rows.Begin : FindFirst(Relative);
			for (; File < Rows.End && (Relative.empty() || Part.Image->GetRelativePath(File).starts_with(Relative)); ++File)
				Packages.push_back(Tables.FilePackages[File]);
		};
		if (IsInFolder(RootFolder))
			TakeBelow({});
		for (auto Folder = Folders.upper_bound(RootFolder); Folder != Folders.end() && Folder->starts_with(RootFolder); ++Folder)
			TakeBelow(std::string_view(*Folder).substr(RootFolder.size()));
		for (auto File = Files.lower_bound(RootFolder); File != Files.end() && File->starts_with(RootFolder); ++File)
		{
			const std::string_view Relative = std::string_view(*File).substr(RootFolder.size());
			const uint32 Found = FindFirst(Relative);
			if (Found < Rows.End && Part.Image->GetRelativePath(Found) == Relative)
				Packages.push_back(Tables.FilePackages[Found]);
		}
	}
	std::sort(Packages.begin(), Packages.end());
	return Packages;
}
