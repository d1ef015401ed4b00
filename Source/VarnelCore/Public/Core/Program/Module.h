#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/Name.h"

/** A unit that the engine starts and stops. */
class IModuleInterface
{
public:
	virtual ~IModuleInterface() = default;
	virtual void StartupModule() {}
	virtual void ShutdownModule() {}
};

/** The loaded modules by name. Queries from any thread; loading and unloading on the game thread. */
class FModuleManager
{
public:
	static FModuleManager& Get();

	bool IsModuleLoaded(FName Name) const;
	/** The module, which must be loaded. */
	IModuleInterface& GetModuleChecked(FName Name) const;
	template <class TModule>
	TModule& GetModuleChecked(FName Name) const
	{
		return static_cast<TModule&>(GetModuleChecked(Name));
	}
	/** Null when it is not loaded. */
	IModuleInterface* GetModule(FName Name) const;
	/** Stores the module and starts it. A module of that name must not be loaded. */
	void LoadModule(FName Name, TSharedPtr<IModuleInterface> Module);
	/** Shuts the module down and lets it go; harmless for a name that is not loaded. */
	void UnloadModule(FName Name);

private:
	FModuleManager();
	~FModuleManager();
	struct FState;
	TUniquePtr<FState> State;
};
