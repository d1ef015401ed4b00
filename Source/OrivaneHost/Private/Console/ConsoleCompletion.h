#pragma once

#include "Console/LineEditor.h"

/**
 * What may stand at the end of a console line: command names, the words of a command, values of a word (families, relations,
 * folders and packages of the open project). Case is ignored. Own words are those of the console itself. Game thread.
 */
FLineCompletion CompleteConsoleLine(const FString& Line, const TArray<FString>& OwnWords);
