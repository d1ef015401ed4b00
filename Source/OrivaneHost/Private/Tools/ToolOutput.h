#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"
#include "Terminal/Terminal.h"

/** Styles of text on a terminal; plain where colour is off. */
class FPainter
{
public:
	explicit FPainter(bool bInColor) : bColor(bInColor) {}

	FString Bold(const FString& Text) const { return Paint("\033[1m", Text); }
	FString Dim(const FString& Text) const { return Paint("\033[2m", Text); }
	FString Match(const FString& Text) const { return Paint("\033[1;31m", Text); }
	FString Cyan(const FString& Text) const { return Paint("\033[36m", Text); }
	FString Red(const FString& Text) const { return Paint("\033[31m", Text); }
	FString Yellow(const FString& Text) const { return Paint("\033[33m", Text); }

private:
	FString Paint(const char* Style, const FString& Text) const
	{
		return bColor && !Text.IsEmpty() ? FString(Style) + Text + "\033[0m" : Text;
	}

	bool bColor;
};

/** What the commands that call a tool and print its answer share. */
namespace ToolOutput
{
/** A field's text for people to read: control characters are escaped, so nothing is to be looked up by it. "" when there is none.
 */
FString GetPrintable(const FJsonObject& Object, const char* Key);
/** A field's elements; none when there is no such array. */
const FJsonArray& GetArray(const FJsonObject& Object, const char* Key);
/** The payload of that key; null when the tool gave none. */
TSharedPtr<FJsonObject> GetContent(const Orivane::FToolResult& Result, const char* Key = "content");
/** Text with blanks after it, up to a number of code points. */
FString Pad(const FString& Text, int32 Width);
/** Errors on standard error, a line each after "orivane COMMAND: ", and warnings, unless there are remarks: those say what a
 * warning says, and what to do. */
void PrintProblems(const char* Command, const Orivane::FToolResult& Result);
/** What the answer leaves out, a line each; "" when nothing. */
FString DescribeRemarks(const char* ToolName, const Orivane::FToolResult& Result);
/** After an asset that does not exist, on standard error: packages of the assets that have the name of the one that was asked
 * for, or how to find one. Game thread. */
void PrintSuggestions(const FString& AskedFor);
}
