#include "Quellar/QuellarSettings.h"

#include "CoreObject/NativeClass.h"
#include "OrivaneCore/DefaultExcludedDirectories.h"

UQuellarSettings::UQuellarSettings()
{
	CategoryName = "Plugins";
	SectionName = "Orivane Settings";
	ExcludedDirectories = Orivane::Tarnwell::DefaultExcludedDirectories;
	if (ExcludedPluginNames.IsEmpty())
		ExcludedPluginNames = {"Niagara", "Water", "GeometryCollectionPlugin", "ChaosSolverPlugin"};
	TextSearchExtensions = {
		"uproject", "uplugin", "txt", "md", "bat", "py", "xml", "yaml", "yml", "html", "css", "js", "ts", "config", "ini", "cfg"};
}

UClass* UQuellarSettings::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UQuellarSettings>("/Script/Quellar.QuellarSettings", UDeveloperSettings::StaticClass())
			.Member("ExcludedDirectories", &UQuellarSettings::ExcludedDirectories)
			.Member("bExcludeEnginePlugins", &UQuellarSettings::bExcludeEnginePlugins)
			.Member("ExcludedPluginNames", &UQuellarSettings::ExcludedPluginNames)
			.Member("TextSearchExtensions", &UQuellarSettings::TextSearchExtensions)
			.Member("bEnableHighSignalFiltering", &UQuellarSettings::bEnableHighSignalFiltering)
			.Member("DefaultMaxReferences", &UQuellarSettings::DefaultMaxReferences)
			.Member("DefaultMaxGraphNodes", &UQuellarSettings::DefaultMaxGraphNodes)
			.Member("DefaultMaxFanoutPerNode", &UQuellarSettings::DefaultMaxFanoutPerNode)
			.Build();
	return Class;
}
