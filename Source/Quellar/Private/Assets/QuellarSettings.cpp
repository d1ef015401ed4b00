#include "Quellar/Assets/QuellarSettings.h"

#include "CoreObject/Reflection/NativeClass.h"
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
			.ToolTip("Project settings for Orivane/Quellar behaviors.\n"
					 "Exposed at: Project Settings → Plugins → Orivane Settings")
			.Member("ExcludedDirectories", &UQuellarSettings::ExcludedDirectories,
				{"Search", "Additional directories to exclude from Asset/Text searches (relative segments)."})
			.Member("bExcludeEnginePlugins", &UQuellarSettings::bExcludeEnginePlugins,
				{"Search", "Exclude Engine plugins (CommonUI, EnhancedInput, etc.) but keep project plugins."})
			.Member("ExcludedPluginNames", &UQuellarSettings::ExcludedPluginNames,
				{"Search", "Additional plugin names to exclude (e.g., \"CommonUI\", \"EnhancedInput\")."})
			.Member("TextSearchExtensions", &UQuellarSettings::TextSearchExtensions,
				{"Search",
					"File extensions to include in text-based searches (lowercase, no dot). Editable in Project Settings."})
			.Member("bEnableHighSignalFiltering", &UQuellarSettings::bEnableHighSignalFiltering,
				{"References", "Enable high-signal kind filtering for reference queries (focus on code/logic/config assets)."})
			.Member("DefaultMaxReferences", &UQuellarSettings::DefaultMaxReferences,
				{"References", "Default maximum results for AssetFindReferences queries."})
			.Member("DefaultMaxGraphNodes", &UQuellarSettings::DefaultMaxGraphNodes,
				{"Graph", "Default maximum nodes for ExploreAssetGraph queries."})
			.Member("DefaultMaxFanoutPerNode", &UQuellarSettings::DefaultMaxFanoutPerNode,
				{"Graph", "Default maximum fanout per node (hub protection)."})
			.Build();
	return Class;
}

namespace
{
const FAutoNativeClass Registration(&UQuellarSettings::StaticClass);
}
