#pragma once

/**
 * Makes the classes and structures of /Script/Engine known by their paths: those with a C++ class in this target, and those
 * without properties of interest. Called once before any project opens; further calls do nothing. Game thread.
 */
void RegisterEngineClasses();
