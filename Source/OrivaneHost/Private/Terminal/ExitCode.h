#pragma once

/** Exit codes of the program, the same for every command. */
namespace EExitCode
{
constexpr int Found = 0;		 // something was found, or nothing is wrong
constexpr int NotFound = 1;		 // nothing was found, problems were found, or the tool reported an error
constexpr int WrongUse = 2;		 // arguments that cannot be used, output that cannot be written, or an internal failure
constexpr int NoProject = 3;	 // the project cannot be opened
constexpr int Interrupted = 130; // Ctrl-C
}
