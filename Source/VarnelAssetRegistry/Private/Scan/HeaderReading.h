#pragma once

#include "Scan/NameHolders.h"
#include "Scan/PackageRecords.h"

/** What the headers of the candidates said. */
struct FReadHeaders
{
	struct FPlace
	{
		uint32 Reader = NoId; // NoId: the file gave no record
		uint32 Record = 0;
	};
	std::vector<FPackageRecords> Readers; // one for each thread
	std::vector<FPlace> Places;			  // by candidate
	int32 NumRead = 0;					  // files whose bytes went through a reader
};

/** Reads the candidates' files on several threads. Files that cannot be read are reported, those that have vanished are not.
 * Incomplete once stopped. */
FReadHeaders ReadHeaders(
	const std::vector<FCandidate>& Candidates, const FListedFiles& Files, const FRegistryScanOptions& Options);
