#pragma once

#include "Quellar/Tools/ToolArguments.h"

#include <algorithm>
#include <variant>

/** A row of a tool's table: an argument, and the member of the tool's parameters that takes it. */
template <class TParams>
struct TArgumentRow
{
	/** A function takes what no plain member can; it leaves the parameters alone where it cannot read the value. */
	using FTarget = std::variant<FString TParams::*, bool TParams::*, int32 TParams::*, TArray<FString> TParams::*,
		void (*)(const FJsonValue&, TParams&)>;

	FToolArgument Argument;
	FTarget Target;
};

/** Elements that cannot be read as strings are left out; what is not a list leaves Out as it is. */
inline bool ReadStrings(const FJsonValue& Value, TArray<FString>& Out)
{
	const FJsonArray* const Elements = Value.AsArray();
	if (!Elements)
		return false;
	Out.Reset();
	for (const FJsonValue& Element : *Elements)
	{
		FString Text;
		if (Element.TryGetString(Text))
			Out.Add(std::move(Text));
	}
	return true;
}

/** Takes one value into its member; a value that cannot be read leaves the default. */
template <class TParams>
bool ReadArgument(const TArgumentRow<TParams>& Row, const FJsonValue& Value, TParams& Out)
{
	const auto Take = [&](auto Target)
	{
		if constexpr (std::is_same_v<decltype(Target), void (*)(const FJsonValue&, TParams&)>)
			return Target(Value, Out), true;
		else if constexpr (std::is_same_v<decltype(Target), FString TParams::*>)
			return Value.TryGetString(Out.*Target);
		else if constexpr (std::is_same_v<decltype(Target), bool TParams::*>)
			return Value.TryGetBool(Out.*Target);
		else if constexpr (std::is_same_v<decltype(Target), TArray<FString> TParams::*>)
			return ReadStrings(Value, Out.*Target);
		else
		{
			const bool bRead = Value.TryGetNumber(Out.*Target);
			Out.*Target = bRead ? std::clamp(Out.*Target, Row.Argument.Minimum, Row.Argument.Maximum) : Out.*Target;
			return bRead;
		}
	};
	return std::visit(Take, Row.Target);
}

/** Reads the arguments in the table's order. False when a required one is missing or cannot be read. */
template <class TParams>
bool ReadArguments(const TArray<TArgumentRow<TParams>>& Table, const FJsonObject& Args, TParams& Out)
{
	bool bComplete = true;
	for (const TArgumentRow<TParams>& Row : Table)
	{
		const FJsonValue* const Value = Args.FindField(Row.Argument.Key);
		const bool bRead = Value && ReadArgument(Row, *Value, Out);
		bComplete &= bRead || !Row.Argument.bRequired;
	}
	return bComplete;
}

/** The rows as anybody may know them: with the defaults of the parameters, where a row does not state one. */
template <class TParams>
FToolDeclaration DeclareTool(const char* Name, const TArray<TArgumentRow<TParams>>& Table)
{
	const TParams Defaults;
	FToolDeclaration Tool{.Name = Name};
	for (const TArgumentRow<TParams>& Row : Table)
	{
		FToolArgument& Argument = Tool.Arguments.Emplace_GetRef(Row.Argument);
		const auto StateDefault = [&](auto Target)
		{
			if constexpr (std::is_same_v<decltype(Target), TArray<FString> TParams::*>)
				Argument.Default = FJsonArray();
			else if constexpr (!std::is_same_v<decltype(Target), void (*)(const FJsonValue&, TParams&)>)
				Argument.Default = Defaults.*Target;
		};
		if (!Argument.bRequired && Argument.Default.IsNull())
			std::visit(StateDefault, Row.Target);
	}
	return Tool;
}

struct FAssetSearchParams;
struct FExploreAssetGraphParams;
struct FAssetPathSearchParams;

// The tables themselves, made once.
const TArray<TArgumentRow<FAssetSearchParams>>& GetAssetSearchArguments();
const TArray<TArgumentRow<FExploreAssetGraphParams>>& GetAssetGraphArguments();
const TArray<TArgumentRow<FAssetPathSearchParams>>& GetAssetPathSearchArguments();
