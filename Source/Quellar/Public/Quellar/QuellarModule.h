#pragma once

#include "Core/Module.h"
#include "OrivaneToolkit/Tool.h"

/** The module: registers its tools with the tool executor while it runs, and the console command that explores graphs. Game
 * thread. */
class FQuellarModule : public IModuleInterface
{
public:
	void StartupModule() override;
	void ShutdownModule() override;

private:
	void RegisterTools();

	TSharedPtr<Orivane::ITool> AssetSearchEntry;
	TSharedPtr<Orivane::ITool> AssetGraphEntry;
	TSharedPtr<Orivane::ITool> AssetPathSearchEntry; // never filled: the path search is public, but no tool of this module
};
