#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "Files/PathResolver.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace
{
struct FOpenedProject
{
	FString Folder;		// absolute, with a trailing slash; empty when no project is open
	FFileHandle Handle; // closed where the folder cannot be opened: then nothing below it can be
};

FOpenedProject& GetOpenedProject()
{
	static FOpenedProject& Project = *new FOpenedProject; // outlives the threads that may still read while the program ends
	return Project;
}

/** Where the file name begins. */
std::size_t FindFileName(FStringView Path)
{
	const std::size_t Slash = Path.rfind('/');
	return Slash == FStringView::npos ? 0 : Slash + 1;
}

std::vector<FStringView> SplitAtSlashes(FStringView Path)
{
	std::vector<FStringView> Segments;
	for (std::size_t Start = 0; Start <= Path.size();)
	{
		const std::size_t End = std::min(Path.find('/', Start), Path.size());
		Segments.push_back(Path.substr(Start, End - Start));
		Start = End + 1;
	}
	return Segments;
}

bool IsAbsolute(FStringView Path)
{
	return Path.starts_with('/');
}

FString GetCurrentFolder()
{
	std::error_code Error;
	return FString(std::filesystem::current_path(Error).string());
}

FString ResolveLinks(const FString& Path)
{
	char Resolved[PATH_MAX];
	return realpath(*Path, Resolved) ? FString(Resolved) : Path;
}

FFileHandle OpenFollowingLinks(const FString& Path, int Flags)
{
	return SecureOpen::MakeHandle(open(*Path, Flags | O_CLOEXEC));
}
}

FFileHandle PathResolver::Open(FStringView Path, int Flags)
{
	if (Path.empty() || Path.find('\0') != FStringView::npos)
	{
		errno = ENOENT;
		return {};
	}
	const FString Full = FPaths::ConvertRelativePathToFull(Path);
	const TOptional<FStringView> InProject = PathResolver::GetPathInProject(Full);
	if (!InProject)
		return OpenFollowingLinks(Full, Flags);
	const FFileHandle& Project = GetOpenedProject().Handle;
	if (!Project.IsOpen())
	{
		errno = ENOENT;
		return {};
	}
	return InProject->empty() ? SecureOpen::MakeHandle(openat(Project.Get(), ".", Flags | O_CLOEXEC))
							  : SecureOpen::OpenBeneath(Project.Get(), *InProject, Flags);
}

TOptional<FStringView> PathResolver::GetPathInProject(FStringView FullPath)
{
	const FStringView Folder = GetOpenedProject().Folder.View();
	if (Folder.empty() || !(FullPath.starts_with(Folder) || FullPath == Folder.substr(0, Folder.size() - 1)))
		return {};
	return FullPath.substr(std::min(Folder.size(), FullPath.size()));
}

const FString& FPaths::ProjectDir()
{
	return GetOpenedProject().Folder;
}

FString FPaths::ProjectContentDir()
{
	return ProjectDir() + "Content/";
}

FString FPaths::ProjectPluginsDir()
{
	return ProjectDir() + "Plugins/";
}

FString FPaths::ProjectSavedDir()
{
	return ProjectDir() + "Saved/";
}

FString FPaths::ProjectIntermediateDir()
{
	return ProjectDir() + "Intermediate/";
}

bool FPaths::SetProjectDir(const FString& Dir)
{
	FOpenedProject& Project = GetOpenedProject();
	Project = FOpenedProject();
	if (Dir.IsEmpty())
		return true;
	const FString Folder = ResolveLinks(ConvertRelativePathToFull(Dir));
	if (Unicode::IsValidUtf8(Folder))
		Project.Handle = OpenFollowingLinks(Folder, SecureOpen::ToPassFolder);
	else
		errno = EILSEQ;
	Project.Folder = Folder.View() == "/" ? Folder : Folder + "/";
	return Project.Handle.IsOpen();
}

FStringView FPaths::GetExtension(FStringView Path)
{
	const FStringView Name = GetCleanFilename(Path);
	const std::size_t Dot = Name.rfind('.');
	return Dot == FStringView::npos ? FStringView() : Name.substr(Dot + 1);
}

FStringView FPaths::GetCleanFilename(FStringView Path)
{
	return Path.substr(FindFileName(Path));
}

FStringView FPaths::GetBaseFilename(FStringView Path)
{
	const FStringView Name = GetCleanFilename(Path);
	return Name.substr(0, Name.rfind('.'));
}

FStringView FPaths::GetPath(FStringView Path)
{
	const std::size_t Slash = Path.rfind('/');
	return Slash == FStringView::npos ? FStringView() : Path.substr(0, Slash);
}

FString FPaths::Combine(FStringView A, FStringView B)
{
	if (A.empty() || B.empty())
		return FString(A.empty() ? B : A);
	FString Joined(A.ends_with('/') ? A.substr(0, A.size() - 1) : A);
	Joined += '/';
	Joined += B.starts_with('/') ? B.substr(1) : B;
	return Joined;
}

FString FPaths::ConvertRelativePathToFull(FStringView Path)
{
	const FString Full = IsAbsolute(Path) ? FString(Path) : Combine(GetCurrentFolder(), Path);
	std::vector<FStringView> Kept;
	for (const FStringView Segment : SplitAtSlashes(Full))
	{
		if (Segment == ".." && !Kept.empty())
			Kept.pop_back();
		else if (!Segment.empty() && Segment != "." && Segment != "..")
			Kept.push_back(Segment);
	}
	FString Result;
	for (const FStringView Segment : Kept)
		(Result += '/') += Segment;
	return Result.IsEmpty() ? FString("/") : Result;
}
