#pragma once

/** Version of the program, as users and protocol clients see it. */
inline constexpr const char* OrivaneVersion = "0.1.0";
