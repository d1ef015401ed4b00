#pragma once

#include "AssetRegistry/AssetRegistry.h"

/** Counts of a scan under way, for a progress line. Written by the scan, read by anybody. */
struct FScanProgress
{
	std::atomic<int32> NumDone = 0;
	std::atomic<int32> NumTotal = 0;
};

/** How a project is to be opened. */
struct FProjectOptions
{
	FString Path;		   // project folder or its *.uproject, any bytes; empty: look from the current folder upward
	FString EngineContent; // folder mounted as /Engine; empty: none
	ERegistryCache Cache = ERegistryCache::Use;
	int32 NumThreads = 0;	 // 0: all processors
	int64 ObjectMemory = 0;	 // bytes that loaded objects may take between calls; 0: a quarter of the machine's memory
	TArray<FString> Preload; // paths for PackageMemory::Load
	FScanProgress* Progress = nullptr;
	std::stop_token Stop;
};

/** A plugin whose content is mounted. */
struct FProjectPlugin
{
	FString Name;
	FString Folder; // relative to the project, without a trailing slash
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
