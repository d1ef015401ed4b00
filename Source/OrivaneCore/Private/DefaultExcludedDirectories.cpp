#include "OrivaneCore/DefaultExcludedDirectories.h"

namespace Orivane::Tarnwell
{
const TArray<FString> DefaultExcludedDirectories = {
	"Intermediate", "DerivedDataCache", "Saved", "Binaries", ".git", ".svn", ".vs", ".idea", "node_modules"};
}
