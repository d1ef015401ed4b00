#include "AllocationCount.h"

#include <cstdlib>
#include <new>

namespace
{
thread_local int64 NumAllocations = 0;
}

int64 GetNumAllocations()
{
	return NumAllocations;
}

void* operator new(std::size_t Size)
{
	++NumAllocations;
	if (void* const Memory = std::malloc(Size))
		return Memory;
	throw std::bad_alloc();
}

void* operator new(std::size_t Size, const std::nothrow_t&) noexcept
{
	++NumAllocations;
	return std::malloc(Size);
}

void operator delete(void* Memory) noexcept
{
	std::free(Memory);
}

void operator delete(void* Memory, std::size_t) noexcept
{
	std::free(Memory);
}

void operator delete(void* Memory, const std::nothrow_t&) noexcept
{
	std::free(Memory);
}
