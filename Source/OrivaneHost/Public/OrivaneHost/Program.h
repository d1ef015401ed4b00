#pragma once

/** The whole program: parses the arguments, runs the command, returns its exit code: 0 something was found, or nothing is wrong;
 * 1 nothing was found; 2 wrong use; 3 there is no project; 130 interrupted. Once per process. */
int RunOrivane(int NumArguments, const char* const* Arguments);
