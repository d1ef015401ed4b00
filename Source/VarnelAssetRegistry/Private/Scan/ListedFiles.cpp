#include "Scan/ListedFiles.h"

#include "Core/Base/Assert.h"
#include "Image/FolderText.h"

#include <algorithm>

FListedFiles::FListedFiles(const FRegistryScanOptions& Options, const FScanScope* Scope) : Sources(Options.Sources)
{
	checkf(Sources.Num() <= UINT8_MAX, "an image keeps the source of a file in one byte");
	const FString Project = FolderText::WithTrailingSlash(Options.ProjectFolder);
	for (const FRegistryRoot& Given : Options.Roots)
	{
		FRoot& Root = Roots.emplace_back();
		Root.Name = Given.Root;
		Root.Folder = FolderText::WithTrailingSlash(Given.Folder);
		const bool bInside = FolderText::IsInside(Root.Folder, Project);
		Root.StoredFolder = bInside ? FString(Root.Folder.View().substr(Project.View().size())) : Root.Folder;
	}
	for (FRoot& Root : Roots)
		List(Root, Options, Scope);
}

void FListedFiles::List(FRoot& Root, const FRegistryScanOptions& Options, const FScanScope* Scope)
{
	Root.FirstFile = NumFiles;
	if (Scope && !Scope->ReachesBelow(Root.Folder.View()))
		return;
	const std::string Folder = Root.Folder.ToStdString();
	const auto IsAnotherRoot = [this](std::string_view Path)
	{ return std::any_of(Roots.begin(), Roots.end(), [Path](const FRoot& Other) { return Other.Folder.View() == Path; }); };
	FFileTreeOptions TreeOptions;
	TreeOptions.KeepFile = [&](std::string_view Path)
	{
		return Sources.ContainsByPredicate([Path](const IPackageSource* Source) { return Source->IsPackageFile(Path); }) &&
			(!Scope || Scope->HoldsFile(Folder + std::string(Path)));
	};
	TreeOptions.EnterFolder = [&](std::string_view Path)
	{
		const std::string Below = Folder + std::string(Path) + '/';
		return !IsAnotherRoot(Below) && (!Scope || Scope->ReachesBelow(Below));
	};
	TreeOptions.bWithStamps = true;
	TreeOptions.NumThreads = Options.NumThreads;
	TreeOptions.Stop = Options.Stop;
	Root.Tree = FFileTree::List(Root.Folder, TreeOptions);
	NumFiles += static_cast<uint32>(Root.Tree.Num());
	ReportUnreadableFolders(Root, Options);
}

void FListedFiles::ReportUnreadableFolders(const FRoot& Root, const FRegistryScanOptions& Options) const
{
	for (const std::string& Folder : Root.Tree.GetUnreadableFolders())
	{
		if (Options.Diagnostics)
			Options.Diagnostics->Add({.File = FString::FromExternal(Root.StoredFolder.ToStdString() + Folder),
				.Text = "the folder cannot be read, so its packages are missing",
				.Rule = "unreadable-folder"});
	}
}

uint32 FListedFiles::GetRootIndex(uint32 File) const
{
	const auto Above = std::upper_bound(
		Roots.begin(), Roots.end(), File, [](uint32 Number, const FRoot& Root) { return Number < Root.FirstFile; });
	return static_cast<uint32>(Above - Roots.begin()) - 1;
}

std::string_view FListedFiles::GetRelativePath(uint32 File) const
{
	const FRoot& Root = GetRoot(File);
	return Root.Tree.GetRelativePath(static_cast<int32>(File - Root.FirstFile));
}

const FFileStamp& FListedFiles::GetStamp(uint32 File) const
{
	const FRoot& Root = GetRoot(File);
	return Root.Tree.GetStamp(static_cast<int32>(File - Root.FirstFile));
}

uint8 FListedFiles::GetSource(uint32 File) const
{
	const std::string_view Path = GetRelativePath(File);
	uint8 Index = 0;
	while (!Sources[Index]->IsPackageFile(Path))
		++Index;
	return Index;
}

std::string_view FListedFiles::GetExtension(uint32 File) const
{
	const std::string_view Path = GetRelativePath(File);
	const std::size_t Length = Sources[GetSource(File)]->GetExtensionLength();
	return Path.substr(Path.size() - std::min(Path.size(), Length));
}

FString FListedFiles::GetDisplayName(uint32 File) const
{
	return FString::FromExternal(GetRoot(File).StoredFolder.ToStdString() + std::string(GetRelativePath(File)));
}
