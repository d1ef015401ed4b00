#include "Terminal/LastResort.h"

#include "Core/Base/Failure.h"
#include "Terminal/ExitCode.h"

#include <cstring>
#include <exception>
#include <sys/uio.h>
#include <unistd.h>

namespace
{
iovec MakePart(const char* Text)
{
	return {.iov_base = const_cast<char*>(Text), .iov_len = std::strlen(Text)};
}

/** In one call, and without memory: there may be none left. */
void PrintLine(const char* Text) noexcept
{
	const iovec Parts[] = {MakePart("orivane: "), MakePart(Text), MakePart("\n")};
	[[maybe_unused]] const ssize_t Written = writev(STDERR_FILENO, Parts, 3);
}

[[noreturn]] void EndProcess() noexcept
{
	try
	{
		if (const std::exception_ptr Failure = std::current_exception())
			std::rethrow_exception(Failure);
		PrintLine("internal failure");
	}
	catch (const std::exception& Failure)
	{
		LastResort::Print(Failure);
	}
	catch (...)
	{
		PrintLine("internal failure");
	}
	_exit(EExitCode::WrongUse);
}
}

void LastResort::Install() noexcept
{
	std::set_terminate(EndProcess);
}

void LastResort::Print(const std::exception& Failure) noexcept
{
	PrintLine(DescribeFailure(Failure));
}
