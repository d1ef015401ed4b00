#include "Quellar/Families/TextSearch.h"

#include "Core/Base/Map.h"
#include "Core/Files/File.h"
#include "Core/Text/TextDecoder.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "Families/FamilyScan.h"
#include "Families/TextStore.h"
#include "Quellar/Assets/QuellarSettings.h"
#include "Quellar/Families/SearchMemory.h"

#include <atomic>
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
	/** Window is scratch. What is searched is appended to Grams, unless it is null. */
	FPiecewiseSearch(const FContentMatcher& InMatcher, std::string& InWindow, FTextGramsBuilder* InGrams)
		: Matcher(InMatcher)
		, Window(InWindow)
		, Grams(InGrams)
	{
		Window.clear();
	}

	/** False once no more pieces are wanted. */
	bool Take(std::string_view Piece)
	{
		DropSearched();
		const std::size_t NumSearched = Window.size();
		Decoder.Append(Piece, Window);
		AppendGrams(NumSearched);
		bFound = Matcher.Matches(Window);
		bAllTaken = !bFound && !IsStopRequested();
		return bAllTaken;
	}
	/** After the last piece. */
	bool Finish()
	{
		const std::size_t NumSearched = Window.size();
		Decoder.Finish(Window);
		AppendGrams(NumSearched);
		return bFound || (Window.size() > NumSearched && Matcher.Matches(Window));
	}
	/** Whether no piece was the last one wanted. */
	bool HasTakenAll() const { return bAllTaken; }

private:
	void AppendGrams(std::size_t From)
	{
		if (Grams)
			Grams->Append(std::string_view(Window).substr(From));
	}
	/** Keeps what the term may begin in. */
	void DropSearched()
	{
		if (Window.size() > Matcher.GetMaxTermBytes())
			Window.erase(0, Window.size() - Matcher.GetMaxTermBytes());
	}

	const FContentMatcher& Matcher;
	std::string& Window;
	FTextGramsBuilder* Grams;
	FTextDecoder Decoder;
	bool bFound = false;
	bool bAllTaken = true;
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
		Found.bEndedEarly = Found.Results.Num() >= MaxFiles;
		return std::move(Found);
	}

