#include "Commands.h"
#include "HeadlessEngine.h"
#include "OrivaneHost/Program.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "PathSearchTool.h"
#include "ToolCaller.h"

#include <iostream>

namespace
{
/** Longer argument texts are refused, as by the protocol server. */
constexpr std::size_t MaxArgumentBytes = 4 * 1024 * 1024;

bool ReadStandardInput(std::string& Out)
{
	char Buffer[65536];
	while (std::cin.read(Buffer, sizeof Buffer) || std::cin.gcount() > 0)
	{
		Out.append(Buffer, static_cast<std::size_t>(std::cin.gcount()));
		if (Out.size() > MaxArgumentBytes)
			return false;
	}
	return true;
}

bool IsRegistered(const FString& ToolName)
{
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (Executor->FindTool(ToolName))
		return true;
	FString Error = FString("orivane call: there is no tool '") + Terminal::Sanitize(ToolName) + "'; tools:";
	for (const FString& Name : Executor->GetToolNames())
		Error += FString(" ") + Name;
	Terminal::PrintError(Error + "\n");
	return false;
}
}

int RunCall(const FCallArguments& Arguments)
{
	std::string ArgumentText = Arguments.ArgumentsJson.ToStdString();
	if (ArgumentText == "-" && (ArgumentText.clear(), !ReadStandardInput(ArgumentText)))
	{
		Terminal::PrintError("orivane call: the arguments on standard input are longer than 4 MiB\n");
		return EExitCode::WrongUse;
	}

	const FHeadlessEngine Engine;
	RegisterPathSearchTool();
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	if (!IsRegistered(Arguments.Tool))
		return EExitCode::WrongUse;
	if (!OpenProjectForCommand(Arguments.Project, Diagnostics, true, ExitCode))
		return ExitCode;

	const auto TimeLimit = std::chrono::milliseconds(static_cast<int64>(Arguments.TimeLimitSeconds * 1000));
	const bool bAnswered = CallToolAndWait(Arguments.Tool, FString::FromExternal(ArgumentText), TimeLimit,
		[&](const Orivane::FToolResult& Result)
		{
			Terminal::Print(Json::Write(*MakeEnvelopeJson(Result)) + "\n");
			ExitCode = Result.HasErrors() ? EExitCode::NotFound : EExitCode::Found;
		});
	return bAnswered ? ExitCode : EExitCode::Interrupted;
}
