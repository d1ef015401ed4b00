#pragma once

/**
 * Registers the tool "asset_path_search" with the executor: the module leaves that to its host, and unregisters it when it shuts
 * down. Game thread, while the modules run.
 */
void RegisterPathSearchTool();
