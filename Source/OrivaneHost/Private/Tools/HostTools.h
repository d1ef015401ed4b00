#pragma once

#include "OrivaneCore/ToolResult.h"
#include "Quellar/Tools/ToolArguments.h"

/** A tool that this host adds to those of the module. It reads, and changes nothing. */
struct FHostTool
{
	FToolDeclaration Declaration;
	const char* Title = "";
	const char* Description = "";	// for agents
	const char* PayloadKey = "";	// of what it attaches
	const char* PayloadSchema = ""; // JSON schema of that, see ToolSchemas.cpp
	/** Answers before it returns; asks for a stop at the heads of its loops. Game thread, the project is open. */
	void (*Execute)(const FJsonObject& Args, Orivane::FToolResult& Result) = nullptr;
};

/** In the order in which they are listed; made once. Any thread. */
const TArray<FHostTool>& GetHostTools();
/** Of the module or of this host; null for a name that is not a tool's. */
const FToolDeclaration* FindTool(const FString& Name);
/** Registers this host's tools with the executor, which drops them when it shuts down. Game thread, while the modules run. */
void RegisterHostTools(bool bPathSearch = true);
