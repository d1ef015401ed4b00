#include "Project/UserFolders.h"

#include <cstdlib>

FString GetUserFolder(const char* Variable, const char* BelowHome)
{
	const char* const Given = std::getenv(Variable);
	const char* const Home = std::getenv("HOME");
	if (Given && *Given == '/')
		return FString::FromExternal(Given);
	return Home && *Home == '/' ? FString::FromExternal(Home) + "/" + BelowHome : FString();
}
