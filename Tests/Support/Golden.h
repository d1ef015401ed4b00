#pragma once

#include <string_view>

/**
 * Expects the text of Tests/Data/NAME. Where they differ, the failure names the file and the first line that differs. When
 * ORIVANE_UPDATE_GOLDEN is set, as `./test --update-golden` does, the file is written instead: look at the changes before they
 * are committed. Texts must not depend on the machine, the time or a seed.
 */
void ExpectGolden(std::string_view Name, std::string_view Text);
