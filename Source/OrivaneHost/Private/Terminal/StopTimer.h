#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <thread>

/** A stop that comes when some time has passed, or the user interrupts the program, whichever is sooner. */
class FStopTimer
{
public:
	/** Where no thread can be started for it, the time does not end. */
	explicit FStopTimer(std::chrono::milliseconds Limit);
	FStopTimer(const FStopTimer&) = delete;
	FStopTimer& operator=(const FStopTimer&) = delete;

	std::stop_token GetToken() const { return Source.get_token(); }

private:
	std::stop_source Source;
	const std::stop_callback<std::function<void()>> OnInterrupt;
	std::jthread Thread; // last: it ends first
};
