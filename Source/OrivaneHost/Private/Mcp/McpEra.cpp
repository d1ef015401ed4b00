#include "Mcp/McpEra.h"

#include "Terminal/Version.h"

namespace
{
constexpr const char* LegacyVersions[] = {"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"}; // newest first
constexpr const char* ModernVersion = "2026-07-28";

constexpr const char* VersionKey = "io.modelcontextprotocol/protocolVersion";
constexpr const char* CapabilitiesKey = "io.modelcontextprotocol/clientCapabilities";
constexpr const char* ClientInfoKey = "io.modelcontextprotocol/clientInfo";
constexpr const char* ServerInfoKey = "io.modelcontextprotocol/serverInfo";

/** The tools of one process never change; a client that starts a newer program starts a new process. */
constexpr int32 CacheMilliseconds = 300'000;

FMcpError MakeUnsupportedVersionError(const FString& Requested)
{
	auto Data = MakeShared<FJsonObject>();
	Data->SetArrayField("supported", McpEra::GetModernVersions());
	Data->SetStringField("requested", Abbreviate(Requested));
	return {.Code = EMcpErrorCode::UnsupportedVersion,
		.Message = FString("protocol version ") + Abbreviate(Requested) + " is not supported",
		.Data = Data};
}
}

bool McpEra::Resolve(const FMcpMessage& Request, EMcpEra& OutEra, FMcpError& OutError)
{
	const FJsonObject& Meta = *Request.Meta;
	const bool bModern = Meta.HasField(VersionKey) || Meta.HasField(CapabilitiesKey) || Meta.HasField(ClientInfoKey);
	OutEra = bModern ? EMcpEra::Modern : EMcpEra::Legacy;
	if (!bModern)
		return true;

	FString Version;
	const bool bHasVersion = AsJsonString(Meta.FindField(VersionKey), Version);
	const FJsonValue* Capabilities = Meta.FindField(CapabilitiesKey);
	if (bHasVersion && Version.View() != ModernVersion)
		OutError = MakeUnsupportedVersionError(Version);
	else if (!bHasVersion || !Capabilities || !Capabilities->AsObject())
		OutError = MakeMissingEnvelopeError();
	else
		return true;
	return false;
}

FMcpError McpEra::MakeMissingEnvelopeError()
{
	return {.Code = EMcpErrorCode::InvalidParams,
		.Message = FString("the request needs \"") + VersionKey + "\" (text) and \"" + CapabilitiesKey +
			"\" (object) in its _meta, or an initialize before it"};
}

const char* McpEra::NegotiateLegacyVersion(FStringView Requested)
{
	for (const char* Version : LegacyVersions)
	{
		if (Requested == Version)
			return Version;
	}
	return LegacyVersions[0];
}

FJsonArray McpEra::GetModernVersions()
{
	return {ModernVersion};
}

TSharedPtr<FJsonObject> McpEra::MakeServerInfo()
{
	auto Info = MakeShared<FJsonObject>();
	Info->SetStringField("name", "orivane");
	Info->SetStringField("title", "Orivane");
	Info->SetStringField("version", OrivaneVersion);
	return Info;
}

TSharedPtr<FJsonObject> McpEra::MakeResult(EMcpEra Era)
{
	auto Result = MakeShared<FJsonObject>();
	if (Era == EMcpEra::Modern)
	{
		auto Meta = MakeShared<FJsonObject>();
		Meta->SetObjectField(ServerInfoKey, MakeServerInfo());
		Result->SetStringField("resultType", "complete");
		Result->SetObjectField("_meta", Meta);
	}
	return Result;
}

void McpEra::AddCacheHints(EMcpEra Era, FJsonObject& Result)
{
	if (Era == EMcpEra::Legacy)
		return;
	Result.SetNumberField("ttlMs", CacheMilliseconds);
	Result.SetStringField("cacheScope", "public");
}
