#include "OrivaneToolkit/OrivaneToolkitModule.h"

#include "OrivaneToolkit/OrivaneSettings.h"
#include "ToolExecutor.h"

FOrivaneToolkitModule::FOrivaneToolkitModule() : Executor(MakeShared<Orivane::FToolExecutor>(Orivane::EExecutorClock::OwnThread))
{
}

void FOrivaneToolkitModule::StartupModule()
{
	UOrivaneSettings::StaticClass();
}

FOrivaneToolkitModule::~FOrivaneToolkitModule() = default;

TSharedPtr<Orivane::IToolExecutor> FOrivaneToolkitModule::GetToolExecutor()
{
	auto* Module = static_cast<FOrivaneToolkitModule*>(FModuleManager::Get().GetModule("OrivaneToolkit"));
	return Module ? Module->Executor : nullptr;
}
