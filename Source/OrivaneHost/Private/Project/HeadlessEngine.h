#pragma once

#include "Core/Base/Types.h"

/**
 * The engine and its modules, without a project: classes are known, the modules AssetRegistry, OrivaneToolkit and Quellar run.
 * The thread that makes it is the game thread. At most one at a time.
 */
class FHeadlessEngine
{
public:
	FHeadlessEngine();
	~FHeadlessEngine();
	FHeadlessEngine(const FHeadlessEngine&) = delete;
	FHeadlessEngine& operator=(const FHeadlessEngine&) = delete;
};
