#pragma once

#include "OrivaneCore/ToolResult.h"
#include "Quellar/Tools/ToolArguments.h"

/** What an answer leaves out as a sentence for callers that give arguments by key: "...; raise max_nodes (150)". */
FString DescribeRemark(const Orivane::FToolRemark& Remark);
/** The same for people at a shell: "...; raise --max-nodes (150)". Not sanitized. */
FString DescribeRemarkForShell(const Orivane::FToolRemark& Remark, const FToolDeclaration& Tool);
/** The same at the console: "...; raise max_nodes= (150)". Not sanitized. */
FString DescribeRemarkForConsole(const Orivane::FToolRemark& Remark, const FToolDeclaration& Tool);
