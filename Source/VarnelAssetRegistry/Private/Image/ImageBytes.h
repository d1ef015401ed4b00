#pragma once

#include "Core/Base/Types.h"

#include <string_view>

/** Owns the bytes of an image, in memory that no other process can change. Aligned for every element of a column. */
class FImageBytes
{
public:
	FImageBytes() = default;
	/** Memory of unspecified content. */
	static FImageBytes Allocate(std::size_t NumBytes);
	/** Reads a whole regular file, on all processors; empty when it is empty, cannot be read, or takes more than half of the
	 * machine's memory. The descriptor stays the caller's. */
	static FImageBytes Read(int Descriptor);
	~FImageBytes();
	FImageBytes(FImageBytes&& Other) noexcept;
	FImageBytes& operator=(FImageBytes&& Other) noexcept;

	std::string_view View() const { return std::string_view(Data, NumBytes); }
	char* GetWritable() { return Data; }

private:
	char* Data = nullptr;
	std::size_t NumBytes = 0;
};
