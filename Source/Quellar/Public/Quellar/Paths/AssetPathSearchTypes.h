#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/** What the answer to an agent lists; a search itself finds both. */
enum class EAssetPathDetailMode : uint8
{
	Directories = 0,
	Files = 1,
	Both = 2,
};

enum class EAssetPathMatchMode : uint8
{
	Contains, // the object path or the asset name contains the term
	Exact,	  // one of them equals it
};

struct FAssetPathSearchParams
{
	FString Term; // an empty one finds nothing
	EAssetPathMatchMode MatchMode = EAssetPathMatchMode::Contains;
	bool bCaseSensitive = false;
	EAssetPathDetailMode DetailMode = EAssetPathDetailMode::Directories;
	FString PathContains;		  // of the directory; empty: no filter
	TArray<FString> ClassFilters; // parts of a class path or of an asset type, whatever their case; empty: no filter
	int32 MaxFileResults = 200;	  // caps below 1 act as 1
	int32 MaxDirectoryBuckets = 50;
	int32 MaxFilesPerDirectory = 10;
};

struct FAssetPathSearchResult
{
	int32 TotalHits = 0; // before any cap
	int32 TotalDirectories = 0;
	bool bTruncated = false;			// some cap was hit
	bool bDirectoriesTruncated = false; // one of the two caps on directories
	TArray<FString> TruncationReasons;	// "max_file_results", "dir_bucket_cap", "files_per_dir_cap", in the order first hit
	TMap<FString, TArray<FString>> Directories; // "/Game/UI" to the object paths in it; both ascending without regard to case
	TArray<FString> Files;						// object paths, ascending without regard to case
};
