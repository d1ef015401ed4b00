#include "OrivaneToolkit/OrivaneSettings.h"

#include "CoreObject/Reflection/NativeClass.h"

UOrivaneSettings::UOrivaneSettings()
{
	CategoryName = "Plugins";
	SectionName = "Orivane Toolkit";
}

UClass* UOrivaneSettings::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UOrivaneSettings>("/Script/OrivaneToolkit.OrivaneSettings", UDeveloperSettings::StaticClass())
			.ToolTip("Settings that the modules of the Orivane family share.")
			.Member("MaterialSearchMode", &UOrivaneSettings::MaterialSearchMode,
				{"Search", "0: materials are found by name only. 1: they are loaded and searched by parents and parameters."})
			.Member("NiagaraSearchMode", &UOrivaneSettings::NiagaraSearchMode,
				{"Search", "0: particle systems are found by name only. 1: those in memory are searched in depth."})
			.Build();
	return Class;
}
