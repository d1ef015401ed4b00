#include "Commands/Commands.h"
#include "CoreObject/Packages/Loader.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/HeadlessEngine.h"
#include "Project/Project.h"
#include "Terminal/ExitCode.h"
#include "Terminal/InputLines.h"
#include "Tools/HostTools.h"
#include "Tools/ToolCaller.h"

#include <algorithm>
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

/** "" for a tool that is there. */
FString DescribeUnknownTool(const FString& ToolName)
{
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	if (Executor->FindTool(ToolName))
		return {};
	return FString("there is no tool '") + ToolName + "'; tools: " + FString::Join(Executor->GetToolNames(), " ");
}

int PrintEnvelope(const Orivane::FToolResult& Result)
{
	const FString Text = Json::Write(*MakeEnvelopeJson(Result)) + "\n";
	Terminal::Print(Text);
	return Result.HasErrors() ? EExitCode::NotFound : EExitCode::Found;
}

/** One call as a line of standard input states it. */
struct FCallLine
{
	FString Tool;
	FString ArgumentsJson = "{}";
};

/** What is wrong with the line, a sentence; "" for a call of a tool that is there. */
FString ReadCallLine(std::string_view Line, FCallLine& Out)
{
	TSharedPtr<FJsonObject> Object;
	FJsonError Fault;
	if (!Json::ParseObject(Line, Object, &Fault))
		return FString("The line is not a JSON object: column ") + FString::FromInt(Fault.Column) + ": " + Fault.Text;
	for (const FJsonObject::FField& Field : Object->GetFields())
	{
		if (Field.Key.View() == "tool" && Field.Value.Type() == EJson::String)
			Field.Value.TryGetString(Out.Tool);
		else if (Field.Key.View() == "arguments")
			Out.ArgumentsJson = Json::Write(Field.Value);
		else if (Field.Key.View() != "tool")
			return FString("A call has no \"") + Field.Key + R"(", but "tool" and "arguments")";
	}
	if (Out.Tool.IsEmpty())
		return R"("tool" is missing or not a string)";
	return DescribeUnknownTool(Out.Tool);
}

/** The calls of standard input, each answered by a line before the next one is looked at. */
class FCallLines final : public ILineHandler
{
public:
	explicit FCallLines(std::chrono::milliseconds InTimeLimit) : TimeLimit(InTimeLimit) {}

	void HandleLine(std::string_view Line) override
	{
		FCallLine Call;
		if (IsOver() || Line.find_first_not_of(" \t\r") == std::string_view::npos)
			return;
		if (const FString Fault = ReadCallLine(Line, Call); !Fault.IsEmpty())
			return Refuse(Fault);
		RefreshProjectForCommand();
		const bool bAnswered =
			CallToolAndWait(Call.Tool, Call.ArgumentsJson, TimeLimit, [this](const auto& Result) { Answer(Result); });
		if (!bAnswered)
			ExitCode = EExitCode::Interrupted;
		EvictLoadedPackages(); // back below --object-memory, as between an agent's calls
	}
	void HandleOverlongLine() override { Refuse("The line is longer than 4 MiB and was skipped"); }

	/** Answers are not read any more. */
	bool IsOver() const { return Interrupt::IsRequested() || Terminal::GetOutputError() != 0; }
	/** The worst of all lines. */
	int GetExitCode() const { return ExitCode; }

private:
	void Answer(const Orivane::FToolResult& Result)
	{
		const FString& Trouble = FProject::GetTrouble();
		ExitCode =
			std::max(ExitCode, PrintEnvelope(Trouble.IsEmpty() ? Result : WithTrouble(Result, Trouble, FProject::IsOpen())));
	}
	void Refuse(const FString& Fault)
	{
		Orivane::FToolResult Result({"", "", ""});
		Result.AddErrorMessage(Fault);
		PrintEnvelope(Result);
		ExitCode = std::max(ExitCode, EExitCode::WrongUse);
	}

	const std::chrono::milliseconds TimeLimit;
	int ExitCode = EExitCode::Found;
};

int RunCallLines(const FCallArguments& Arguments)
{
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	if (!OpenProjectForCommand(Arguments.Project, Diagnostics, true, ExitCode))
		return ExitCode;
	FCallLines Handler(Arguments.TimeLimit);
	const bool bRead = ReadInputLines("call", MaxArgumentBytes, Handler, [&] { return Handler.IsOver(); });
	return bRead ? Handler.GetExitCode() : EExitCode::WrongUse;
}

int RunOneCall(const FCallArguments& Arguments, std::string_view ArgumentText)
{
	if (const FString Unknown = DescribeUnknownTool(Arguments.Tool); !Unknown.IsEmpty())
	{
		Terminal::PrintError("orivane call: " + Terminal::Sanitize(Unknown) + "\n");
		return EExitCode::WrongUse;
	}
	FProjectOptions Project = Arguments.Project;
	Project.Watch = EProjectWatch::Off; // it is over before a file can change
	return CallToolOfProject(Project, Arguments.TimeLimit, Arguments.Tool, FString::FromExternal(ArgumentText), PrintEnvelope);
}
}

int RunCall(const FCallArguments& Arguments)
{
	const bool bCallsFromInput = Arguments.Tool.View() == "-";
	std::string ArgumentText = Arguments.ArgumentsJson.ToStdString();
	if (bCallsFromInput && ArgumentText != "{}")
	{
		Terminal::PrintError("orivane call: with '-' for the tool, tools and arguments come from standard input\n");
		return EExitCode::WrongUse;
	}
	if (ArgumentText == "-")
	{
		ArgumentText.clear();
		if (!ReadStandardInput(ArgumentText))
			return EExitCode::WrongUse;
	}

	const FHeadlessEngine Engine;
	RegisterHostTools();
	return bCallsFromInput ? RunCallLines(Arguments) : RunOneCall(Arguments, ArgumentText);
}
