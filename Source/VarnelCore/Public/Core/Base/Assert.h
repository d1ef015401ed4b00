#pragma once

/** Ends the program after naming a broken promise between two pieces of our own code. Never reached by user input. */
[[noreturn]] void ReportFailedCheck(const char* Condition, const char* Reason, const char* File, int Line);

#define checkf(Condition, Reason) ((Condition) ? static_cast<void>(0) : ReportFailedCheck(#Condition, Reason, __FILE__, __LINE__))
