#include "Tools/ToolRemarks.h"

#include <algorithm>

namespace
{
constexpr int32 MaxNames = 5;

/** The text and the first names. */
FString DescribeWhat(const Orivane::FToolRemark& Remark)
{
	TArray<FString> Names;
	for (int32 Index = 0; Index < std::min(Remark.Names.Num(), MaxNames); ++Index)
		Names.Add(Remark.Names[Index]);
	return Remark.Text + (Names.IsEmpty() ? "" : ": ") + FString::Join(Names, ", ") +
		(Remark.Names.Num() > MaxNames ? ", ..." : "");
}

FString Raise(const FString& Argument, const FString& Value)
{
	return "; raise " + Argument + " (" + Value + ")";
}

const FToolArgument* FindArgument(const FToolDeclaration& Tool, const FString& Key)
{
	return Tool.Arguments.FindByPredicate([&](const FToolArgument& Argument) { return Key == Argument.Key; });
}

/** "--exact" of "-x,--exact". */
FString GetLongName(const FToolArgument& Argument)
{
	const FString Names = Argument.Shell.Names;
	return Names.Mid(static_cast<int32>(Names.View().rfind(',') + 1));
}
}

FString DescribeRemark(const Orivane::FToolRemark& Remark)
{
	if (Remark.Argument.IsEmpty())
		return DescribeWhat(Remark);
	const bool bFlag = Remark.Value == "true" || Remark.Value == "false";
	return DescribeWhat(Remark) +
		(bFlag ? "; " + Remark.Argument + "=" + Remark.Value + " shows them" : Raise(Remark.Argument, Remark.Value));
}

FString DescribeRemarkForShell(const Orivane::FToolRemark& Remark, const FToolDeclaration& Tool)
{
	const FToolArgument* const Argument = FindArgument(Tool, Remark.Argument);
	if (!Argument)
		return DescribeWhat(Remark);
	const FString Name = GetLongName(*Argument);
	return DescribeWhat(Remark) + (Argument->Shell.FlagValue.IsNull() ? Raise(Name, Remark.Value) : "; " + Name + " shows them");
}

FString DescribeRemarkForConsole(const Orivane::FToolRemark& Remark, const FToolDeclaration& Tool)
{
	const FToolArgument* const Argument = FindArgument(Tool, Remark.Argument);
	const bool bHasWord = Argument && *Argument->Console.Key;
	return DescribeWhat(Remark) + (bHasWord ? Raise(Argument->Console.Key, Remark.Value) : FString());
}
