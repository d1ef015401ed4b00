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
	if (Sources.ContainsByPredicate([Path](const IPackageSource* Source) { return Source->IsPackageFile(Path); }))
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
	Folders.emplace_back(Path);
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
	{
		if (Path.starts_with(Mount.Folder.View()) && Unicode::IsValidUtf8(Path))
			PackageFolders.Add(Mount.Root + "/" + FString(Path.substr(Mount.Folder.View().size())));
		else if (Mount.Folder.View().starts_with(Path))
			PackageFolders.Add(Mount.Root + "/");
	}
	if (!Path.starts_with(ProjectFolder))
		return;
	Path.remove_prefix(ProjectFolder.size());
	bSettings = bSettings || Path == "Config/";
	bReopen = bReopen || Path.empty() || Path == "Script/";
	bPlugins = bPlugins || Path.starts_with("Plugins/");
}