private:
	enum class EOutcome : uint8
	{
		NoMatch,
		Match,
		TooLarge,
		Unreadable,
	};

	bool PassesFilter(const FString& Prefix, FStringView RelativeToRoot) const
	{
		return Params.PathContains.IsEmpty() || PassesPathFilter(Prefix + FString::FromExternal(RelativeToRoot), Params);
	}

	/** What one thread reads with. */
	struct FFileReader
	{
		explicit FFileReader(const FFileTree& Files) : Reader(Files) {}
		FFileTreeReader Reader;
		std::string Bytes;
		std::string Scratch;
		FTextGramsBuilder Builder;
	};

	/** What is learned of one file. */
	struct FTested
	{
		EOutcome Outcome = EOutcome::NoMatch;
		FTextGrams Grams;
	};

	FTested Test(FFileReader& File, int32 Index, bool bWantsGrams)
	{
		FTested Tested;
		Tested.Outcome = TestFile(File, Index, bWantsGrams && GramBytesLeft > 0 ? &Tested.Grams : nullptr);
		if ((GramBytesLeft -= Tested.Grams.GetBytes()) < 0)
		{
			GramBytesLeft += Tested.Grams.GetBytes();
			Tested.Grams = {};
		}
		return Tested;
	}

	/** Grams stay unknown where the file is not gone through to its end. */
	EOutcome TestFile(FFileReader& File, int32 Index, FTextGrams* Grams) const
	{
		const bool bWhole = Matcher.ComparesWhole() && !Params.Term.IsEmpty();
		const std::size_t MaxBytes = bWhole ? Matcher.GetMaxTermBytes() + MaxMarkBytes : PieceBytes;
		const EFileRead Read = File.Reader.Read(Index, File.Bytes, MaxBytes);
		if (Read == EFileRead::TooLarge)
			return bWhole ? EOutcome::NoMatch : TestFileInPieces(File, Index, Grams);
		return ToOutcome(Read,
			[&]
			{
				if (Params.Term.IsEmpty())
					return true;
				const FStringView Text = FFileHelper::DecodeText(File.Bytes, File.Scratch);
				if (Grams)
				{
					File.Builder.Append(Text);
					*Grams = File.Builder.Finish();
				}
				return Matcher.Matches(Text);
			});
	}

	EOutcome TestFileInPieces(FFileReader& File, int32 Index, FTextGrams* Grams) const
	{
		FPiecewiseSearch Search(Matcher, File.Scratch, Grams ? &File.Builder : nullptr);
		const EFileRead Read = File.Reader.ReadInPieces(Index, File.Bytes, FFileHelper::MaxTextFileBytes, PieceBytes,
			[&](std::string_view Piece) { return !Params.Term.IsEmpty() && Search.Take(Piece); });
		const EOutcome Outcome = ToOutcome(Read, [&] { return Params.Term.IsEmpty() || Search.Finish(); });
		FTextGrams Made = Grams ? File.Builder.Finish() : FTextGrams();
		if (Grams && Read == EFileRead::Ok && !Params.Term.IsEmpty() && Search.HasTakenAll())
			*Grams = std::move(Made);
		return Outcome;
	}

	/** A file that has gone meanwhile is not missed. */
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

	/** The files to look at; all of them, unless the store knows better. */
	FTextFiles ListFiles(const FString& Root, const FString& Prefix) const
	{
		const auto Filter = [&](std::string_view Path) { return PassesFilter(Prefix, Path); };
		if (FTextStore::Get().IsOn() && Prefix.IsEmpty())
			return FTextStore::Get().Find(Root, FTermGrams(Params.Term), Filter);
		FFileTreeOptions Options;
		Options.KeepFile = [&](std::string_view Path) { return IsSearchableTextFile(Path) && Filter(Path); };
		Options.Stop = GetStopToken();
		FTextFiles Files;
		Files.Tree = FFileTree::List(Root, Options);
		Files.UnreadableFolders = Files.Tree.GetUnreadableFolders();
		Files.Places.assign(static_cast<std::size_t>(Files.Tree.Num()), FTextFiles::NoPlace);
		return Files;
	}

	void ScanRoot(const FString& Root)
	{
		const FString Prefix =
			Root.Replace(FPaths::ProjectDir(), ""); // turns paths relative to the root into ones relative to the project
		const FTextFiles Files = ListFiles(Root, Prefix);
		for (const std::string& Folder : Files.UnreadableFolders)
			Found.Unread.Add({Prefix + FString::FromExternal(Folder) + "/", FUnreadFile::EReason::Unreadable});
		if (Found.Results.Num() < MaxFiles)
			TestFiles(Files, Prefix);
	}

	void TestFiles(const FTextFiles& Files, const FString& Prefix)
	{
		std::deque<FFileReader> Readers;
		for (int32 Worker = 0; Worker < GetNumWorkers(); ++Worker)
			Readers.emplace_back(Files.Tree);
		std::vector<FTested> Tested(Files.Places.size());
		const auto TestChunk = [&](int32 Begin, int32 End, int32 Worker)
		{
			for (auto Index = static_cast<std::size_t>(Begin); Index < static_cast<std::size_t>(End) && !IsStopRequested();
				 ++Index)
			{
				const bool bWantsGrams = Files.Places[Index] != FTextFiles::NoPlace;
				Tested[Index] = Test(Readers[static_cast<std::size_t>(Worker)], static_cast<int32>(Index), bWantsGrams);
			}
		};
		const auto Report = [&](int32 Begin, int32 End)
		{
			for (int32 Index = Begin; Index < End && Found.Results.Num() < MaxFiles; ++Index)
			{
				if (const EOutcome Outcome = Tested[static_cast<std::size_t>(Index)].Outcome; Outcome != EOutcome::NoMatch)
					Add(Outcome, Prefix + FString::FromExternal(Files.Tree.GetRelativePath(Index)));
			}
			return Found.Results.Num() < MaxFiles && !IsStopRequested();
		};
		ParallelForOrdered(Files.Tree.Num(), FilesPerChunk, TestChunk, Report);
		for (std::size_t Index = 0; Index < Tested.size(); ++Index)
		{
			if (Tested[Index].Grams.IsKnown())
				FTextStore::Get().Keep(Files.Places[Index], std::move(Tested[Index].Grams));
		}
	}

	void Add(EOutcome Outcome, FString RelativePath)
	{
		if (Outcome == EOutcome::Match)
			return AddResult(std::move(RelativePath));
		const bool bTooLarge = Outcome == EOutcome::TooLarge;
		Found.Unread.Add(
			{std::move(RelativePath), bTooLarge ? FUnreadFile::EReason::TooLarge : FUnreadFile::EReason::Unreadable});
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
	std::atomic<int64> GramBytesLeft = SearchMemory::GetBytesLeft();
	TSet<FString> Reported; // two files whose paths differ only in case are one
	FAssetSearchResult Found;
};
}

