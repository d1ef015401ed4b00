#pragma once

#include "Core/Program/Diagnostics.h"

#include <stop_token>

/**
 * Loads every package of the open project and reports what its body and its references get wrong; what the header and the other
 * project files get wrong is reported while the project opens. Packages are unloaded on the way, so memory stays bounded. Game
 * thread.
 */
void CheckPackages(FDiagnosticSink& Diagnostics, std::stop_token Stop);

/** Reports the text files that searches pass over: too large, or not readable. */
void CheckTextFiles(FDiagnosticSink& Diagnostics, std::stop_token Stop);
/** Reports files that would be packages, were their extension in lower case. */
void CheckExtensions(FDiagnosticSink& Diagnostics, std::stop_token Stop);
