#include "Terminal/WakePipe.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

FWakePipe::FWakePipe()
{
	int Ends[2];
	if (pipe2(Ends, O_CLOEXEC | O_NONBLOCK) != 0)
		return;
	ReadEnd = FFileHandle(Ends[0]);
	WriteEnd = FFileHandle(Ends[1]);
}

void FWakePipe::Signal() noexcept
{
	const int SavedError = errno;
	const char Byte = 0;
	[[maybe_unused]] const ssize_t Written = write(WriteEnd.Get(), &Byte, 1); // a full pipe says the same
	errno = SavedError;
}
