#include "Commands/Commands.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/HeadlessEngine.h"
#include "Terminal/ExitCode.h"
#include "Tools/PathSearchTool.h"
#include "Tools/ToolCaller.h"

#include <cerrno>
#include <cstring>

namespace
{
/** Longer argument texts are refused, as by the protocol server. */
constexpr std::size_t MaxArgumentBytes = 4 * 1024 * 1024;

/** False after saying why. */
bool ReadStandardInput(std::string& Out)
{
	char Buffer[65536];
	int64 NumRead = 0;
	while ((NumRead = Terminal::ReadInput(Buffer, sizeof Buffer)) > 0)
	{
		Out.append(Buffer, static_cast<std::size_t>(NumRead));
		if (Out.size() <= MaxArgumentBytes)
			continue;
		Terminal::PrintError("orivane call: the arguments on standard input are longer than 4 MiB\n");
		return false;
	}
	if (NumRead < 0 && !Interrupt::IsRequested())
		Terminal::PrintError(FString("orivane call: cannot read standard input: ") + std::strerror(errno) + "\n");
	return NumRead == 0;
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
	if (ArgumentText == "-")
	{
		ArgumentText.clear();
		if (!ReadStandardInput(ArgumentText))
			return EExitCode::WrongUse;
	}

	const FHeadlessEngine Engine;
	RegisterPathSearchTool();
	if (!IsRegistered(Arguments.Tool))
		return EExitCode::WrongUse;
	return CallToolOfProject(
		Arguments.Project, Arguments.TimeLimit, Arguments.Tool, FString::FromExternal(ArgumentText), PrintEnvelope);
}
