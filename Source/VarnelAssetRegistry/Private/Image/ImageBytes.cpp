#include "Image/ImageBytes.h"

#include "Core/Threads/Tasks.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::size_t SmallAlignment = 64;
// Of large images. The first look at each page costs more than its content, so there are few, and large ones.
constexpr std::size_t LargeAlignment = 2 * 1024 * 1024;
constexpr std::size_t LargeBytes = 2 * LargeAlignment;
constexpr std::size_t PieceBytes = 4 * 1024 * 1024; // read at a time

std::align_val_t ChooseAlignment(std::size_t NumBytes)
{
	return std::align_val_t{NumBytes < LargeBytes ? SmallAlignment : LargeAlignment};
}

std::size_t GetHalfOfMemory()
{
	return static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) / 2 * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/** 0 where there is nothing to read. */
std::size_t GetFileBytes(int Descriptor)
{
	struct stat Status;
	if (fstat(Descriptor, &Status) != 0 || !S_ISREG(Status.st_mode) || Status.st_size <= 0)
		return 0;
	const auto NumBytes = static_cast<std::size_t>(Status.st_size);
	return NumBytes <= GetHalfOfMemory() ? NumBytes : 0;
}

bool ReadPiece(int Descriptor, char* Into, std::size_t Begin, std::size_t End)
{
	while (Begin < End)
	{
		const ssize_t NumRead = pread(Descriptor, Into + Begin, End - Begin, static_cast<off_t>(Begin));
		if (NumRead == 0 || (NumRead < 0 && errno != EINTR))
			return false;
		Begin += static_cast<std::size_t>(std::max<ssize_t>(NumRead, 0));
	}
	return true;
}
}

FImageBytes FImageBytes::Allocate(std::size_t NumBytes)
{
	FImageBytes Bytes;
	Bytes.Data = static_cast<char*>(::operator new(NumBytes, ChooseAlignment(NumBytes)));
	Bytes.NumBytes = NumBytes;
	if (NumBytes >= LargeBytes)
		madvise(Bytes.Data, NumBytes, MADV_HUGEPAGE); // slower where the system does not know this
	return Bytes;
}

FImageBytes FImageBytes::Read(int Descriptor)
{
	const std::size_t NumBytes = GetFileBytes(Descriptor);
	if (NumBytes == 0)
		return {};
	FImageBytes Bytes = Allocate(NumBytes);
	std::atomic<bool> bRead = true;
	const auto NumPieces = static_cast<int32>((NumBytes + PieceBytes - 1) / PieceBytes);
	ParallelFor(NumPieces, 1,
		[&](int32 Piece, int32, int32)
		{
			const std::size_t Begin = static_cast<std::size_t>(Piece) * PieceBytes;
			if (!ReadPiece(Descriptor, Bytes.Data, Begin, std::min(Begin + PieceBytes, NumBytes)))
				bRead = false;
		});
	return bRead ? std::move(Bytes) : FImageBytes();
}

FImageBytes::~FImageBytes()
{
	::operator delete(Data, ChooseAlignment(NumBytes));
}

FImageBytes::FImageBytes(FImageBytes&& Other) noexcept
	: Data(std::exchange(Other.Data, nullptr))
	, NumBytes(std::exchange(Other.NumBytes, 0))
{
}

FImageBytes& FImageBytes::operator=(FImageBytes&& Other) noexcept
{
	std::swap(Data, Other.Data);
	std::swap(NumBytes, Other.NumBytes);
	return *this;
}
