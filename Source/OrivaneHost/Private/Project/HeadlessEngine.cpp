#include "Project/HeadlessEngine.h"

#include "Core/Threads/Tasks.h"
#include "Engine/EngineClasses.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/QuellarModule.h"

namespace
{
class FHeadlessAssetRegistryModule final : public FAssetRegistryModule
{
public:
	IAssetRegistry& Get() override { return GetProjectRegistry(); }
};
}

FHeadlessEngine::FHeadlessEngine()
{
	FGameThread::Get().BindToThisThread();
	RegisterEngineClasses();

	FModuleManager& Modules = FModuleManager::Get();
	Modules.LoadModule("AssetRegistry", MakeShared<FHeadlessAssetRegistryModule>());
	Modules.LoadModule("OrivaneToolkit", MakeShared<FOrivaneToolkitModule>());
	Modules.LoadModule("Quellar", MakeShared<FQuellarModule>());
}

FHeadlessEngine::~FHeadlessEngine()
{
	FModuleManager& Modules = FModuleManager::Get();
	Modules.UnloadModule("Quellar");
	Modules.UnloadModule("OrivaneToolkit");
	Modules.UnloadModule("AssetRegistry");
	FGameThread::Get().Clear();
	FProject::Close();
}
