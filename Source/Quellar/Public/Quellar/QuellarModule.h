#pragma once

#include "Core/Program/Module.h"
#include "Quellar/Tools/ToolEntry.h"

/** The module: registers its tools with the tool executor while it runs, and the console command that explores graphs. Game
 * thread. */
class FQuellarModule : public IModuleInterface
{
public:
	void StartupModule() override;
	void ShutdownModule() override;

private:
	void RegisterTools();

	TSharedPtr<FToolEntry> AssetSearchEntry;
	TSharedPtr<FToolEntry> AssetGraphEntry;
	TSharedPtr<FToolEntry> AssetPathSearchEntry; // never filled: the path search is public, but no tool of this module
};
