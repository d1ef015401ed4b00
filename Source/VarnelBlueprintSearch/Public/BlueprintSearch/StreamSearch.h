#pragma once

#include "BlueprintSearch/FindInBlueprintsResult.h"
#include "Core/Threads/RunnableThread.h"

#include <condition_variable>
#include <exception>
#include <mutex>

/** Version of what the index holds of an entry: category, text, comment and place. */
inline constexpr int32 BlueprintIndexVersion = 3;

/** What a query asks besides its text. */
struct FStreamSearchOptions
{
	int32 QueryFilter = 0;	  // carried with the query; this index keeps one kind of entries and has nothing to leave out
	int32 MinimumVersion = 0; // an index of an older version finds nothing
};

/**
 * One search of the Blueprint index, on a thread of its own that starts at once. An entry matches when its text or its comment
 * contains the value without regard to case. Sees the index as it was when the search was made. All functions may be called from
 * any thread.
 */
class FStreamSearch final : public FRunnable
{
public:
	FStreamSearch(const FString& InSearchValue, const FStreamSearchOptions& InOptions);
	/** Stops the search and waits for its thread. */
	~FStreamSearch() override;

	/** The search has ended, also by a stop. */
	bool IsComplete() const { return bComplete; }
	/** From 0 to 1. */
	float GetPercentComplete() const;
	/** Makes the search end soon, without results. */
	void Stop() override;
	/** Waits for the end. */
	void EnsureCompletion();
	/** Waits for the end, at most so long; true when it has come. */
	bool WaitForCompletion(double Seconds);
	int32 GetSearchedVersion() const { return BlueprintIndexVersion; }
	/** What the search itself took, without the start of its thread; once complete. */
	double GetSearchSeconds() const { return SearchSeconds; }

	// Results, once complete: one for each Blueprint with a match, in registry order, appended to the list. The items are the
	// Blueprints' lines. What ended the search, for want of memory, is thrown.
	void GetFilteredItems(TArray<TSharedPtr<FFindInBlueprintsResult>>& OutItems) const;
	void GetFilteredImaginaryResults(TArray<TSharedPtr<FImaginaryFiBData>>& OutResults) const;

private:
	uint32 Run() override;
	int32 NumResults() const;

	const FString SearchValue;
	const FStreamSearchOptions Options;
	const FBlueprintIndexView BlueprintIndex;
	const TUniquePtr<struct FSearchProgress> Progress;
	TSharedPtr<FIndexMatches> Matches; // this and the next two: written by the thread until bComplete
	std::exception_ptr Failure;
	double SearchSeconds = 0;
	std::mutex Lock;
	std::condition_variable Completed;
	std::atomic<bool> bComplete = false; // set under the lock
	TSharedPtr<FRunnableThread> Thread;	 // last: it uses the rest
};
