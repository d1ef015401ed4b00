#include "Core/Base/Assert.h"

#include <cstdio>
#include <cstdlib>

void ReportFailedCheck(const char* Condition, const char* Reason, const char* File, int Line)
{
	std::fprintf(stderr, "%s:%d: check failed: %s: %s\n", File, Line, Condition, Reason);
	std::fflush(stderr);
	std::abort();
}
