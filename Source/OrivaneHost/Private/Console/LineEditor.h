#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

#include <functional>

/** What may stand where the cursor is. */
struct FLineCompletion
{
	int32 Start = 0; // byte of the line from which on a candidate replaces what is before the cursor
	TArray<FString> Candidates;
};

/** Lines from a terminal, with editing, history and completion. At most one at a time. */
class FLineEditor
{
public:
	/** Given the line up to the cursor. */
	using FCompleter = std::function<FLineCompletion(const FString& Line)>;

	/** The history is kept in a file, "" for none; faults of the file are not faults of the editor. */
	FLineEditor(FString InHistoryFile, FCompleter InCompleter);
	~FLineEditor();
	FLineEditor(const FLineEditor&) = delete;
	FLineEditor& operator=(const FLineEditor&) = delete;

	/** Asks for a line; a dropped one (Ctrl-C) is empty. False at the end of input (Ctrl-D). A request to terminate ends the
	 * process.
	 */
	bool ReadLine(FString& OutLine);

private:
	struct FState;
	TUniquePtr<FState> State;
};
