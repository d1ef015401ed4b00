#pragma once

#include "Core/Base/Delegate.h"
#include "OrivaneCore/ToolResult.h"

namespace Orivane
{
/** A tool as the executor knows it. Entries are shared by their module and the executor. */
class ITool
{
public:
	virtual ~ITool() = default;

	virtual FString GetSchema() const = 0;
	virtual FString GetDescription() const = 0;
	/** Adds an error for arguments that cannot be used at all; adds nothing otherwise. */
	virtual void ValidateArguments(const FString& ArgumentsJson, FToolResult& Result) = 0;
	/** JSON object text; "execution_mode": "sequential" asks that calls do not overlap. */
	virtual FString GetMetadata() = 0;
	virtual void InvalidateMetadata() = 0;
	/**
	 * Runs the tool on the game thread. OnComplete is executed once, now or later; the result stays alive until then because
	 * OnComplete, and every copy of it, holds it.
	 */
	virtual void Execute(
		const FToolCommand& Command, TSharedPtr<FToolResult> Result, TDelegate<void(FToolResult&)> OnComplete) = 0;
};
}
