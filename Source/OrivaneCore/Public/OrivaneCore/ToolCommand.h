#pragma once

#include "Core/Text/String.h"

namespace Orivane
{
/** One call of a tool as it reaches the tool's entry. */
struct FToolCommand
{
	FString CommandId; // chosen by the caller, for its own bookkeeping
	FString ToolName;
	FString ArgumentsJson; // JSON object text, not yet checked

	FToolCommand() = default;
	FToolCommand(FString InCommandId, FString InToolName, FString InArgumentsJson)
		: CommandId(std::move(InCommandId))
		, ToolName(std::move(InToolName))
		, ArgumentsJson(std::move(InArgumentsJson))
	{
	}
};
}
