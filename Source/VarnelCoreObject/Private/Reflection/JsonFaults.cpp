#include "Reflection/JsonFaults.h"

namespace
{
constexpr int32 MaxQuotedLength = 100; // code points
}

void FJsonFaults::ReportSyntax()
{
	const FJsonError& Fault = Document.GetError();
	Error(static_cast<uint32>(Fault.Offset), Fault.Rule, Fault.Text);
}

void FJsonFaults::ReportRepair()
{
	if (Sink && Document.WasRepaired())
		Sink->Add({FileName, 0, 0, EDiagnosticSeverity::Warning, "the file is not valid UTF-8; its bad bytes are read as U+FFFD",
			"invalid-utf8"});
}

void FJsonFaults::ReportRepeatedKeys()
{
	for (const uint32 Offset : Document.GetRepeatedKeys())
	{
		if (!IsHeard())
			return;
		Warn(Offset, "repeated-key", "the object has this key more than once; its last value counts");
	}
}

bool FJsonFaults::HasVersion(const FJsonRef& Root, std::string_view Key, FString Rule)
{
	const FJsonRef Version = Root.Find(Key);
	if (Version && Version.IsNumber() && Version.Number() == 1.0)
		return true;
	const FString Expected = FString(Key) + " must be the number 1";
	if (Version)
		Error(Version.Offset(), std::move(Rule), Expected + ", the version that this program reads");
	else
		Error(Root.Offset(), std::move(Rule), Expected + " but is missing");
	return false;
}

bool FJsonFaults::RequireText(const FJsonRef& Owner, const FJsonRef& Value, std::string_view Key, std::string_view& Out)
{
	if (Value)
		return AcceptText(Value, Out);
	if (IsHeard())
		Error(Owner.Offset(), FString("missing-") + Key, Quote(Key) + " is missing");
	return false;
}

bool FJsonFaults::AcceptText(const FJsonRef& Value, std::string_view& Out)
{
	if (!Value)
		return true;
	if (!Value.IsString())
		return FailType(Value, "a string");
	Out = Value.Text();
	return true;
}

bool FJsonFaults::AcceptBool(const FJsonRef& Value, bool& Out)
{
	if (!Value)
		return true;
	if (!Value.IsBool())
		return FailType(Value, "true or false");
	Out = Value.Bool();
	return true;
}

bool FJsonFaults::IsArray(const FJsonRef& Value)
{
	return Value && (Value.IsArray() || FailType(Value, "an array"));
}

bool FJsonFaults::IsObject(const FJsonRef& Value)
{
	return Value && (Value.IsObject() || FailType(Value, "an object"));
}

FString FJsonFaults::Quote(std::string_view Text)
{
	const FString Whole(Text);
	const bool bCut = Whole.Len() > MaxQuotedLength;
	return FString("'") + (bCut ? Whole.Left(MaxQuotedLength) + "..." : Whole) + "'";
}

void FJsonFaults::Report(uint32 Offset, EDiagnosticSeverity Severity, FString Rule, FString Text)
{
	if (!IsHeard())
		return;
	FDiagnostic Diagnostic{FileName, 0, 0, Severity, std::move(Text), std::move(Rule)};
	if (NumReported++ == MaxReports)
		Diagnostic = {
			FileName, 0, 0, EDiagnosticSeverity::Warning, "the file has more faults than are listed here", "more-faults"};
	else
		Document.Locate(Offset, Diagnostic.Line, Diagnostic.Column);
	Sink->Add(std::move(Diagnostic));
}

bool FJsonFaults::FailType(const FJsonRef& Value, const char* Wanted)
{
	if (!IsHeard())
		return false;
	const FString Subject = Value.Key().empty() ? FString("this") : Quote(Value.Key());
	Error(Value.Offset(), "wrong-type", Subject + " must be " + Wanted);
	return false;
}

void FJsonFaults::WarnOfUnknownKey(const FJsonRef& Member)
{
	if (IsHeard())
		Warn(Member.KeyOffset(), "unknown-key", Quote(Member.Key()) + " is not a key that is known here; it is ignored");
}
