#include "Project/PackageMemory.h"
#include "Project/ProjectRegistry.h"

#include "Core/Base/Map.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/Loader.h"

namespace
{
TSet<FName>& GetKept()
{
	static TSet<FName> Kept;
	return Kept;
}

TArray<PackageMemory::FRequest>& GetAsked()
{
	static TArray<PackageMemory::FRequest> Asked;
	return Asked;
}

/** Whatever a request did the first time, it does again, and better, when it is made again. */
void NoteRequest(bool bLoad, const FString& Path)
{
	GetAsked().RemoveAll([&](const PackageMemory::FRequest& Request)
		{ return Request.bLoad == bLoad && Request.Path.Equals(Path, ESearchCase::CaseSensitive); });
	GetAsked().Add({.bLoad = bLoad, .Path = Path});
}

bool IsFolder(const FString& Path)
{
	return Path.View().ends_with('/');
}

/** "" for a path that is none of a package. */
FString GetPackageName(const FString& Path)
{
	FString Name;
	return !IsFolder(Path) && FPackageName::TryConvertFilenameToLongPackageName(Path, Name) ? Name : FString();
}

TArray<FName> FindPackages(const FString& Path)
{
	TArray<FName> Found;
	if (const FString Package = GetPackageName(Path); !Package.IsEmpty())
		Found = ListProjectPackages({.PackageNames = {FName(Package)}});
	FStringView Folder = Path.View();
	while (Folder.ends_with('/'))
		Folder.remove_suffix(1);
	if (Found.IsEmpty() && !Folder.empty())
		Found = ListProjectPackages({.PackagePaths = {FName(Folder)}, .bRecursivePaths = true});
	return Found;
}

bool FindPackages(const FString& Path, TArray<FName>& OutPackages, FString& OutError)
{
	OutPackages = FindPackages(Path);
	if (OutPackages.IsEmpty())
		OutError = "the project has no package or folder '" + Path + "'; paths look like /Game/FX/NS_Sparks or /Game/FX";
	return !OutPackages.IsEmpty();
}

/** What the requests come to: the keys, in the order of loading. */
TMap<FName, bool> FindWanted(const TArray<PackageMemory::FRequest>& Requests, TArray<FString>& OutMissing)
{
	TMap<FName, bool> Wanted;
	for (const PackageMemory::FRequest& Request : Requests)
	{
		const TArray<FName> Packages = FindPackages(Request.Path);
		if (Request.bLoad && Packages.IsEmpty())
			OutMissing.Add(Request.Path);
		for (const FName Package : Packages)
		{
			if (Request.bLoad)
				Wanted.Add(Package, true);
			else
				Wanted.Remove(Package);
		}
	}
	return Wanted;
}

/** The path names an object of a package, and the package, which is in memory, has none of that name. */
bool LacksObject(const FString& Path)
{
	const FSoftObjectPath Object(Path.View());
	return Object.IsValid() && Object.Asset.PackageName == FName(GetPackageName(Path)) && FindPackage(Object.Asset.PackageName) &&
		!StaticFindObject(nullptr, Path);
}
}

bool PackageMemory::Load(
	const FString& Path, FLoaded& OutLoaded, FString& OutError, FScanProgress* Progress, std::stop_token Stop)
{
	TArray<FName> Packages;
	if (!FindPackages(Path, Packages, OutError))
		return false;
	NoteRequest(true, Path);
	if (Progress)
		Progress->NumTotal += Packages.Num();
	for (const FName Package : Packages)
	{
		if (Stop.stop_requested())
		{
			OutError = "loading was interrupted";
			return false;
		}
		const bool bLoaded = LoadPackage(Package) != nullptr;
		if (bLoaded && GetKept().Add(Package))
			PinPackage(Package);
		++OutLoaded.NumPackages;
		OutLoaded.NumFailed += bLoaded ? 0 : 1;
		if (Progress)
			++Progress->NumDone;
	}
	if (LacksObject(Path))
		OutError = "package " + Packages[0].ToString() + " has no object '" + Path + "'";
	return !LacksObject(Path);
}

bool PackageMemory::Unload(const FString& Path, int32& OutNumUnloaded, FString& OutError)
{
	TArray<FName> Packages;
	if (!FindPackages(Path, Packages, OutError))
		return false;
	NoteRequest(false, Path);
	TArray<UObject*> InMemory;
	TSet<FName> Named;
	for (const FName Package : Packages)
	{
		Named.Add(Package);
		if (UPackage* Loaded = FindPackage(Package))
			InMemory.Add(Loaded);
	}
	TSet<FName> Kept;
	for (const FName Package : GetKept())
	{
		if (Named.Contains(Package))
			UnpinPackage(Package);
		else
			Kept.Add(Package);
	}
	GetKept() = std::move(Kept);
	OutNumUnloaded = InMemory.Num();
	DestroyObjects(InMemory);
	return true;
}

const TArray<PackageMemory::FRequest>& PackageMemory::GetRequests()
{
	return GetAsked();
}

void PackageMemory::Renew(const TArray<FRequest>& Requests, FLoaded& OutLoaded, TArray<FString>& OutMissing, std::stop_token Stop)
{
	const TMap<FName, bool> Wanted = FindWanted(Requests, OutMissing);
	TArray<FRequest> Asked = Requests; // may be the list that is forgotten
	Forget();
	GetAsked() = std::move(Asked);
	for (const auto& [Package, bWanted] : Wanted)
	{
		if (Stop.stop_requested())
			return;
		const bool bLoaded = LoadPackage(Package) != nullptr;
		if (bLoaded && GetKept().Add(Package))
			PinPackage(Package);
		++OutLoaded.NumPackages;
		OutLoaded.NumFailed += bLoaded ? 0 : 1;
	}
}

void PackageMemory::Forget()
{
	for (const FName Package : GetKept())
		UnpinPackage(Package);
	GetKept().Empty();
	GetAsked().Empty();
}

int32 PackageMemory::Num()
{
	return GetKept().Num();
}
