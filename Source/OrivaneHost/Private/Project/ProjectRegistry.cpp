#include "Project/ProjectRegistry.h"

FAssetRegistry& GetProjectRegistry()
{
	// Never destroyed: callers that asked the module for the registry keep the pointer.
	static FAssetRegistry* const Registry = new FAssetRegistry;
	return *Registry;
}

TArray<FName> ListProjectPackages(const FARFilter& Filter)
{
	TArray<FName> Packages;
	GetProjectRegistry().EnumerateAssets(
		Filter,
		[&](const FAssetData& Asset)
		{
			if (Packages.IsEmpty() || Packages.Last() != Asset.PackageName)
				Packages.Add(Asset.PackageName);
			return true;
		},
		false);
	return Packages;
}
