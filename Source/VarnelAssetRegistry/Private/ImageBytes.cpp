#include "ImageBytes.h"

#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <utility>

namespace
{
constexpr std::align_val_t Alignment{64};
}

FImageBytes FImageBytes::Allocate(std::size_t NumBytes)
{
	FImageBytes Bytes;
	Bytes.Data = static_cast<char*>(::operator new(NumBytes, Alignment));
	Bytes.NumBytes = NumBytes;
	return Bytes;
}

FImageBytes FImageBytes::Map(int Descriptor)
{
	struct stat Status;
	if (fstat(Descriptor, &Status) != 0 || !S_ISREG(Status.st_mode) || Status.st_size <= 0)
		return {};
	const auto NumBytes = static_cast<std::size_t>(Status.st_size);
	void* const Mapped = mmap(nullptr, NumBytes, PROT_READ, MAP_PRIVATE, Descriptor, 0);
	if (Mapped == MAP_FAILED)
		return {};
	FImageBytes Bytes;
	Bytes.Data = static_cast<char*>(Mapped);
	Bytes.NumBytes = NumBytes;
	Bytes.bMapped = true;
	return Bytes;
}

FImageBytes::~FImageBytes()
{
	if (bMapped)
		munmap(Data, NumBytes);
	else
		::operator delete(Data, Alignment);
}

FImageBytes::FImageBytes(FImageBytes&& Other) noexcept
	: Data(std::exchange(Other.Data, nullptr))
	, NumBytes(std::exchange(Other.NumBytes, 0))
	, bMapped(std::exchange(Other.bMapped, false))
{
}

FImageBytes& FImageBytes::operator=(FImageBytes&& Other) noexcept
{
	std::swap(Data, Other.Data);
	std::swap(NumBytes, Other.NumBytes);
	std::swap(bMapped, Other.bMapped);
	return *this;
}
