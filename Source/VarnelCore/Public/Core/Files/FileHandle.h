#pragma once

#include <utility>

/** Owns a file descriptor of the operating system and closes it. */
class FFileHandle
{
public:
	FFileHandle() = default;
	/** A negative number, which is what failed calls of the system give, makes a closed handle. */
	explicit FFileHandle(int InDescriptor) : Descriptor(InDescriptor) {}
	~FFileHandle() { Close(); }
	FFileHandle(FFileHandle&& Other) noexcept : Descriptor(std::exchange(Other.Descriptor, -1)) {}
	FFileHandle& operator=(FFileHandle&& Other) noexcept
	{
		std::swap(Descriptor, Other.Descriptor);
		return *this;
	}

	bool IsOpen() const { return Descriptor >= 0; }
	/** Stays the handle's own; negative when it is closed. */
	int Get() const { return Descriptor; }
	/** False when the system reports a late write error. */
	bool Close();

private:
	int Descriptor = -1;
};
