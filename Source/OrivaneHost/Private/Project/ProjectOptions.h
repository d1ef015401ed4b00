#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Quellar/Families/SearchMemory.h"

#include <chrono>

/** Counts of a scan under way, for a progress line. Written by the scan, read by anybody. */
struct FScanProgress
{
	std::atomic<int32> NumDone = 0;
	std::atomic<int32> NumTotal = 0;
};

/** How an open project learns that its files have changed. */
enum class EProjectWatch : uint8
{
	Off,	// packages are as they were when it was opened; settings are looked at by themselves
	Auto,	// by events of the system where there are any, else as Times
	Events, // or the project is not opened
	Times,	// files are listed and their stamps compared
};

/** How a project is to be opened. */
struct FProjectOptions
{
	FString Path;		   // project folder or its *.uproject, any bytes; empty: look from the current folder upward
	FString EngineContent; // folder mounted as /Engine; empty: none
	ERegistryCache Cache = ERegistryCache::Use;
	EProjectWatch Watch = EProjectWatch::Off;
	std::chrono::milliseconds WatchInterval = std::chrono::seconds(1); // the least between two looks at the files' times
	int32 NumThreads = 0;											   // 0: all processors
	int64 ObjectMemory = 0; // bytes that loaded objects may take between calls; 0: a quarter of the machine's memory
	int64 SearchMemory = SearchMemory::DefaultLimit; // bytes that searches may keep for later ones
	TArray<FString> Preload;						 // paths for PackageMemory::Load
	FScanProgress* Progress = nullptr;
	std::stop_token Stop;
};

/** A plugin whose content is mounted. */
struct FProjectPlugin
{
	FString Name;
	FString Folder; // relative to the project, without a trailing slash

	/** Exactly. */
	friend bool operator==(const FProjectPlugin& A, const FProjectPlugin& B)
	{
		return A.Name.View() == B.Name.View() && A.Folder.View() == B.Folder.View();
	}
};

/** What was opened, for `info` and `check`. */
struct FProjectSummary
{
	FString Name;
	FString Description;
	FString Folder;			// absolute, with a trailing slash
	FString DescriptorFile; // relative to the folder
	TArray<FProjectPlugin> Plugins;
	TArray<FString> ScriptModules;
	FRegistryScanReport Scan;
	double OpenSeconds = 0; // all of it
};
