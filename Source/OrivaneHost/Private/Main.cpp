#include "Core/Program/Memory.h"
#include "OrivaneHost/Program.h"
#include "Terminal/LastResort.h"

namespace
{
/** Made before every other object of the program: memory may be short already when those register themselves. */
struct FInstallLastResort
{
	FInstallLastResort() { LastResort::Install(); }
};
[[maybe_unused]] const FInstallLastResort Installed [[gnu::init_priority(101)]];
}

int main(int NumArguments, char** Arguments)
{
	LimitUnusedMemory();
	return RunOrivane(NumArguments, Arguments);
}
