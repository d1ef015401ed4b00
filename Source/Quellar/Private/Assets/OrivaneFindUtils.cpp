#include "Quellar/Assets/OrivaneFindUtils.h"

#include "Core/Text/Unicode.h"
#include "Quellar/Assets/QuellarSettings.h"

#include <algorithm>
#include <string_view>

namespace
{
constexpr std::string_view PluginsSegment = "/plugins/";

/** Replaces Out with the text folded, with forward slashes. */
void Normalize(std::string_view Text, std::string& Out)
{
	Out.clear();
	Unicode::AppendFolded(Out, Text);
	std::replace(Out.begin(), Out.end(), '\\', '/');
}

/** Start of the segment after the one at Start; npos after the last. */
std::size_t NextSegment(std::string_view Path, std::size_t Start)
{
	const std::size_t Slash = Path.find('/', Start);
	return Slash == std::string_view::npos ? Slash : Slash + 1;
}

/** The settings' lists in the form in which paths are compared with them. */
struct FExclusionRules
{
	TArray<FString> SourceDirectories;
	TArray<FString> SourcePlugins;
	bool bExcludePlugins = false;
	uint64 Number = 0; // of the change that led to these
	TArray<FString> Directories;
	TArray<FString> Plugins;

	bool IsMadeFrom(const UQuellarSettings& Settings) const
	{
		return Number > 0 && bExcludePlugins == Settings.bExcludeEnginePlugins &&
			AreSame(SourceDirectories, Settings.ExcludedDirectories) && AreSame(SourcePlugins, Settings.ExcludedPluginNames);
	}

	static bool AreSame(const TArray<FString>& A, const TArray<FString>& B)
	{
		return std::equal(
			A.begin(), A.end(), B.begin(), B.end(), [](const FString& X, const FString& Y) { return X.View() == Y.View(); });
	}

	static FExclusionRules MakeFrom(const UQuellarSettings& Settings)
	{
		FExclusionRules Rules{.SourceDirectories = Settings.ExcludedDirectories,
			.SourcePlugins = Settings.ExcludedPluginNames,
			.bExcludePlugins = Settings.bExcludeEnginePlugins};
		std::string Normalized;
		for (const FString& Directory : Settings.ExcludedDirectories)
		{
			Normalize(Directory, Normalized);
			if (!Normalized.empty())
				Rules.Directories.Add(FStringView(Normalized));
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
	static uint64 NumChanges = 0;
	if (!Rules.IsMadeFrom(Settings))
	{
		Rules = FExclusionRules::MakeFrom(Settings);
		Rules.Number = ++NumChanges;
	}
	return Rules;
}

/** Directory as a whole segment (or run of segments) of Path: inside, at the start, or at the end after a slash. */
bool HoldsDirectory(std::string_view Path, std::string_view Directory)
{
	for (std::size_t Start = 0; Start != std::string_view::npos; Start = NextSegment(Path, Start))
	{
		if (!Path.substr(Start).starts_with(Directory))
			continue;
		const std::size_t End = Start + Directory.size();
		const bool bAtEnd = End == Path.size();
		if (bAtEnd ? Start > 0 : Path[End] == '/')
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
	static std::string Normalized; // kept for its storage: walks over large graphs ask for very many paths
	Normalize(Path, Normalized);
	if (Rules.Directories.ContainsByPredicate([&](const FString& Directory) { return HoldsDirectory(Normalized, Directory); }))
		return true;
	if (!Rules.bExcludePlugins)
		return false;
	const std::string_view Plugin = GetPluginName(Normalized);
	return !Plugin.empty() &&
		Rules.Plugins.ContainsByPredicate([&](const FString& Excluded) { return Unicode::EqualsFolded(Excluded, Plugin); });
}

uint64 FOrivaneFindUtils::GetRulesNumber()
{
	const UQuellarSettings* Settings = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>();
	return Settings ? GetCurrentRules(*Settings).Number : 0;
}
