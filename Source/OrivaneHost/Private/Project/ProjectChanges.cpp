#include "Project/ProjectChanges.h"

#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "Project/ProjectFiles.h"

bool FProjectChanges::Concerns(FName Package) const
{
	if (Packages.Contains(Package))
		return true;
	const FString Name = PackageFolders.IsEmpty() ? FString() : Package.ToString();
	return PackageFolders.ContainsByPredicate([&](const FString& Folder) { return Name.StartsWith(Folder); });
}

void FProjectChanges::Add(
	const FFolderChanges& Changes, const FString& ProjectFolder, const TArray<const IPackageSource*>& Sources)
{
	bReopen = bReopen || Changes.bAll;
	for (const std::string& File : Changes.Files)
		AddFile(File, ProjectFolder, Sources);
	for (const std::string& Folder : Changes.Folders)
		AddFolder(Folder, ProjectFolder);
}

void FProjectChanges::AddFile(std::string_view Path, std::string_view ProjectFolder, const TArray<const IPackageSource*>& Sources)
{
	FString Package;
	const auto IsAbove = [Path](const FPackageName::FMountPoint& Mount) { return Path.starts_with(Mount.Folder.View()); };
	const auto IsPackage = [Path](const IPackageSource* Source) { return Source->IsPackageFile(Path); };
	if (FPackageName::GetMountPoints().ContainsByPredicate(IsAbove) && Sources.ContainsByPredicate(IsPackage))
	{
		Files.emplace_back(Path);
		if (Unicode::IsValidUtf8(Path) && FPackageName::TryConvertPackageFileToLongPackageName(Path, Package))
			Packages.Add(FName(Package));
	}
	if (!Path.starts_with(ProjectFolder))
		return;
	Path.remove_prefix(ProjectFolder.size());
	bSettings = bSettings || ProjectFiles::IsSettings(Path);
	bReopen = bReopen || ProjectFiles::IsDescriptor(Path) || ProjectFiles::IsScriptModule(Path) || ProjectFiles::IsPlugin(Path);
}

void FProjectChanges::AddFolder(std::string_view Path, std::string_view ProjectFolder)
{
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
	{
		const bool bInside = Path.starts_with(Mount.Folder.View());
		if (!bInside && !Mount.Folder.View().starts_with(Path))
			continue;
		Folders.emplace_back(Path);
		if (!bInside)
			PackageFolders.Add(Mount.Root + "/");
		else if (Unicode::IsValidUtf8(Path))
			PackageFolders.Add(Mount.Root + "/" + FString(Path.substr(Mount.Folder.View().size())));
	}
	if (!Path.starts_with(ProjectFolder))
		return;
	Path.remove_prefix(ProjectFolder.size());
	bSettings = bSettings || Path == "Config/";
	bReopen = bReopen || Path.empty() || Path == "Script/";
	bPlugins = bPlugins || Path.starts_with("Plugins/");
}
