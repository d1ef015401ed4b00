#pragma once

#include "CoreObject/Objects/Object.h"
#include "CoreObject/Objects/ObjectPath.h"

/**
 * Reference to an object, of 24 bytes. Made from a path it is resolved when it is first asked for: what lies in another package
 * is loaded then, not before; it stays valid when the object is unloaded and resolves again. Made from an object it knows that
 * object only, and reads as null once that is gone. Game thread.
 */
class FObjectPtr
{
public:
	FObjectPtr() = default;
	explicit FObjectPtr(const UObject* Object);
	explicit FObjectPtr(const FSoftObjectPath& InPath);

	/** Nothing is referred to. A reference to an object that does not exist is not null, but Get gives null. */
	bool IsNull() const { return Package.IsNone() && Index == INDEX_NONE; }
	/** The object, loading its package if need be; null when it cannot be had. */
	UObject* Get() const;
	/** The object if it is in memory; never loads. */
	UObject* GetIfLoaded() const;
	/** The null path for a null reference and for an object that is gone. */
	FSoftObjectPath GetPath() const;
	/** The object's name as the path gives it; never loads. None when there is none. */
	FName GetFName() const;
	/** The same object by path; case is ignored. */
	friend bool operator==(const FObjectPtr& A, const FObjectPtr& B) { return A.GetPath() == B.GetPath(); }

private:
	FName Package;					  // None when made from an object
	FName Inside;					  // "Asset" or "Asset:Sub.Deeper"
	mutable int32 Index = INDEX_NONE; // slot in the table of live objects
	mutable uint32 Serial = 0;		  // of that slot; another serial means the object is gone
};

uint64 GetTypeHash(const FObjectPtr& Reference);

/** FObjectPtr whose object must be a T; objects of other classes read as null. */
template <class T>
class TObjectPtr : public FObjectPtr
{
public:
	using FObjectPtr::FObjectPtr;
	T* Get() const { return Cast<T>(FObjectPtr::Get()); }
	T* GetIfLoaded() const { return Cast<T>(FObjectPtr::GetIfLoaded()); }
	operator T*() const { return Get(); }
	T* operator->() const { return Get(); }
};

/** Reference that is a soft one to the reflection system; otherwise a TObjectPtr. */
template <class T>
class TSoftObjectPtr : public TObjectPtr<T>
{
public:
	using TObjectPtr<T>::TObjectPtr;
};
