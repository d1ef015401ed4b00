#pragma once

#include "Mcp/McpMessages.h"

/**
 * The two ways in which clients speak over one pipe. Legacy clients shake hands once with `initialize`; a modern request carries
 * its protocol version and the client's capabilities itself and depends on nothing that was said before.
 */
enum class EMcpEra : uint8
{
	Legacy,
	Modern,
};

namespace McpEra
{
/** Tells a request's era by the fields of its "_meta". False with the reason when it claims to be modern and cannot be served. */
bool Resolve(const FMcpMessage& Request, EMcpEra& OutEra, FMcpError& OutError);
/** What a request is refused with that belongs to neither era. */
FMcpError MakeMissingEnvelopeError();
/** The legacy version to go on with: the client's own where the server knows it, the server's newest otherwise. */
const char* NegotiateLegacyVersion(FStringView Requested);
/** Versions of the modern kind, newest first. */
FJsonArray GetModernVersions();

/** Name and version of the program. */
TSharedPtr<FJsonObject> MakeServerInfo();
/** A result to be filled, with what every result of the era carries. */
TSharedPtr<FJsonObject> MakeResult(EMcpEra Era);
/** Adds how long and for whom a client may keep the result; legacy results have no such fields. */
void AddCacheHints(EMcpEra Era, FJsonObject& Result);
}
