#pragma once

#include "Core/Files/FolderWatch.h"
#include "Quellar/Hits/AssetSearchTypes.h"

/** The file's extension is one of the settings' text extensions, or of the default ones where the settings list none. Case is
 * ignored. Path may be any bytes. Any thread. */
bool IsSearchableTextFile(FStringView Path);

/** Whether text contains the term, or in exact mode equals it as a whole; Params gives the term. For callers that have the text:
 * the search itself does not hold whole files. Kept for callers. */
bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive);

/** The first line of a text file that holds the term. */
struct FTextLine
{
	int32 Number = 0; // from 1 on; 0: no line of its beginning does
	FString Text;	  // without blanks around it, shortened
};

/** Looks through the first megabyte of a file, by its path relative to the project. */
FTextLine FindFirstTextLine(const FString& File, const FAssetSearchParams& Params);

/**
 * From now on every change of the opened project's files is told through NoteTextFileChanges before the next search, but for what
 * lies in UntoldFolders ("Saved": names of folders directly below the project), which searches watch themselves, in this mode
 * where it is to be had. Searches may therefore keep what they learn of text files, and answer as of the changes told last. Game
 * thread.
 */
void StartKeepingTextFiles(const TArray<FString>& UntoldFolders, EFolderWatchMode Mode);
/** Nothing is told any more: what is kept goes, and searches read all files. To be called before another project is opened. Game
 * thread. */
void StopKeepingTextFiles();
/** Files outside of the project may be among them. Game thread. */
void NoteTextFileChanges(const FFolderChanges& Changes);
