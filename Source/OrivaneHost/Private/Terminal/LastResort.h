#pragma once

#include <exception>

/** How the program ends when it cannot go on: a line on standard error and exit code 2. */
namespace LastResort
{
/** From here on that is also what becomes of an uncaught failure, on any thread. */
void Install() noexcept;
/** Writes the line. */
void Print(const std::exception& Failure) noexcept;
}