bool IsSearchableTextFile(FStringView Path)
{
	const FString Extension = FString::FromExternal(FPaths::GetExtension(Path));
	const UQuellarSettings* Settings = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>();
	if (Settings && !Settings->TextSearchExtensions.IsEmpty())
		return Settings->TextSearchExtensions.Contains(Extension);
	return GetDefaultExtensions().Contains(Extension.ToLower());
}

bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive)
{
	return FContentMatcher(Params, bExact, bCaseSensitive).Matches(Content);
}

FTextLine FindFirstTextLine(const FString& File, const FAssetSearchParams& Params)
{
	constexpr std::size_t MaxLineBytes = 300;
	const std::string Path = File.ToStdString();
	const FFileTree Tree = FFileTree::FromPaths(FPaths::ProjectDir(), {Path});
	FTextLine Found;
	std::string Bytes;
	std::string Scratch;
	if (Tree.Num() == 0 || Params.Term.IsEmpty() || Tree.Read(0, Bytes, PieceBytes) != EFileRead::Ok)
		return Found;
	FStringView Text = FFileHelper::DecodeText(Bytes, Scratch);
	const FContentMatcher Matcher(Params, false, Params.bCaseSensitive);
	for (int32 Number = 1; !Text.empty(); ++Number)
	{
		const std::size_t End = Text.find('\n');
		const FStringView Line = Text.substr(0, End);
		Text = End == FStringView::npos ? FStringView() : Text.substr(End + 1);
		if (!Matcher.Matches(Line))
			continue;
		const FString Trimmed = FString(Line).TrimStartAndEnd();
		const FStringView Shown = Trimmed.View().substr(0, MaxLineBytes);
		return {.Number = Number, .Text = FString(Shown.substr(0, Unicode::FloorToCodePoint(Trimmed.View(), Shown.size())))};
	}
	return Found;
}

/** Project files with a searchable extension that contain the term, or in exact mode equal it. Reads files, touches no asset. */
void SearchTextFiles(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	FTextScan Scan(Params);
	OnDone.ExecuteIfBound(Scan.Run());
}

void StartKeepingTextFiles(const TArray<FString>& UntoldFolders, EFolderWatchMode Mode)
{
	checkGameThread();
	FTextStore::Get().Start(UntoldFolders, Mode);
}

void StopKeepingTextFiles()
{
	checkGameThread();
	FTextStore::Get().Stop();
}

void NoteTextFileChanges(const FFolderChanges& Changes)
{
	checkGameThread();
	FTextStore::Get().Note(Changes);
}
