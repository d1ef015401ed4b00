#include "Core/Files/FileTree.h"

#include "Core/Base/Assert.h"
#include "Files/FolderWalk.h"
#include "Files/PathResolver.h"
#include "Files/SecureOpen.h"

#include <cerrno>
#include <chrono>

namespace
{
/** A closed handle has left the reason in errno. */
EFileRead ReadOpened(const FFileHandle& File, std::string& Buffer, uint64 MaxBytes, std::size_t Padding)
{
	if (File.IsOpen())
		return SecureOpen::ReadRegularFile(File, Buffer, MaxBytes, Padding);
	Buffer.clear();
	return SecureOpen::ToFileRead(errno);
}
}

bool FFileStamp::IsSettled(std::chrono::system_clock::time_point At) const
{
	using namespace std::chrono;
	constexpr nanoseconds Quiet = seconds(1);
	return At.time_since_epoch() - nanoseconds(ChangedNanoseconds) > Quiet;
}

FFileTree FFileTree::List(FStringView Root, const FFileTreeOptions& Options)
{
	FFileTree Tree;
	Tree.Root = PathResolver::Open(Root, SecureOpen::ToPassFolder);
	if (!Tree.Root.IsOpen())
	{
		if (SecureOpen::ToFileRead(errno) == EFileRead::Unreadable)
			Tree.UnreadableFolders.emplace_back();
		return Tree;
	}
	FFolderWalk Walk(Tree.Root, Options);
	if (Walk.Run())
		Tree.Gather(Walk);
	return Tree;
}

FFileTree FFileTree::FromPaths(FStringView Root, const std::vector<std::string_view>& RelativePaths)
{
	FFileTree Tree;
	if (RelativePaths.empty()) // most searches of a project that is watched look at no file
		return Tree;
	Tree.Root = PathResolver::Open(Root, SecureOpen::ToPassFolder);
	if (!Tree.Root.IsOpen())
		return Tree;
	Tree.Files.reserve(RelativePaths.size());
	for (const std::string_view Path : RelativePaths)
	{
		const std::size_t NameStart = Path.rfind('/') + 1; // 0 where there is no slash
		Tree.AddFile(Path.substr(0, NameStart), Path.substr(NameStart));
	}
	return Tree;
}

void FFileTree::AddFile(std::string_view FolderWithSlash, std::string_view Name)
{
	const std::size_t FolderLength = FolderWithSlash.empty() ? 0 : FolderWithSlash.size() - 1;
	Files.push_back({.PathStart = Arena.size(),
		.PathLength = static_cast<uint32>(FolderWithSlash.size() + Name.size()),
		.FolderLength = static_cast<uint32>(FolderLength)});
	Arena.append(FolderWithSlash).append(Name);
}

void FFileTree::Gather(const FFolderWalk& Walk)
{
	Arena.reserve(Walk.CountPathBytes());
	Files.reserve(Walk.CountFiles());
	Walk.Visit(
		[this](std::string_view Folder, std::string_view Name, const FFileStamp* Stamp)
		{
			AddFile(Folder, Name);
			if (Stamp)
				Stamps.push_back(*Stamp);
		});
	UnreadableFolders = Walk.GetUnreadableFolders();
}

std::string_view FFileTree::GetRelativePath(int32 Index) const
{
	checkf(Index >= 0 && Index < Num(), "file index out of range");
	const FFile& File = Files[static_cast<std::size_t>(Index)];
	return std::string_view(Arena).substr(File.PathStart, File.PathLength);
}

const FFileStamp& FFileTree::GetStamp(int32 Index) const
{
	checkf(Index >= 0 && static_cast<std::size_t>(Index) < Stamps.size(), "the tree was listed without stamps");
	return Stamps[static_cast<std::size_t>(Index)];
}

EFileRead FFileTree::Read(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t Padding) const
{
	return ReadOpened(
		SecureOpen::OpenBeneath(Root.Get(), GetRelativePath(Index), SecureOpen::ToReadFile), Buffer, MaxBytes, Padding);
}

EFileRead FFileTreeReader::Read(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t Padding)
{
	return ReadOpened(Open(Index), Buffer, MaxBytes, Padding);
}

EFileRead FFileTreeReader::ReadInPieces(int32 Index, std::string& Buffer, uint64 MaxBytes, std::size_t PieceBytes,
	const std::function<bool(std::string_view Piece)>& Take)
{
	const FFileHandle File = Open(Index);
	return File.IsOpen() ? SecureOpen::ReadInPieces(File, Buffer, MaxBytes, PieceBytes, Take) : SecureOpen::ToFileRead(errno);
}

/** A closed handle leaves the reason in errno. */
FFileHandle FFileTreeReader::Open(int32 Index)
{
	const std::string_view Path = Tree.GetRelativePath(Index);
	const std::size_t FolderLength = Tree.Files[static_cast<std::size_t>(Index)].FolderLength;
	if (FolderLength == 0)
		return SecureOpen::OpenBeneath(Tree.Root.Get(), Path, SecureOpen::ToReadFile);
	if (!Folder.IsOpen() || FolderPath != Path.substr(0, FolderLength))
	{
		FolderPath = Path.substr(0, FolderLength);
		Folder = SecureOpen::OpenBeneath(Tree.Root.Get(), FolderPath, SecureOpen::ToPassFolder);
	}
	if (!Folder.IsOpen())
		return {};
	return SecureOpen::OpenBeneath(Folder.Get(), Path.substr(FolderLength + 1), SecureOpen::ToReadFile);
}
