#include "Core/Base/Failure.h"

#include <new>
#include <system_error>

const char* DescribeFailure(const std::exception& Failure) noexcept
{
	if (dynamic_cast<const std::bad_alloc*>(&Failure))
		return "out of memory";
	const auto* const SystemError = dynamic_cast<const std::system_error*>(&Failure);
	if (SystemError && SystemError->code() == std::errc::resource_unavailable_try_again)
		return "no thread can be started";
	if (SystemError && SystemError->code() == std::errc::too_many_files_open)
		return "too many files are open; raise the limit of the process (ulimit -n)";
	return Failure.what();
}
