#pragma once

#include "Scan/RegistryScan.h"

#include <mutex>
#include <thread>

/**
 * Holds the registry's state and keeps it up to date: an image of everything, and for files that changed since an overlay, made
 * anew with every change. An overlay that has grown is folded into a new image on a thread of its own, which takes the place of
 * the old one with the next change. Any thread.
 */
class FLiveRegistry
{
public:
	using FSnapshotPtr = TSharedPtr<const FRegistrySnapshot>;

	FLiveRegistry();

	/** A query works on what it took here, whatever happens meanwhile. */
	FSnapshotPtr Take() const;
	/** Of what Take gives. */
	uint64 GetStateNumber() const;
	void SetClassParents(FRegistryScan::FClassParents Parents);
	bool Scan(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport);
	ERegistryUpdate Update(const FRegistryScanOptions& Options, std::span<const std::string> Files,
		std::span<const std::string> Folders, FRegistryScanReport& OutReport);

private:
	/** What a scan of everything has left. */
	struct FBase
	{
		TSharedPtr<const FRegistryPart> Part;
		FNamesWithoutRecord Strays;
	};
	struct FFold
	{
		FRegistryScanOptions Options;
		FRegistryScan::FClassParents ClassParents;
		FScanScope Changed; // what the overlay held when it began
		FScanScope Since;	// what has changed since
		FBase Result;		// its part is null when it was stopped or has failed
		std::atomic<bool> bDone = false;
		std::jthread Thread; // ends before the rest
	};

	void Set(FSnapshotPtr New);
	/** What of it concerns packages. */
	static FScanScope MakeScope(
		const FRegistryScanOptions& Options, std::span<const std::string> Files, std::span<const std::string> Folders);
	ERegistryUpdate ScanAll(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport);
	/** Null where an overlay cannot say what has changed. */
	TSharedPtr<const FRegistryOverlay> MakeOverlay(TSharedPtr<const FRegistryImage> Changed, const FNamesWithoutRecord& Strays,
		const FRegistryScanOptions& Options, std::vector<uint32> Hidden) const;
	void AdoptFold();
	static void RunFold(FFold& Own, TSharedPtr<const FRegistryImage> Known);
	void StartFold(const FRegistryScanOptions& Options);

	std::mutex ScanLock; // one scan or update at a time; guards what follows
	FRegistryScan::FClassParents ClassParents;
	FBase Base;
	FScanScope Scope;							   // of the overlay
	TSharedPtr<const FRegistryImage> OverlayImage; // null before the first change
	TUniquePtr<FFold> Fold;
	FScanScope Pending; // not in an overlay yet: an update was stopped

	mutable std::mutex Lock; // guards what follows
	FSnapshotPtr Current;
	uint64 StateNumber = 1;
};
