#pragma once

#include "OrivaneToolkit/Tool.h"

#include <atomic>
#include <functional>

/** What the module's tool entries share: fixed texts, the argument check, and reading of the argument text. Entries differ in
 * RunOperation alone. */
class FToolEntry : public Orivane::ITool
{
public:
	FToolEntry(FString InDescription, FString InMetadata);

	FString GetSchema() const override { return Schema; }
	FString GetDescription() const override { return Description; }
	void ValidateArguments(const FString& ArgumentsJson, Orivane::FToolResult& Result) override;
	FString GetMetadata() override;
	void InvalidateMetadata() override;
	void Execute(const Orivane::FToolCommand& Command, TSharedPtr<Orivane::FToolResult> Result,
		TDelegate<void(Orivane::FToolResult&)> OnComplete) final;
	/** The module goes: from here on calls are answered with an error and start nothing. Any thread. */
	void Close() { bClosed = true; }

protected:
	/** Runs the tool's operation; OnComplete must be executed once, now or later. */
	virtual void RunOperation(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete) = 0;

private:
	FString Schema = "{}";
	FString Description;
	FString Metadata;
	std::function<FString()> MetadataGenerator; // kept for entries whose metadata changes; unbound: it is fixed
	bool bMetadataCached = true;
	std::atomic<bool> bClosed = false;
};

/** Entry of asset_search: its operation answers when the last family has reported. */
class FAssetSearchTool final : public FToolEntry
{
public:
	FAssetSearchTool();

protected:
	void RunOperation(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete) override;
};

/** Entry of explore_asset_graph, which is answered before Execute returns. */
class FAssetGraphTool final : public FToolEntry
{
public:
	FAssetGraphTool();

protected:
	void RunOperation(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete) override;
};
