#include "Project/Progress.h"

#include "Terminal/Terminal.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>

namespace
{
constexpr auto Patience = std::chrono::seconds(1);
constexpr auto RedrawTime = std::chrono::milliseconds(100);

void WriteLines(std::stop_token Stop, const FScanProgress& Progress)
{
	std::mutex Lock;
	std::condition_variable_any Stopped;
	std::unique_lock Guard(Lock);
	const auto WaitFor = [&](auto Time) { return Stopped.wait_for(Guard, Stop, Time, [&] { return Stop.stop_requested(); }); };
	if (WaitFor(Patience))
		return;
	do
	{
		Terminal::PrintError(FString::Printf("\rreading packages: %d of %d ", Progress.NumDone.load(), Progress.NumTotal.load()));
	} while (!WaitFor(RedrawTime));
	Terminal::PrintError("\r\033[K");
}
}

FProgressLine::FProgressLine(const FScanProgress& Progress)
{
	if (!Terminal::IsStderrTerminal())
		return;
	try
	{
		Writer = std::jthread([&Progress](std::stop_token Stop) { WriteLines(Stop, Progress); });
	}
	catch (const std::system_error&) // no more threads; it goes without
	{
	}
}

FProgressLine::~FProgressLine() = default;
