#pragma once

#include <exception>

/**
 * The phrase for people that says what has failed ("out of memory", "no thread can be started", "too many files are
 * open"). What reaches those who start work (the program, its loop, the tool executor, the protocol server) is always of this
 * kind: memory, threads or file descriptors that the system does not give. Allocates nothing; the text lives as long as the
 * exception.
 */
const char* DescribeFailure(const std::exception& Failure) noexcept;
