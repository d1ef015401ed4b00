#pragma once

#include <stop_token>

/**
 * Whether the work at hand is still wanted. Code that starts work keeps a scope open around it; what may take long asks
 * IsStopRequested() at the heads of its loops (an atomic load) and then ends soon, with whatever it has: nobody looks at that any
 * more. Completions are executed all the same.
 *
 * A scope holds for its own thread, and the innermost one counts. ParallelFor and ParallelForOrdered take the caller's token to
 * their threads. Work that goes on later, in a posted task or on a thread of its own, takes GetStopToken() along and opens a
 * scope there.
 */
class FStopScope
{
public:
	explicit FStopScope(std::stop_token InToken);
	/** On the thread that opened it, in reverse order. */
	~FStopScope();
	FStopScope(const FStopScope&) = delete;
	FStopScope& operator=(const FStopScope&) = delete;

private:
	friend std::stop_token GetStopToken();
	friend bool IsStopRequested();

	const std::stop_token Token;
	const FStopScope* const Outer;
};

/** The calling thread's token; one that never stops where no scope is open. */
std::stop_token GetStopToken();
bool IsStopRequested();
