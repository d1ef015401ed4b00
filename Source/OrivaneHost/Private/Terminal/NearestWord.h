#pragma once

#include <string>
#include <vector>

/** The word nearest to a mistyped one, or "" when none is near. */
std::string FindNearestWord(const std::string& Word, const std::vector<std::string>& Known);
