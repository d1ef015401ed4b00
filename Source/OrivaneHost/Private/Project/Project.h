#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Core/Program/Diagnostics.h"

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
	TArray<FString> Preload; // paths for PackageMemory::Load, see PreloadPackages
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

/**
 * The project that is open in this process; there is at most one. Game thread.
 */
class FProject
{
public:
	/**
	 * Opens a project: descriptor, settings, script modules, mounts, registry. Faults in its files go to Diagnostics and lose
	 * nothing else. False, with a sentence that says what to do, when there is no project to open; what was open before is closed
	 * either way.
	 */
	static bool Open(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, FString& OutError);
	static void Close();
	static bool IsOpen();
	/** Reads the settings again where their file has changed since they were read; costs a look at the file otherwise. To be
	 * called before a search that is to obey them. True, and what is wrong with them in the sink, when they were read. */
	static bool RefreshSettings(FDiagnosticSink& Diagnostics);
	static const FProjectSummary& GetSummary();
	/** Lives as long as the program; empty while no project is open. */
	static FAssetRegistry& GetRegistry();
	/** Packages with an asset that passes the filter, registry-filtered ones included, in registry order. */
	static TArray<FName> ListPackages(const FARFilter& Filter = {});
	/** The file of a package, relative to the project where it lies there, as in diagnostics; "" when there is none. */
	static FString GetPackageFileName(FName PackageName);
};
