#include "Core/Files/File.h"

#include "Core/Files/WriteFile.h"
#include "Core/Text/TextDecoder.h"
#include "Core/Text/Unicode.h"
#include "Files/PathResolver.h"
#include "Files/SecureOpen.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
bool MatchesEveryName(FStringView Wildcard)
{
	return Wildcard == "*" || Wildcard == "*.*";
}

/** Both folded. "*" stands for any text, "?" for one code point. On a mismatch only the last star can give way, so this takes no
 * recursion. */
bool MatchesWildcard(FStringView Name, FStringView Wildcard)
{
	std::size_t At = 0, Pattern = 0, AfterStar = FStringView::npos, StarTo = 0;
	while (At < Name.size())
	{
		if (Pattern < Wildcard.size() && Wildcard[Pattern] == '*')
		{
			AfterStar = ++Pattern;
			StarTo = At;
		}
		else if (Pattern < Wildcard.size() && (Wildcard[Pattern] == '?' || Wildcard[Pattern] == Name[At]))
		{
			if (Wildcard[Pattern++] == '?')
				Unicode::DecodeNext(Name, At);
			else
				++At;
		}
		else if (AfterStar != FStringView::npos)
		{
			Pattern = AfterStar;
			Unicode::DecodeNext(Name, StarTo);
			At = StarTo;
		}
		else
			return false;
	}
	return Wildcard.find_first_not_of('*', Pattern) == FStringView::npos;
}

class FFileManager final : public IFileManager
{
public:
	void FindFilesRecursive(TArray<FString>& OutFiles, const FString& Root, const FString& Wildcard) override;
	bool FileExists(const FString& Path) override;
	bool DirectoryExists(const FString& Path) override;
	bool MakeDirectory(const FString& Path) override;
};

void FFileManager::FindFilesRecursive(TArray<FString>& OutFiles, const FString& Root, const FString& Wildcard)
{
	const bool bEvery = MatchesEveryName(Wildcard);
	const std::string Folded = Unicode::Fold(Wildcard);
	FFileTreeOptions Options;
	Options.KeepFile = [&](std::string_view RelativePath)
	{
		return Unicode::IsValidUtf8(RelativePath) &&
			(bEvery || MatchesWildcard(Unicode::Fold(FPaths::GetCleanFilename(RelativePath)), Folded));
	};
	const FFileTree Tree = FFileTree::List(Root, Options);
	const FString Folder = FPaths::ConvertRelativePathToFull(Root);
	OutFiles.Reset();
	OutFiles.Reserve(Tree.Num());
	for (int32 Index = 0; Index < Tree.Num(); ++Index)
		OutFiles.Add(FPaths::Combine(Folder, Tree.GetRelativePath(Index)));
}

bool FFileManager::FileExists(const FString& Path)
{
	return SecureOpen::IsRegularFile(PathResolver::Open(Path, SecureOpen::ToLookAt));
}

bool FFileManager::DirectoryExists(const FString& Path)
{
	return PathResolver::Open(Path, SecureOpen::ToPassFolder).IsOpen();
}

bool FFileManager::MakeDirectory(const FString& Path)
{
	const FString Full = FPaths::ConvertRelativePathToFull(Path);
	const FStringView Text = Full.View();
	// The project's own folder is never made: where it is gone, so is the project.
	const TOptional<FStringView> InProject = PathResolver::GetPathInProject(Text);
	for (std::size_t Start = InProject ? Text.size() - InProject->size() : 1; Start < Text.size() && !DirectoryExists(Full);)
	{
		const std::size_t End = std::min(Text.find('/', Start), Text.size());
		const FString Parent(Text.substr(0, Start));
		const FString Name(Text.substr(Start, End - Start));
		const FFileHandle Folder = PathResolver::Open(Parent, SecureOpen::ToPassFolder);
		if (!Folder.IsOpen() || (mkdirat(Folder.Get(), *Name, 0777) != 0 && errno != EEXIST))
			return false;
		Start = End + 1;
	}
	return DirectoryExists(Full);
}

}

IFileManager& IFileManager::Get()
{
	static FFileManager Manager;
	return Manager;
}

bool FFileHelper::LoadFileToString(FString& Out, const FString& Path)
{
	std::string Bytes;
	if (LoadFileToBytes(Bytes, Path, MaxTextFileBytes) != EFileRead::Ok)
		return false;
	std::string Scratch;
	const FStringView Text = DecodeText(Bytes, Scratch);
	if (Text.data() == Bytes.data() && Text.size() == Bytes.size())
		Out = FString(std::move(Bytes));
	else if (Text.data() == Scratch.data() && Text.size() == Scratch.size())
		Out = FString(std::move(Scratch));
	else
		Out = FString(Text);
	return true;
}

FStringView FFileHelper::DecodeText(std::string_view Bytes, std::string& Scratch)
{
	const ETextEncoding Encoding = TakeByteOrderMark(Bytes);
	if (Encoding == ETextEncoding::Utf8 && Unicode::IsValidUtf8(Bytes))
		return Bytes;
	Scratch = Encoding == ETextEncoding::Utf8 ? Unicode::RepairUtf8(Bytes)
											  : Unicode::Utf16ToUtf8(Bytes, Encoding == ETextEncoding::Utf16Big);
	return Scratch;
}

EFileRead FFileHelper::LoadFileToBytes(std::string& Out, const FString& Path, uint64 MaxBytes)
{
	Out.clear();
	const FFileHandle File = PathResolver::Open(Path, SecureOpen::ToReadFile);
	return File.IsOpen() ? SecureOpen::ReadRegularFile(File, Out, MaxBytes, 0) : SecureOpen::ToFileRead(errno);
}

bool FFileHelper::SaveStringToFile(FStringView Text, const FString& Path)
{
	const FString Full = FPaths::ConvertRelativePathToFull(Path);
	const FString FolderPath(Full.View().substr(0, Full.View().rfind('/') + 1));
	const std::string Name(FPaths::GetCleanFilename(Full));
	if (Name.empty() || Path.View().ends_with('/') || !IFileManager::Get().MakeDirectory(FolderPath))
		return false;
	const FFileHandle Folder = PathResolver::Open(FolderPath, SecureOpen::ToPassFolder);
	return Folder.IsOpen() && WriteFile::Replace(Folder, Name, Text, EPowerCut::Survives);
}
