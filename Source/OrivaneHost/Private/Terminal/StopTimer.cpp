#include "Terminal/StopTimer.h"

#include "Terminal/Terminal.h"

#include <condition_variable>
#include <mutex>
#include <system_error>

namespace
{
void StopAfter(std::chrono::milliseconds Limit, const std::stop_token& NotNeeded, std::stop_source& Source)
{
	std::mutex Lock;
	std::condition_variable_any Never;
	std::unique_lock Guard(Lock);
	Never.wait_for(Guard, NotNeeded, Limit, [] { return false; });
	if (!NotNeeded.stop_requested())
		Source.request_stop();
}
}

FStopTimer::FStopTimer(std::chrono::milliseconds Limit) : OnInterrupt(Interrupt::GetToken(), [this] { Source.request_stop(); })
{
	try
	{
		Thread = std::jthread([this, Limit](const std::stop_token& NotNeeded) { StopAfter(Limit, NotNeeded, Source); });
	}
	catch (const std::system_error&)
	{
	}
}
