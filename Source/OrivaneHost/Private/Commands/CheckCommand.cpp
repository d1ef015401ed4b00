#include "Commands/Commands.h"
#include "Core/Json/Json.h"
#include "Project/HeadlessEngine.h"
#include "Project/ProjectCheck.h"
#include "Project/ProjectRegistry.h"
#include "Terminal/ExitCode.h"

namespace
{
const char* DescribeSeverity(EDiagnosticSeverity Severity)
{
	return Severity == EDiagnosticSeverity::Error ? "error" : "warning";
}

TSharedPtr<FJsonObject> MakeJson(const FDiagnostic& Diagnostic)
{
	auto Object = MakeShared<FJsonObject>();
	Object->SetStringField("file", Diagnostic.File);
	Object->SetNumberField("line", Diagnostic.Line);
	Object->SetNumberField("column", Diagnostic.Column);
	Object->SetStringField("severity", DescribeSeverity(Diagnostic.Severity));
	Object->SetStringField("text", Diagnostic.Text);
	Object->SetStringField("rule", Diagnostic.Rule);
	return Object;
}

void PrintJson(const FDiagnosticSink& Sink)
{
	FJsonArray List;
	for (const FDiagnostic& Diagnostic : Sink.GetSorted())
		List.Add(MakeJson(Diagnostic));
	FJsonObject Report;
	Report.SetNumberField("errors", Sink.NumErrors());
	Report.SetNumberField("warnings", Sink.NumWarnings());
	Report.SetArrayField("diagnostics", std::move(List));
	Terminal::Print(Json::Write(Report) + "\n");
}

void PrintLines(const FDiagnosticSink& Sink)
{
	FString Lines;
	for (const FDiagnostic& Diagnostic : Sink.GetSorted())
		Lines += Terminal::Sanitize(Diagnostic.ToString()) + "\n";
	Terminal::Print(Lines);
	Terminal::PrintError(FString::Printf("%d package(s) checked: %d error(s), %d warning(s)\n",
		GetProjectRegistry().NumPackages(), Sink.NumErrors(), Sink.NumWarnings()));
}
}

int RunCheck(const FCheckArguments& Arguments)
{
	const FHeadlessEngine Engine;
	FDiagnosticSink Diagnostics;
	FProjectOptions Options = Arguments.Project;
	Options.Cache = ERegistryCache::Ignore; // what the cache holds was not looked at again
	int ExitCode = EExitCode::Found;
	if (!OpenProjectForCommand(Options, Diagnostics, false, ExitCode))
		return ExitCode;
	CheckPackages(Diagnostics, Interrupt::GetToken());
	CheckTextFiles(Diagnostics, Interrupt::GetToken());
	if (Arguments.bJson)
		PrintJson(Diagnostics);
	else
		PrintLines(Diagnostics);
	const int32 NumFailures = Diagnostics.NumErrors() + (Arguments.bWarningsAsErrors ? Diagnostics.NumWarnings() : 0);
	return NumFailures > 0 ? EExitCode::NotFound : EExitCode::Found;
}
