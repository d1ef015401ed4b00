#pragma once

#include <exception>

/**
 * The phrase for people that says what has failed ("out of memory", "no thread can be started"). Code of ours throws
 * nothing; what reaches those who start work (the program, its loop, the tool executor, the protocol server) comes from the
 * library: memory or threads that the system does not give. Allocates nothing; the text lives as long as the exception.
 */
const char* DescribeFailure(const std::exception& Failure) noexcept;
