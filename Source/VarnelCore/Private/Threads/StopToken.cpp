#include "Core/Threads/StopToken.h"

#include <utility>

namespace
{
thread_local const FStopScope* Innermost = nullptr;
}

FStopScope::FStopScope(std::stop_token InToken) : Token(std::move(InToken)), Outer(std::exchange(Innermost, this))
{
}

FStopScope::~FStopScope()
{
	Innermost = Outer;
}

std::stop_token GetStopToken()
{
	return Innermost ? Innermost->Token : std::stop_token();
}

bool IsStopRequested()
{
	return Innermost && Innermost->Token.stop_requested();
}
