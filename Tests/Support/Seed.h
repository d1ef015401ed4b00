#pragma once

#include <cstdint>

/**
 * The seed of a test's random numbers: what ORIVANE_TEST_SEED says, or else a new one each time. A test that fails prints the
 * seed that repeats it.
 */
std::uint32_t GetSeed();
/** The same for a test that has a seed of its own, which it uses unless ORIVANE_TEST_SEED says otherwise. */
std::uint32_t GetSeed(std::uint32_t Own);
