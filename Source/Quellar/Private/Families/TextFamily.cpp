#include "Quellar/Families/TextSearch.h"

#include "Core/Base/Map.h"
#include "Core/Files/File.h"
#include "Core/Text/TextDecoder.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "Families/FamilyScan.h"
#include "Quellar/Assets/QuellarSettings.h"

#include <deque>
#include <vector>

namespace
{
constexpr int32 DefaultMaxFiles = 200; // where the total cap is below 1
constexpr int32 FilesPerChunk = 32;
// Larger files are read and searched in pieces of this size: they take little memory, and a stop is heeded between two of them.
constexpr std::size_t PieceBytes = 1024 * 1024;
constexpr std::size_t MaxCharacterBytes = 4;
constexpr std::size_t MaxMarkBytes = 4; // a byte-order mark, and an odd byte at the end

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
		, MaxTermBytes(static_cast<std::size_t>(Params.Term.Len()) * MaxCharacterBytes)
		, Case(bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase)
		, bWhole(bExact)
		, Finder(Params.Term, Case)
	{
	}

	bool Matches(FStringView Content) const { return bWhole ? Term.Equals(Content, Case) : Finder.IsFoundIn(Content); }
	bool ComparesWhole() const { return bWhole; }
	/** A text that is the term, or the place of one, has no more bytes, however it is spelled and encoded. */
	std::size_t GetMaxTermBytes() const { return MaxTermBytes; }

private:
	const FString& Term;
	std::size_t MaxTermBytes;
	ESearchCase Case;
	bool bWhole;
	FTextFinder Finder;
};

/** Looks for the term in a text that comes in pieces. */
class FPiecewiseSearch
{
public:
	/** Window is scratch. */
	FPiecewiseSearch(const FContentMatcher& InMatcher, std::string& InWindow) : Matcher(InMatcher), Window(InWindow)
	{
		Window.clear();
	}

	/** False once no more pieces are wanted. */
	bool Take(std::string_view Piece)
	{
		DropSearched();
		Decoder.Append(Piece, Window);
		bFound = Matcher.Matches(Window);
		return !bFound && !IsStopRequested();
	}
	/** After the last piece. */
	bool Finish()
	{
		const std::size_t NumSearched = Window.size();
		Decoder.Finish(Window);
		return bFound || (Window.size() > NumSearched && Matcher.Matches(Window));
	}

private:
	/** Keeps what the term may begin in. */
	void DropSearched()
	{
		if (Window.size() > Matcher.GetMaxTermBytes())
			Window.erase(0, Window.size() - Matcher.GetMaxTermBytes());
	}

	const FContentMatcher& Matcher;
	std::string& Window;
	FTextDecoder Decoder;
	bool bFound = false;
};

/** One search of the family: the roots are visited in order, files in ascending byte order, until the cap is reached or a stop is
 * requested. */
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
	FTextSearchGaps TakeGaps() { return std::move(Gaps); }

private:
	enum class EOutcome : uint8
	{
		NoMatch,
		Match,
		TooLarge,
		Unreadable,
	};

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

	EOutcome TestFile(FFileReader& File, int32 Index) const
	{
		const bool bWhole = Matcher.ComparesWhole() && !Params.Term.IsEmpty();
		const std::size_t MaxBytes = bWhole ? Matcher.GetMaxTermBytes() + MaxMarkBytes : PieceBytes;
		const EFileRead Read = File.Reader.Read(Index, File.Bytes, MaxBytes);
		if (Read == EFileRead::TooLarge)
			return bWhole ? EOutcome::NoMatch : TestFileInPieces(File, Index);
		return ToOutcome(
			Read, [&] { return Params.Term.IsEmpty() || Matcher.Matches(FFileHelper::DecodeText(File.Bytes, File.Scratch)); });
	}

	EOutcome TestFileInPieces(FFileReader& File, int32 Index) const
	{
		FPiecewiseSearch Search(Matcher, File.Scratch);
		const EFileRead Read = File.Reader.ReadInPieces(Index, File.Bytes, FFileHelper::MaxTextFileBytes, PieceBytes,
			[&](std::string_view Piece) { return !Params.Term.IsEmpty() && Search.Take(Piece); });
		return ToOutcome(Read, [&] { return Params.Term.IsEmpty() || Search.Finish(); });
	}

	/** A file that has gone meanwhile is not a gap. */
	template <class TMatches>
	static EOutcome ToOutcome(EFileRead Read, TMatches&& Matches)
	{
		switch (Read)
		{
			case EFileRead::TooLarge:
				return EOutcome::TooLarge;
			case EFileRead::Unreadable:
				return EOutcome::Unreadable;
			case EFileRead::Missing:
				return EOutcome::NoMatch;
			case EFileRead::Ok:
				break;
		}
		return Matches() ? EOutcome::Match : EOutcome::NoMatch;
	}

	void ScanRoot(const FString& Root)
	{
		const FString Prefix =
			Root.Replace(FPaths::ProjectDir(), ""); // turns paths relative to the root into ones relative to the project
		FFileTreeOptions Options;
		Options.KeepFile = [&](std::string_view Path) { return IsCandidate(Prefix, Path); };
		Options.Stop = GetStopToken();
		const FFileTree Files = FFileTree::List(Root, Options);

		std::deque<FFileReader> Readers;
		for (int32 Worker = 0; Worker < GetNumWorkers(); ++Worker)
			Readers.emplace_back(Files);
		for (const std::string& Folder : Files.GetUnreadableFolders())
			Gaps.Unreadable.Add(Prefix + FString::FromExternal(Folder) + "/");
		std::vector<EOutcome> Outcomes(static_cast<std::size_t>(Files.Num()));
		const auto Test = [&](int32 Begin, int32 End, int32 Worker)
		{
			for (int32 Index = Begin; Index < End && !IsStopRequested(); ++Index)
				Outcomes[static_cast<std::size_t>(Index)] = TestFile(Readers[static_cast<std::size_t>(Worker)], Index);
		};
		const auto Report = [&](int32 Begin, int32 End)
		{
			for (int32 Index = Begin; Index < End && Found.Results.Num() < MaxFiles; ++Index)
			{
				if (const EOutcome Outcome = Outcomes[static_cast<std::size_t>(Index)]; Outcome != EOutcome::NoMatch)
					Add(Outcome, Prefix + FString::FromExternal(Files.GetRelativePath(Index)));
			}
			return Found.Results.Num() < MaxFiles && !IsStopRequested();
		};
		if (Found.Results.Num() < MaxFiles)
			ParallelForOrdered(Files.Num(), FilesPerChunk, Test, Report);
	}

	void Add(EOutcome Outcome, FString RelativePath)
	{
		if (Outcome == EOutcome::Match)
			AddResult(std::move(RelativePath));
		else
			(Outcome == EOutcome::TooLarge ? Gaps.TooLarge : Gaps.Unreadable).Add(std::move(RelativePath));
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
	FTextSearchGaps Gaps;
};

FTextSearchGaps& GetLastGaps()
{
	static FTextSearchGaps Gaps;
	return Gaps;
}
}

const FTextSearchGaps& GetTextSearchGaps()
{
	return GetLastGaps();
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

/** Project files with a searchable extension that contain the term, or in exact mode equal it. Reads files, touches no asset. */
void SearchTextFiles(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	FTextScan Scan(Params);
	const FAssetSearchResult Found = Scan.Run();
	GetLastGaps() = Scan.TakeGaps();
	OnDone.ExecuteIfBound(Found);
}
