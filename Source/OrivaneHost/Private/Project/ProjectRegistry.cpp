#include "Project/ProjectRegistry.h"

FAssetRegistry& GetProjectRegistry()
{
	// Never destroyed: whoever asked the module for the registry keeps the pointer.
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
