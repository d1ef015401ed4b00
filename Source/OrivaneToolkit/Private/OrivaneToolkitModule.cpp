#include "OrivaneToolkit/OrivaneToolkitModule.h"

#include "ToolExecutor.h"

FOrivaneToolkitModule::FOrivaneToolkitModule() : Executor(MakeShared<Orivane::FToolExecutor>(Orivane::EExecutorClock::OwnThread))
{
}

FOrivaneToolkitModule::~FOrivaneToolkitModule() = default;

TSharedPtr<Orivane::IToolExecutor> FOrivaneToolkitModule::GetToolExecutor()
{
	auto* Module = static_cast<FOrivaneToolkitModule*>(FModuleManager::Get().GetModule("OrivaneToolkit"));
	return Module ? Module->Executor : nullptr;
}
