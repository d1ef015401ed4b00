#include "CoreObject/PackageName.h"

#include "ByteSet.h"
#include "Core/File.h"
#include "Core/Unicode.h"
#include "CoreObject/PackageSource.h"

#include <algorithm>

namespace
{
constexpr FRefusedBytes RefusedInPackageNames("\\:*?\"<>|.");
constexpr FStringView ScriptRoot = "/Script"; // declared and built-in classes, never files

TArray<FPackageName::FMountPoint>& GetMounts()
{
	static TArray<FPackageName::FMountPoint> Mounts;
	return Mounts;
}

/** "/A/B" without an empty segment and with characters of package names alone; a single segment will do. */
bool HasPackageNameForm(FStringView Text)
{
	return Text.starts_with('/') && !Text.ends_with('/') && Text.find("//") == FStringView::npos &&
		!RefusedInPackageNames.AreIn(Text);
}

/** What lies below a root in a long name, "" when the name lies below another one. */
FStringView BelowRoot(FStringView LongName, const FPackageName::FMountPoint& Mount)
{
	const std::size_t Length = Mount.Root.View().size();
	if (LongName.size() <= Length || LongName[Length] != '/' || !Unicode::EqualsFolded(LongName.substr(0, Length), Mount.Root))
		return {};
	return LongName.substr(Length + 1);
}

/** The mount with the longest folder that holds a file, or null: a mounted folder may lie inside another. */
const FPackageName::FMountPoint* FindMountOfFile(FStringView FullPath)
{
	const FPackageName::FMountPoint* Found = nullptr;
	for (const FPackageName::FMountPoint& Mount : GetMounts())
	{
		if (FullPath.starts_with(Mount.Folder.View()) && (!Found || Found->Folder.View().size() < Mount.Folder.View().size()))
			Found = &Mount;
	}
	return Found;
}

bool ConvertFile(FStringView FullPath, FString& OutPackageName)
{
	const FPackageName::FMountPoint* const Mount = FindMountOfFile(FullPath);
	if (!Mount)
		return false;
	const FStringView Relative = FullPath.substr(Mount->Folder.View().size());
	const IPackageSource& Source = GetVassetPackageSource();
	if (!Source.IsPackageFile(Relative))
		return false;
	FString LongName = Mount->Root + "/" + Relative.substr(0, Relative.size() - Source.GetExtensionLength());
	if (!FPackageName::IsValidLongPackageName(LongName))
		return false;
	OutPackageName = std::move(LongName);
	return true;
}

bool ConvertLongName(FStringView FullPath, FString& OutPackageName)
{
	const FStringView LongName = FullPath.substr(0, FullPath.find('.'));
	if (!FPackageName::IsValidLongPackageName(LongName) || FullPath.find('/', LongName.size()) != FStringView::npos)
		return false;
	for (const FPackageName::FMountPoint& Mount : GetMounts())
	{
		const FStringView Below = BelowRoot(LongName, Mount);
		if (Below.empty())
			continue;
		OutPackageName = Mount.Root + "/" + Below;
		return true;
	}
	return false;
}
}

bool FPackageName::MountRoot(const FString& Root, const FString& Folder)
{
	const FStringView Name = Root.View();
	if (!HasPackageNameForm(Name) || Name.find('/', 1) != FStringView::npos || Unicode::EqualsFolded(Name, ScriptRoot))
		return false;
	if (GetMounts().ContainsByPredicate([&Root](const FMountPoint& Mount) { return Mount.Root == Root; }))
		return false;
	FString FullFolder = FPaths::ConvertRelativePathToFull(Folder);
	if (!FullFolder.View().ends_with('/'))
		FullFolder += '/';
	GetMounts().Add({Root, std::move(FullFolder)});
	return true;
}

void FPackageName::UnmountAll()
{
	GetMounts().Empty();
}

const TArray<FPackageName::FMountPoint>& FPackageName::GetMountPoints()
{
	return GetMounts();
}

FString FPackageName::ObjectPathToPackageName(FStringView ObjectPath)
{
	return FString(ObjectPath.substr(0, ObjectPath.find('.')));
}

FStringView FPackageName::GetShortName(FStringView PackageName)
{
	return PackageName.substr(PackageName.rfind('/') + 1); // npos + 1 is the start
}

FStringView FPackageName::GetLongPackagePath(FStringView PackageName)
{
	const std::size_t Slash = PackageName.rfind('/');
	return Slash == FStringView::npos ? FStringView() : PackageName.substr(0, Slash);
}

bool FPackageName::IsValidLongPackageName(FStringView Text)
{
	return HasPackageNameForm(Text) && Text.find('/', 1) != FStringView::npos;
}

bool FPackageName::TryConvertFilenameToLongPackageName(const FString& Filename, FString& OutPackageName)
{
	std::string Path = Filename.ToStdString();
	std::replace(Path.begin(), Path.end(), '\\', '/');
	const bool bAbsolute = Path.starts_with('/');
	if (Path.empty() || Path.ends_with('/') || (!bAbsolute && FPaths::ProjectDir().IsEmpty()))
		return false;
	const FString Full =
		FPaths::ConvertRelativePathToFull(bAbsolute ? FString(std::move(Path)) : FPaths::Combine(FPaths::ProjectDir(), Path));
	return ConvertFile(Full, OutPackageName) || (bAbsolute && ConvertLongName(Full, OutPackageName));
}
