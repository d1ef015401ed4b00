#pragma once

#include "Core/Base/Containers.h"
#include "Core/Json/Json.h"

/**
 * What callers outside are told about a tool: the module's own schema text says nothing, and clients reject that. Kept here for
 * the tools this host knows.
 */
struct FToolSchema
{
	FString Name;
	FString Title;
	TSharedPtr<FJsonObject> Input;	// JSON schema of the arguments, "type": "object"
	TSharedPtr<FJsonObject> Output; // JSON schema of the structured answer: "messages" and the tool's payload under its key
};

/** In the order in which tools are listed. */
const TArray<FToolSchema>& GetToolSchemas();
/** Null for a tool this host does not know. */
const FToolSchema* FindToolSchema(const FString& Name);
