#include "OrivaneToolkit/OrivaneSettings.h"

#include "CoreObject/NativeClass.h"

UOrivaneSettings::UOrivaneSettings()
{
	CategoryName = "Plugins";
	SectionName = "Orivane Toolkit";
}

UClass* UOrivaneSettings::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UOrivaneSettings>("/Script/OrivaneToolkit.OrivaneSettings", UDeveloperSettings::StaticClass())
			.Member("MaterialSearchMode", &UOrivaneSettings::MaterialSearchMode)
			.Member("NiagaraSearchMode", &UOrivaneSettings::NiagaraSearchMode)
			.Build();
	return Class;
}
