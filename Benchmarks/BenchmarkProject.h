#pragma once

/**
 * Opens the project that a benchmark works on: the one that ORIVANE_BENCHMARK_PROJECT names (Scripts/make_project /tmp/Big
 * --assets 1000000), else a small one written to a scratch folder, which proves that the program runs and says little about
 * speed. With ORIVANE_BENCHMARK_NO_CACHE the registry cache is neither read nor written. False after saying why. The engine must
 * run.
 */
bool OpenBenchmarkProject();
