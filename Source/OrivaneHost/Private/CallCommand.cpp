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

int PrintEnvelope(const Orivane::FToolResult& Result)
{
	Terminal::Print(Json::Write(*MakeEnvelopeJson(Result)) + "\n");
	return Result.HasErrors() ? EExitCode::NotFound : EExitCode::Found;
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
	if (!IsRegistered(Arguments.Tool))
		return EExitCode::WrongUse;
	return CallToolOfProject(
		Arguments.Project, Arguments.TimeLimit, Arguments.Tool, FString::FromExternal(ArgumentText), PrintEnvelope);
}
