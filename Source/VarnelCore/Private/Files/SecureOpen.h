#pragma once

#include "Core/Files/FileTree.h"

#include <fcntl.h>

/**
 * Opening and reading without following symbolic links. Paths are bytes, relative to the handle of a folder; a path that is
 * absolute or has an empty, "." or ".." segment is refused like a missing file. Functions that return a closed handle leave the
 * reason in errno, but for one: where the process or the system has no descriptors left they throw std::system_error, as where
 * there is no memory, or what is there would count as missing. Any thread.
 */
namespace SecureOpen
{
constexpr int ToReadFile = O_RDONLY | O_NONBLOCK | O_NOCTTY; // a pipe put in a file's place must not block the open
constexpr int ToReadFolder = O_RDONLY | O_DIRECTORY;
constexpr int ToPassFolder = O_PATH | O_DIRECTORY; // to open other things relative to it; needs no read permission
constexpr int ToLookAt = O_PATH;

/** Of what an opening call of the system gave. */
FFileHandle MakeHandle(int Descriptor);
/** Opens Path below the folder Root; no segment, the last one included, may be a symbolic link. */
FFileHandle OpenBeneath(int Root, std::string_view Path, int Flags);
/** What a failed open means to a reader of files. */
EFileRead ToFileRead(int ErrorNumber);
/** Reads a regular file from its start into Buffer (resized to the content, plus Padding spare bytes of capacity). The buffer is
 * emptied on failure. */
EFileRead ReadRegularFile(const FFileHandle& File, std::string& Buffer, uint64 MaxBytes, std::size_t Padding);
/** What Name is in the folder, without following a link, or the folder itself for "": a DT_ constant, DT_UNKNOWN when it is not
 * there. Fills the stamp unless it is not there. */
unsigned char LookAt(const FFileHandle& Folder, const char* Name, FFileStamp& OutStamp);
/** Reads a regular file from its start in pieces, see FFileTreeReader::ReadInPieces. */
EFileRead ReadInPieces(const FFileHandle& File, std::string& Buffer, uint64 MaxBytes, std::size_t PieceBytes,
	const std::function<bool(std::string_view Piece)>& Take);
/** Whether the handle is a regular file's. */
bool IsRegularFile(const FFileHandle& File);
}
