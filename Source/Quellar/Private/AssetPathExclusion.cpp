#include "Quellar/AssetPathExclusion.h"

#include "Core/Unicode.h"
#include "Quellar/QuellarSettings.h"

#include <algorithm>
#include <string_view>

namespace
{
constexpr std::string_view PluginsSegment = "/plugins/";

FString Normalize(const FString& Text)
{
	std::string Folded = Unicode::Fold(Text);
	std::replace(Folded.begin(), Folded.end(), '\\', '/');
	return Folded;
}

/** The settings' lists in the form in which paths are compared with them. */
struct FExclusionRules
{
	TArray<FString> SourceDirectories;
	TArray<FString> SourcePlugins;
	TArray<FString> Directories;
	TArray<FString> Plugins;

	bool IsMadeFrom(const UQuellarSettings& Settings) const
	{
		return AreSame(SourceDirectories, Settings.ExcludedDirectories) && AreSame(SourcePlugins, Settings.ExcludedPluginNames);
	}

	static bool AreSame(const TArray<FString>& A, const TArray<FString>& B)
	{
		return std::equal(
			A.begin(), A.end(), B.begin(), B.end(), [](const FString& X, const FString& Y) { return X.View() == Y.View(); });
	}

	static FExclusionRules MakeFrom(const UQuellarSettings& Settings)
	{
		FExclusionRules Rules{.SourceDirectories = Settings.ExcludedDirectories, .SourcePlugins = Settings.ExcludedPluginNames};
		for (const FString& Directory : Settings.ExcludedDirectories)
		{
			if (!Directory.IsEmpty())
				Rules.Directories.Add(Normalize(Directory));
		}
		for (const FString& Plugin : Settings.ExcludedPluginNames)
			Rules.Plugins.Add(Plugin);
		return Rules;
	}
};

/** Settings may change between any two calls; the prepared lists are made again when they have. */
const FExclusionRules& GetCurrentRules(const UQuellarSettings& Settings)
{
	static FExclusionRules Rules;
	if (!Rules.IsMadeFrom(Settings))
		Rules = FExclusionRules::MakeFrom(Settings);
	return Rules;
}

/** Directory as a whole segment (or run of segments) of Path: inside, at the start, or at the end behind a slash. */
bool HoldsDirectory(std::string_view Path, std::string_view Directory)
{
	for (std::size_t Found = Path.find(Directory); Found != std::string_view::npos; Found = Path.find(Directory, Found + 1))
	{
		const std::size_t End = Found + Directory.size();
		const bool bAtStart = Found == 0;
		const bool bBehindSlash = !bAtStart && Path[Found - 1] == '/';
		const bool bAtEnd = End == Path.size();
		const bool bBeforeSlash = !bAtEnd && Path[End] == '/';
		if ((bBehindSlash && (bBeforeSlash || bAtEnd)) || (bAtStart && bBeforeSlash))
			return true;
	}
	return false;
}

/** Name of the plugin whose folder Path lies in, or "". A path that begins with "plugins/" has none: the leading slash is
 * required. */
std::string_view GetPluginName(std::string_view Path)
{
	const std::size_t Segment = Path.find(PluginsSegment);
	if (Segment == std::string_view::npos)
		return {};
	const std::size_t Start = Segment + PluginsSegment.size();
	const std::size_t Slash = Path.find('/', Start);
	return Slash == std::string_view::npos ? std::string_view() : Path.substr(Start, Slash - Start);
}
}

bool FOrivaneFindUtils::ShouldExcludeFilePath(const FString& Path)
{
	if (Path.IsEmpty())
		return false;
	const UQuellarSettings* Settings = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>();
	if (!Settings)
		return false;

	const FExclusionRules& Rules = GetCurrentRules(*Settings);
	const FString Normalized = Normalize(Path);
	if (Rules.Directories.ContainsByPredicate([&](const FString& Directory) { return HoldsDirectory(Normalized, Directory); }))
		return true;
	if (!Settings->bExcludeEnginePlugins)
		return false;
	const FString Plugin = GetPluginName(Normalized);
	return !Plugin.IsEmpty() && Rules.Plugins.ContainsByPredicate([&](const FString& Excluded) { return Excluded == Plugin; });
}
