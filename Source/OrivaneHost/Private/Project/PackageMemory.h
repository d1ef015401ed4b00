#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/Name.h"
#include "Project/ProjectOptions.h"

/**
 * Packages of the open project that stay in memory on request, such as particle systems, which a search reads
 * only there. A path is
 *   a package        /Game/FX/NS_Sparks, or its file Content/FX/NS_Sparks.vasset,
 *   an object in one /Game/FX/NS_Sparks.NS_Sparks, whose package is meant, or
 *   a folder         /Game/FX, with every package below it.
 * Where a package and a folder bear one name the package is meant, and the folder when a slash follows. Case is ignored. Closing
 * the project lets go of all. Game thread.
 */
namespace PackageMemory
{
struct FLoaded
{
	int32 NumPackages = 0;
	int32 NumFailed = 0; // of these; their files are faulty
};

/**
 * Loads what a path names and keeps it. What it refers to is loaded as it is needed, and not kept. False, with a sentence, when
 * the project has nothing there, or when stopped: what was loaded until then is kept. Progress may be null.
 */
bool Load(
	const FString& Path, FLoaded& OutLoaded, FString& OutError, FScanProgress* Progress = nullptr, std::stop_token Stop = {});
/** Removes from memory what a path names, however it came there, and counts it. False, with a sentence, when the project has
 * nothing there. */
bool Unload(const FString& Path, int32& OutNumUnloaded, FString& OutError);

/** What the user has asked for. */
struct FRequest
{
	bool bLoad = true; // else unload
	FString Path;
};
/** All that found something since the project was opened, as far as it still matters, in order. */
const TArray<FRequest>& GetRequests();
/**
 * After packages have come, changed or gone: loads and keeps what it would be if the requests were made now, one after the other,
 * and lets go of what else it kept. OutMissing: paths to load of which the project has nothing any more; they stay requested.
 */
void Renew(const TArray<FRequest>& Requests, FLoaded& OutLoaded, TArray<FString>& OutMissing, std::stop_token Stop = {});
/** Lets go of all packages and forgets the requests; does not unload anything. */
void Forget();
int32 Num();
}
