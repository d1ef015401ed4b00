#include "Commands/Commands.h"
#include "Core/Json/Json.h"
#include "Project/HeadlessEngine.h"
#include "Project/Project.h"
#include "Project/ProjectCheck.h"
#include "Project/ProjectRegistry.h"
#include "Terminal/ExitCode.h"

#include <algorithm>
#include <filesystem>

namespace
{
/** The way from the current folder to the project's, so that editors and other programs find the files; "" when it is the same.
 */
FString FindWayToProject()
{
	std::error_code Failed;
	const std::string Folder = FProject::GetSummary().Folder.ToStdString();
	const std::string Way = std::filesystem::relative(Folder, Failed).string();
	return Failed || Way.empty() ? FString(Folder) : Way == "." ? FString() : FString::FromExternal(Way) + "/";
}

/** Sorted, with paths from the current folder. Programs that follow them want a place: a file as a whole is its beginning. */
TArray<FDiagnostic> ListFaults(const FDiagnosticSink& Sink)
{
	const FString Way = FindWayToProject();
	TArray<FDiagnostic> Faults = Sink.GetSorted();
	for (FDiagnostic& Fault : Faults)
	{
		Fault.File = Fault.File.StartsWith("/") ? Fault.File : Way + Fault.File;
		Fault.Line = std::max(Fault.Line, 1);
		Fault.Column = std::max(Fault.Column, 1);
	}
	return Faults;
}

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
	for (const FDiagnostic& Diagnostic : ListFaults(Sink))
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
	for (const FDiagnostic& Diagnostic : ListFaults(Sink))
		Lines += Terminal::Sanitize(Diagnostic.ToString()) + "\n";
	Terminal::Print(Lines);
}

/** For the annotations of a forge's pull requests. */
void PrintAnnotations(const FDiagnosticSink& Sink)
{
	const auto Escape = [](const FString& Text) { return Text.Replace("%", "%25").Replace("\r", "%0D").Replace("\n", "%0A"); };
	FString Lines;
	for (const FDiagnostic& Fault : ListFaults(Sink))
		Lines += FString("::") + DescribeSeverity(Fault.Severity) +
			" file=" + Escape(Fault.File).Replace(",", "%2C").Replace(":", "%3A") +
			FString::Printf(",line=%d,col=%d,title=", Fault.Line, Fault.Column) + Fault.Rule + "::" + Escape(Fault.Text) + "\n";
	Terminal::Print(Lines);
}

FString Count(int32 Number, const char* One)
{
	return FString::FromInt(Number) + " " + One + (Number == 1 ? "" : "s");
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
	CheckExtensions(Diagnostics, Interrupt::GetToken());
	switch (Arguments.Format)
	{
		case ECheckFormat::Text:
			PrintLines(Diagnostics);
			break;
		case ECheckFormat::Json:
			PrintJson(Diagnostics);
			break;
		case ECheckFormat::GitHub:
			PrintAnnotations(Diagnostics);
			break;
	}
	if (!Arguments.bQuiet)
		Terminal::PrintError(Count(GetProjectRegistry().NumPackages(), "package") +
			" checked: " + Count(Diagnostics.NumErrors(), "error") + ", " + Count(Diagnostics.NumWarnings(), "warning") + "\n");
	const int32 NumFailures = Diagnostics.NumErrors() + (Arguments.bWarningsAsErrors ? Diagnostics.NumWarnings() : 0);
	return NumFailures > 0 ? EExitCode::NotFound : EExitCode::Found;
}
