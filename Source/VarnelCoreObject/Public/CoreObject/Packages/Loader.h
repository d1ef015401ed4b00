#pragma once

#include "Core/Files/FileTree.h"
#include "CoreObject/Packages/PackageSource.h"
#include "CoreObject/Reflection/Class.h"

#include <functional>

class FParseAhead;

/** Load flags that callers pass through; the headless loader does nothing that they would forbid, so they have no effect here. */
namespace ELoadFlags
{
constexpr uint32 None = 0;
constexpr uint32 DisableDependencyPreloading = 0x1000;
constexpr uint32 DeferDependencyLoads = 0x100000;
constexpr uint32 DisableCompileOnLoad = 0x400000;
}

/** Where the loader finds the file of a package. */
struct FPackageFile
{
	FString FileName; // relative to the project folder where possible, for diagnostics
	const IPackageSource* Source = nullptr;
	/** Reads the file's bytes, safely below its mounted folder. Called on any thread. */
	std::function<EFileRead(std::string& Buffer, uint64 MaxBytes, std::size_t Padding)> Read;
	/** As the project spells it, whatever the spelling it was asked for in; None: as it was asked for. */
	FName PackageName = {};
};

/** Set by the owner of the project's packages (the registry), before anything loads. Null clears it: nothing can be loaded then.
 * Failed loads are forgotten. */
using FPackageLocator = std::function<TOptional<FPackageFile>(FName PackageName)>;
void SetPackageLocator(FPackageLocator Locator);
/** Receives what goes wrong while packages load; null: none listens. */
void SetLoadDiagnostics(FDiagnosticSink* Sink);

/**
 * The package, loaded fully; null when it has no file or a malformed body (remembered until packages are unloaded). Asked for
 * while it is being loaded, or while a package that is being loaded declares its types, the package as far as it is. A package in
 * memory without a file is returned as it is. Reading a package loads others only for the classes and structures that it needs,
 * and for what these need. Game thread.
 */
UPackage* LoadPackage(FName PackageName, uint32 LoadFlags = ELoadFlags::None);
/**
 * The object at a path, loading its package if it is not in memory; null when there is none or when it is no Class (null: any).
 * Accepts the export form Class'/Game/A.A', a package alone, and with Outer set a path inside that. Case is ignored. Game thread.
 */
UObject* StaticLoadObject(UClass* Class, UObject* Outer, FStringView ObjectPath, uint32 LoadFlags = ELoadFlags::None);
template <class T>
T* LoadObject(FStringView ObjectPath)
{
	return static_cast<T*>(StaticLoadObject(T::StaticClass(), nullptr, ObjectPath));
}
/**
 * While it lives, the files of packages that are about to be loaded are read and parsed on the other processors, a bounded number
 * ahead. Packages are loaded by LoadPackage as ever, when it is asked and in that order; what comes out is the same, sooner.
 * Costs nothing as long as nothing has to be loaded. Game thread, like its owner; where several live, the last one works.
 */
class FPackagePrefetch
{
public:
	/** Next gives the packages in the order in which they will be asked for, None at the end; called on the game thread. What is
	 * in memory already is passed over. */
	explicit FPackagePrefetch(std::function<FName()> Next);
	~FPackagePrefetch();
	FPackagePrefetch(const FPackagePrefetch&) = delete;
	FPackagePrefetch& operator=(const FPackagePrefetch&) = delete;

private:
	TUniquePtr<FParseAhead> Ahead;
	FParseAhead* Outer = nullptr;
};

/** Unloads every package that was loaded from a file and forgets failed loads. Not while a package is being loaded. Pins stay. */
void UnloadAllLoadedPackages();

/**
 * Loaded packages stay in memory for later calls. The limit, in bytes, is for EvictLoadedPackages alone: while a search
 * runs nothing is unloaded, whatever it loads. 0, as in the beginning: no limit.
 */
void SetObjectMemoryLimit(int64 MaxBytes);
/** What loaded packages take, in bytes; an estimate from their files and their objects. */
int64 GetObjectMemory();
/**
 * Called between calls, when nobody holds a pointer to a loaded object. While loaded packages take more than the limit, unloads
 * those whose last look-up was longest ago, but none that is pinned and none that a package which stays has a hard reference or
 * owes a class or a type to. Returns how many. Game thread, not while a package is being loaded.
 */
int32 EvictLoadedPackages();
/**
 * Files have changed: unloads the packages that HasChanged names, and every one that has a hard reference to one of these or owes
 * a class or a type to it, directly or through others, pinned or not. Also a package that lacked what it refers to goes, once
 * HasChanged names that. Failed loads are forgotten. Returns how many went. Pins stay. Game thread, as EvictLoadedPackages.
 */
int32 DropLoadedPackages(const std::function<bool(FName PackageName)>& HasChanged);
/** EvictLoadedPackages leaves the package, and what it refers to, where it is, from now on or from when it is loaded; pinning
 * loads nothing. Game thread. */
void PinPackage(FName PackageName);
void UnpinPackage(FName PackageName);
