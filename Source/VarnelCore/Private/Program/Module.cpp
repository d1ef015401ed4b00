#include "Core/Program/Module.h"

#include "Core/Base/Map.h"

#include <mutex>
#include <shared_mutex>

struct FModuleManager::FState
{
	mutable std::shared_mutex Lock;
	TMap<FName, TSharedPtr<IModuleInterface>> Modules;
};

FModuleManager::FModuleManager() : State(MakeUnique<FState>())
{
}

FModuleManager::~FModuleManager() = default;

FModuleManager& FModuleManager::Get()
{
	static FModuleManager& Manager = *new FModuleManager; // outlives the threads that may still ask while the program ends
	return Manager;
}

bool FModuleManager::IsModuleLoaded(FName Name) const
{
	return GetModule(Name) != nullptr;
}

IModuleInterface& FModuleManager::GetModuleChecked(FName Name) const
{
	IModuleInterface* Module = GetModule(Name);
	checkf(Module, *FString::Printf("Tried to get module interface for unloaded module: '%s'", *Name.ToString()));
	return *Module;
}

IModuleInterface* FModuleManager::GetModule(FName Name) const
{
	const std::shared_lock Guard(State->Lock);
	const TSharedPtr<IModuleInterface>* Found = State->Modules.Find(Name);
	return Found ? Found->get() : nullptr;
}

void FModuleManager::LoadModule(FName Name, TSharedPtr<IModuleInterface> Module)
{
	checkf(Module, "a module is needed");
	checkf(!IsModuleLoaded(Name), "a module of that name is loaded already");
	{
		const std::unique_lock Guard(State->Lock);
		State->Modules.Add(Name, Module);
	}
	Module->StartupModule();
}

void FModuleManager::UnloadModule(FName Name)
{
	IModuleInterface* Module = GetModule(Name);
	if (!Module)
		return;
	Module->ShutdownModule(); // may still find itself by name
	TSharedPtr<IModuleInterface> LastReference;
	const std::unique_lock Guard(State->Lock);
	if (const TSharedPtr<IModuleInterface>* Found = State->Modules.Find(Name))
		LastReference = *Found;
	State->Modules.Remove(Name);
}
