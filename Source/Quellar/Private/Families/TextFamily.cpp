#include "Families/TextFamily.h"

#include "Core/File.h"
#include "Core/Tasks.h"
#include "Core/TextFinder.h"
#include "Core/Unicode.h"
#include "Families/FamilyScan.h"
#include "Quellar/QuellarSettings.h"

#include <deque>
#include <vector>

namespace
{
constexpr int32 DefaultMaxFiles = 200; // where the total cap is below 1
constexpr int32 FilesPerChunk = 32;

const TSet<FString>& GetDefaultExtensions()
{
	static const TSet<FString> Extensions = {
		"uproject", "uplugin", "txt", "md", "bat", "py", "xml", "yaml", "yml", "html", "css", "js", "ts", "config", "ini", "cfg"};
	return Extensions;
}

/** The content test, prepared once for many files. Shared by the scan's threads. */
class FContentMatcher
{
public:
	FContentMatcher(const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive)
		: Term(Params.Term)
		, Case(bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase)
		, bWhole(bExact)
		, Finder(Params.Term, Case)
	{
	}

	bool Matches(FStringView Content) const { return bWhole ? Term.Equals(Content, Case) : Finder.IsFoundIn(Content); }

private:
	const FString& Term;
	ESearchCase Case;
	bool bWhole;
	FTextFinder Finder;
};

/** One search of the family: the roots are visited in order, files in ascending byte order, until the cap is reached. */
class FTextScan
{
public:
	explicit FTextScan(const FAssetSearchParams& InParams)
		: Params(InParams)
		, Matcher(InParams, InParams.bExact, InParams.bCaseSensitive)
		, MaxFiles(InParams.MaxTotalHits < 1 ? DefaultMaxFiles : InParams.MaxTotalHits)
	{
	}

	FAssetSearchResult Run()
	{
		TArray<FString> Visited;
		for (const FString& Root : {FPaths::ProjectDir(), FPaths::ProjectContentDir(), FPaths::ProjectPluginsDir()})
		{
			// Files below an earlier root have been tested by this very search; a second reading could only repeat its outcome.
			const bool bCovered = Visited.ContainsByPredicate([&](const FString& Earlier) { return Root.StartsWith(Earlier); });
			if (!Root.IsEmpty() && !bCovered)
				ScanRoot(Root);
			Visited.Add(Root);
		}
		return std::move(Found);
	}

private:
	bool IsCandidate(const FString& Prefix, FStringView RelativeToRoot) const
	{
		if (!Unicode::IsValidUtf8(RelativeToRoot))
			return IsCandidate(Prefix, FString::FromExternal(RelativeToRoot));
		return IsSearchableTextFile(RelativeToRoot) &&
			(Params.PathContains.IsEmpty() || PassesPathFilter(Prefix + RelativeToRoot, Params));
	}

	/** What one thread reads with. */
	struct FFileReader
	{
		explicit FFileReader(const FFileTree& Files) : Reader(Files) {}
		FFileTreeReader Reader;
		std::string Bytes;
		std::string Scratch;
	};

	bool IsMatch(FFileReader& File, int32 Index) const
	{
		return File.Reader.Read(Index, File.Bytes, FFileHelper::MaxTextFileBytes) == EFileRead::Ok &&
			(Params.Term.IsEmpty() || Matcher.Matches(FFileHelper::DecodeText(File.Bytes, File.Scratch)));
	}

	void ScanRoot(const FString& Root)
	{
		const FString Prefix =
			Root.Replace(FPaths::ProjectDir(), ""); // turns paths relative to the root into ones relative to the project
		FFileTreeOptions Options;
		Options.KeepFile = [&](std::string_view Path) { return IsCandidate(Prefix, Path); };
		const FFileTree Files = FFileTree::List(Root, Options);

		std::deque<FFileReader> Readers;
		for (int32 Worker = 0; Worker < GetNumWorkers(); ++Worker)
			Readers.emplace_back(Files);
		std::vector<uint8> Matches(static_cast<std::size_t>(Files.Num()));
		const auto Test = [&](int32 Begin, int32 End, int32 Worker)
		{
			for (int32 Index = Begin; Index < End; ++Index)
				Matches[static_cast<std::size_t>(Index)] = IsMatch(Readers[static_cast<std::size_t>(Worker)], Index);
		};
		const auto Report = [&](int32 Begin, int32 End)
		{
			for (int32 Index = Begin; Index < End && Found.Results.Num() < MaxFiles; ++Index)
			{
				if (Matches[static_cast<std::size_t>(Index)])
					AddResult(Prefix + FString::FromExternal(Files.GetRelativePath(Index)));
			}
			return Found.Results.Num() < MaxFiles;
		};
		if (Found.Results.Num() < MaxFiles)
			ParallelForOrdered(Files.Num(), FilesPerChunk, Test, Report);
	}

	void AddResult(FString RelativePath)
	{
		if (!Reported.Add(RelativePath))
			return;
		FAssetResult Result{.AssetPath = std::move(RelativePath), .AssetClass = "TextFile"};
		Result.Hits.Add({.Kind = "TextMatch", .Name = Params.Term, .Container = "File", .Count = 1, .Anchor = nullptr});
		Found.Results.Add(std::move(Result));
	}

	const FAssetSearchParams& Params;
	FContentMatcher Matcher;
	int32 MaxFiles;
	TSet<FString> Reported; // two files whose paths differ only in case are one
	FAssetSearchResult Found;
};
}

bool IsSearchableTextFile(FStringView Path)
{
	const FString Extension = FPaths::GetExtension(Path);
	const UQuellarSettings* Settings = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>();
	if (Settings && !Settings->TextSearchExtensions.IsEmpty())
		return Settings->TextSearchExtensions.Contains(Extension);
	return GetDefaultExtensions().Contains(Extension.ToLower());
}

bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive)
{
	return FContentMatcher(Params, bExact, bCaseSensitive).Matches(Content);
}

void SearchTextFiles(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	OnDone.ExecuteIfBound(FTextScan(Params).Run());
}
