#pragma once

#include "Core/Base/Containers.h"
#include "Core/Program/Diagnostics.h"
#include "Core/Text/Name.h"

#include <functional>

class FPropertyReader;
class FJsonRef;
class UClass;
class UPackage;

/** Takes a fault of an object's data; Text is a sentence without full stop. */
using FDataFaultReport = std::function<void(EDiagnosticSeverity Severity, const char* Rule, FString Text)>;

/** The package of that name in memory, created empty if bCreate; null otherwise. */
UPackage* FindPackage(FName PackageName, bool bCreate = false);

/**
 * Base of everything that lives in a package. Objects are created by NewObject and owned by their package; native constructors
 * set native defaults, properties that script and Blueprint classes add follow the native part of the same allocation. Game
 * thread only.
 */
class UObject
{
public:
	virtual ~UObject() = default;
	UObject(const UObject&) = delete;
	UObject& operator=(const UObject&) = delete;

	static UClass* StaticClass();

	FName GetFName() const { return NamePrivate; }
	FString GetName() const { return NamePrivate.ToString(); }
	UClass* GetClass() const { return ClassPrivate; }
	/** Null for packages. */
	UObject* GetOuter() const { return OuterPrivate; }
	/** The package the object lies in; the object itself when it is a package. */
	UPackage* GetPackage() const;
	/** "/Game/A.A:Sub.Deeper". */
	FString GetPathName() const;
	bool IsA(const UClass* InClass) const;
	template <class T>
	bool IsA() const
	{
		return IsA(T::StaticClass());
	}

	/**
	 * Called before the members of the body's "properties" are read, once all objects are there whose classes are never loaded:
	 * makes what others may refer to as a type. Loads nothing.
	 */
	virtual void MakeTypes(const FJsonRef&, FPropertyReader&) {}
	/**
	 * Reads a member of the body's "properties" that the class's reflected properties do not hold (a DataTable's rows, an
	 * enumeration's entries). False: not known here either. Faults go to the reader.
	 */
	virtual bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader);
	/** Called when the members of the body's "properties" have been read one by one, for what needs several of them at once, in
	 * whatever order they stand. Types declare their parents and properties here: they are linked once everything is declared
	 * that they lead to. */
	virtual void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader);
	/** Called once all objects of the package have been read. */
	virtual void PostLoad() {}
	/** Tells what is wrong with the object's data as a whole, which no single value shows. For a check of the project: may load
	 * other packages. */
	virtual void CheckData(const FDataFaultReport&) const {}

protected:
	UObject() = default;

private:
	friend class FObjectTable;
	FName NamePrivate; // derived classes use the short words for their own
	UClass* ClassPrivate = nullptr;
	UObject* OuterPrivate = nullptr;
	// Objects directly inside this one form a list in the order of their creation.
	UObject* FirstChild = nullptr;
	UObject* LastChild = nullptr;
	UObject* NextSibling = nullptr;
	int32 TableIndex = INDEX_NONE;
};

/** Package: the root of its objects. */
class UPackage : public UObject
{
public:
	static UClass* StaticClass();

	bool IsFullyLoaded() const { return bFullyLoaded; }
	void MarkAsFullyLoaded() { bFullyLoaded = true; }
	/** The object at a path inside the package ("Asset", "Asset:Sub.Deeper"; case is ignored), or null. */
	UObject* FindInside(FStringView Path) const;
	/** Rises from look-up to look-up, over all packages: the higher, the later the package was last asked for by name. */
	uint64 GetLastUse() const { return LastUse; }
	/** Another one for every package that is made, also where it takes the place of one of its name. */
	uint64 GetSerialNumber() const { return SerialNumber; }

private:
	friend UPackage* FindPackage(FName PackageName, bool bCreate);
	uint64 LastUse = 0;
	uint64 SerialNumber = 0;
	bool bFullyLoaded = false;
};

/** The object as a T, or null when it is none (or null). */
template <class T>
T* Cast(UObject* Object)
{
	return Object && Object->IsA(T::StaticClass()) ? static_cast<T*>(Object) : nullptr;
}
template <class T>
const T* Cast(const UObject* Object)
{
	return Object && Object->IsA(T::StaticClass()) ? static_cast<const T*>(Object) : nullptr;
}

/**
 * Makes an object with its class's defaults. Null when the class is abstract or not linked yet, when there is no Outer (packages
 * come from FindPackage), and when the name is None or taken inside Outer. Game thread.
 */
UObject* NewObject(UClass* Class, UObject* Outer, FName Name);
/** An object directly inside Outer by name, of Class or derived from it (null: any); null when there is none. With Outer null: a
 * package. */
UObject* StaticFindObjectFast(UClass* Class, UObject* Outer, FName Name);
/** An object in memory by its path; never loads. */
UObject* StaticFindObject(UClass* Class, FStringView ObjectPath);
/** Objects whose outer is Outer, in the order in which they were created (file order); with bIncludeNested also those below them,
 * parents first. */
void GetObjectsWithOuter(const UObject* Outer, TArray<UObject*>& Results, bool bIncludeNested);
/** Destroys a package and its objects; references to them become unresolved again. Packages with native classes must stay. */
void UnloadPackage(UPackage* Package);
/**
 * Destroys objects together with everything inside them, each before what it lies in; many at once cost less than one by one.
 * Classes and structures that survivors still need (as the class of an object, a parent, the type of a property) can no longer be
 * found, but stay until the last of those is gone.
 */
void DestroyObjects(const TArray<UObject*>& Objects);
/** Rises whenever objects are destroyed, empty packages aside: what was worked out from several objects may be wrong then. */
uint64 GetNumDestructions();
