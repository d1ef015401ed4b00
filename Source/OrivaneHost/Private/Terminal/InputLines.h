#pragma once

#include "Core/Text/String.h"
#include "Terminal/LineSplitter.h"

#include <functional>

/**
 * Hands the lines of standard input to Handler as they come, until it ends or IsOver says so after a piece of it. False, after
 * saying so on standard error in the name of the command, when it cannot be read; an interrupt is an end.
 */
bool ReadInputLines(FStringView Command, std::size_t MaxLineBytes, ILineHandler& Handler, const std::function<bool()>& IsOver);
