#pragma once

#include "Core/Files/FileHandle.h"

/** Wakes a thread that waits in poll(). What was signalled once stays so. */
class FWakePipe
{
public:
	FWakePipe();
	/** False when the process has no descriptors left; then nothing is ever woken. */
	bool IsOpen() const { return ReadEnd.IsOpen(); }
	/** Any thread, also from a signal handler. Leaves errno as it is. */
	void Signal() noexcept;
	/** Readable from the first signal on, and never to be read. */
	int GetDescriptor() const { return ReadEnd.Get(); }

private:
	FFileHandle ReadEnd;
	FFileHandle WriteEnd;
};
