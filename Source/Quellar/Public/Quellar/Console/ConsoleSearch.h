#pragma once

#include "Core/Base/Delegate.h"
#include "Quellar/Hits/AssetSearchTypes.h"

/**
 * The search commands of the console (Orivane.AssetSearch and one for each family). A command starts its search and returns; when
 * the search reports, its document is written to a file below Saved/Quellar. A search whose stop is requested until then, see
 * Core/StopToken.h, writes and reports nothing. Game thread.
 */
class FConsoleSearches
{
public:
	/** What became of a search. */
	struct FReport
	{
		int32 Number = 0;
		FString Command;
		FString File;		   // absolute
		bool bWritten = false; // false: the file is as it was
		const FAssetSearchParams& Params;
		const FAssetSearchResult& Found;
	};

	/** Searches started so far; also the number of the last one. */
	static int32 NumStarted();
	/** Executed once for each search that reports; unbound unless a console wants to show what was found. */
	static void SetOnFinished(TDelegate<void(const FReport&)> OnFinished);

	/** The words that a command understands ("term=", "path="); empty for a name that is not a search command's. */
	static TArray<FString> GetWords(const FString& Command);
	/** What a command searches for with these words; an unset term and all families for a name that is not a search command's. */
	static FAssetSearchParams ReadParams(const FString& Command, const TArray<FString>& Words);
};
