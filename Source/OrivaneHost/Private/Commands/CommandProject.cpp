#include "Commands/Commands.h"
#include "Project/OpenProject.h"
#include "Project/Progress.h"
#include "Terminal/ExitCode.h"
#include "Tools/ToolCaller.h"

namespace
{
void PrintRemark(const FString& Remark)
{
	if (!Remark.IsEmpty())
		Terminal::PrintError("orivane: " + Terminal::Sanitize(Remark) + "\n");
}
}

bool OpenProjectForCommand(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, bool bMentionFaults, int& OutExitCode)
{
	FScanProgress Progress;
	FProjectOptions WithProgress = Options;
	WithProgress.Progress = &Progress;
	WithProgress.Stop = Interrupt::GetToken();
	FOpening Opening;
	{
		const FProgressLine Line(Progress);
		Opening = OpenProject(WithProgress, Diagnostics);
	}
	if (!Opening.bOpened)
	{
		const bool bOpen = FProject::IsOpen();
		PrintRemark((bOpen ? FString() : FString("cannot open the project: ")) + Opening.Error);
		OutExitCode = bOpen ? EExitCode::WrongUse : EExitCode::NoProject;
		return false;
	}
	PrintRemark(Opening.PreloadRemark);
	PrintRemark(Opening.CacheRemark);
	PrintRemark(Opening.EmptyRemark);
	if (bMentionFaults)
		PrintRemark(Opening.FaultRemark);
	return true;
}

void RefreshProjectForCommand()
{
	PrintRemark(RefreshOpenProject());
}

int CallToolOfProject(const FProjectOptions& Project, std::chrono::milliseconds TimeLimit, const FString& Tool,
	const FString& ArgumentsJson, const std::function<int(const Orivane::FToolResult&)>& Print)
{
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	if (!OpenProjectForCommand(Project, Diagnostics, true, ExitCode))
		return ExitCode;
	const bool bAnswered =
		CallToolAndWait(Tool, ArgumentsJson, TimeLimit, [&](const Orivane::FToolResult& Result) { ExitCode = Print(Result); });
	return bAnswered ? ExitCode : EExitCode::Interrupted;
}
