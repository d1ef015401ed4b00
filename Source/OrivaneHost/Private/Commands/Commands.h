#pragma once

#include "Commands/CommandLine.h"
#include "OrivaneCore/ToolResult.h"

#include <chrono>
#include <functional>

// One function a command; each returns the program's exit code.
int RunCall(const FCallArguments& Arguments);
int RunSearch(const FSearchArguments& Arguments);
int RunGraph(const FGraphArguments& Arguments);
int RunPaths(const FPathsArguments& Arguments);
int RunReport(const FReportArguments& Arguments);
int RunShow(const FShowArguments& Arguments);
int RunConsole(const FConsoleArguments& Arguments);
int RunInfo(const FInfoArguments& Arguments);
int RunCheck(const FCheckArguments& Arguments);
int RunMcp(const FMcpArguments& Arguments);

/**
 * Opens the project with a progress line. False after saying why on standard error; OutExitCode is then the program's. Faults in
 * the project's files go to Diagnostics; their number is mentioned on standard error when bMentionFaults.
 */
bool OpenProjectForCommand(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, bool bMentionFaults, int& OutExitCode);

/** Before each of several calls or lines: reads again what has changed, and mentions faults on standard error. */
void RefreshProjectForCommand();

/**
 * What a command of one tool call does once the engine runs: opens the project, calls, and lets Print print the answer and say
 * the program's exit code, which is returned. Answers that never come are explained and end at the time limit.
 */
int CallToolOfProject(const FProjectOptions& Project, std::chrono::milliseconds TimeLimit, const FString& Tool,
	const FString& ArgumentsJson, const std::function<int(const Orivane::FToolResult&)>& Print);
