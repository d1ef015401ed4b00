#pragma once

#include "VarnelAssetRegistry/RegistryFixture.h"

/** A project of line packages whose registry is the one that the module "AssetRegistry" hands out. One at a time. */
class FIndexProject : public FRegistryProject
{
public:
	FIndexProject()
	{
		class FModule final : public FAssetRegistryModule
		{
		public:
			explicit FModule(IAssetRegistry& InRegistry) : Registry(InRegistry) {}
			IAssetRegistry& Get() override { return Registry; }

		private:
			IAssetRegistry& Registry;
		};
		SetClassParents({{"/Script/Engine.WidgetBlueprint", "/Script/Engine.Blueprint"}});
		FModuleManager::Get().LoadModule("AssetRegistry", MakeShared<FModule>(Registry));
	}
	~FIndexProject() { FModuleManager::Get().UnloadModule("AssetRegistry"); }
};
