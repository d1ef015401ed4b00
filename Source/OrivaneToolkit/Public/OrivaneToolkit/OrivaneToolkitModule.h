#pragma once

#include "Core/Program/Module.h"
#include "OrivaneToolkit/ToolExecutor.h"

/** The module "OrivaneToolkit": owns the tool executor while it is loaded. */
class FOrivaneToolkitModule : public IModuleInterface
{
public:
	FOrivaneToolkitModule();
	~FOrivaneToolkitModule() override;
	/** Makes the toolkit's settings class known. */
	void StartupModule() override;

	/** The executor of the loaded module; null when the module is not loaded. */
	static TSharedPtr<Orivane::IToolExecutor> GetToolExecutor();

private:
	TSharedPtr<Orivane::IToolExecutor> Executor;
};
