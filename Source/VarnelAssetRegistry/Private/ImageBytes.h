#pragma once

#include "Core/Types.h"

#include <string_view>

/** Owns the bytes of an image: memory of this process, or a mapped file. Aligned for every element of a column. */
class FImageBytes
{
public:
	FImageBytes() = default;
	/** Memory of unspecified content. */
	static FImageBytes Allocate(std::size_t NumBytes);
	/** Maps a whole file for reading; empty when it cannot be mapped or is empty. The descriptor stays the caller's. */
	static FImageBytes Map(int Descriptor);
	~FImageBytes();
	FImageBytes(FImageBytes&& Other) noexcept;
	FImageBytes& operator=(FImageBytes&& Other) noexcept;

	std::string_view View() const { return std::string_view(Data, NumBytes); }
	/** Only of allocated bytes. */
	char* GetWritable() { return Data; }

private:
	char* Data = nullptr;
	std::size_t NumBytes = 0;
	bool bMapped = false;
};
