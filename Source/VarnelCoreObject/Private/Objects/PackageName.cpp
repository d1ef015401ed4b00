#include "CoreObject/Objects/PackageName.h"

#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "Objects/ByteSet.h"
#include "Objects/ObjectLoading.h"

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
	return Unicode::SkipFoldedPrefix(LongName, Mount.Root) && LongName.starts_with('/') ? LongName.substr(1) : FStringView();
}

/** Absolute, with slashes; "" for what names no file or name. */
FString MakeFullPath(FStringView Text)
{
	std::string Path(Text);
	std::replace(Path.begin(), Path.end(), '\\', '/');
	const bool bAbsolute = Path.starts_with('/');
	if (Path.empty() || Path.ends_with('/') || (!bAbsolute && FPaths::ProjectDir().IsEmpty()))
		return {};
	return FPaths::ConvertRelativePathToFull(bAbsolute ? FString(std::move(Path)) : FPaths::Combine(FPaths::ProjectDir(), Path));
}

/** The mount with the longest folder that holds a file, or null: a mounted folder may lie inside another. */
const FPackageName::FMountPoint* FindMountOfFile(FStringView FullPath, FStringView& OutRelative)
{
	const FPackageName::FMountPoint* Found = nullptr;
	for (const FPackageName::FMountPoint& Mount : GetMounts())
	{
		FStringView Relative = FullPath;
		if (!Unicode::SkipFoldedPrefix(Relative, Mount.Folder) || (Found && Relative.size() >= OutRelative.size()))
			continue;
		Found = &Mount;
		OutRelative = Relative;
	}
	return Found;
}

bool ConvertFile(FStringView FullPath, FString& OutPackageName)
{
	FStringView Relative;
	const FPackageName::FMountPoint* const Mount = FindMountOfFile(FullPath, Relative);
	if (!Mount)
		return false;
	const FStringView Stem = ObjectLoading::GetPackageStem(Relative);
	if (Stem.empty())
		return false;
	FString LongName = Mount->Root + "/" + Stem;
	if (!FPackageName::IsValidLongPackageName(LongName))
		return false;
	OutPackageName = std::move(LongName);
	return true;
}

/** What follows the name is cut; a slash in it would make it something else. */
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

bool FPackageName::IsValidLongPackageName(FStringView Text)
{
	return Text.size() <= MaxLongPackageNameBytes && HasPackageNameForm(Text) && Text.find('/', 1) != FStringView::npos;
}

/**
 * Names may hold quotes. The path inside the form begins at a slash after a quote, and nothing before it can be mistaken for
 * that: the name of a class has no slash, and the path of a class has none after its dot.
 */
FStringView FPackageName::ExportTextPathToObjectPath(FStringView Text)
{
	const std::size_t ClassEnd = Text.starts_with('/') ? Text.find('.') : 0;
	const std::size_t Start = ClassEnd == FStringView::npos ? ClassEnd : Text.find('/', ClassEnd);
	const bool bExportForm = Start != FStringView::npos && Start > 0 && Text[Start - 1] == '\'' && Text.back() == '\'';
	return bExportForm ? Text.substr(Start, Text.size() - Start - 1) : Text;
}

bool FPackageName::TryConvertPackageFileToLongPackageName(FStringView Filename, FString& OutPackageName)
{
	const FString Full = MakeFullPath(Filename);
	return !Full.IsEmpty() && ConvertFile(Full, OutPackageName);
}

bool FPackageName::TryConvertFilenameToLongPackageName(const FString& Filename, FString& OutPackageName)
{
	const FStringView Path = ExportTextPathToObjectPath(Filename);
	const bool bAbsolute = Path.starts_with('/') || Path.starts_with('\\');
	return TryConvertPackageFileToLongPackageName(Path, OutPackageName) ||
		(bAbsolute && ConvertLongName(MakeFullPath(Path), OutPackageName));
}
