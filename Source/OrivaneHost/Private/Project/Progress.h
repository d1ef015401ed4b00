#pragma once

#include "Project/Project.h"

#include <thread>

/** A line on a terminal's standard error while a project opens, once that takes longer than a second; nothing where there is no
 * terminal. */
class FProgressLine
{
public:
	explicit FProgressLine(const FScanProgress& Progress);
	/** Wipes the line. */
	~FProgressLine();

private:
	std::jthread Writer;
};
