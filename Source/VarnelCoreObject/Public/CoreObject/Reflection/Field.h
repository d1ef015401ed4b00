#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/Name.h"
#include "CoreObject/Reflection/MetaData.h"

#include <vector>

class FJsonRef;
class FProperty;
class FPropertyReader;
class UClass;
class UEnum;
class UScriptStruct;
class UStruct;

/** One bit for each field class; a field class's flags hold its own bit and those of its bases. */
namespace EFieldCast
{
enum EFieldCast : uint64
{
	Property = 1ull << 0,
	Numeric = 1ull << 1,
	Str = 1ull << 2,
	Name = 1ull << 3,
	Text = 1ull << 4,
	Bool = 1ull << 5,
	Byte = 1ull << 6,
	Int8 = 1ull << 7,
	Int16 = 1ull << 8,
	Int = 1ull << 9,
	Int64 = 1ull << 10,
	UInt16 = 1ull << 11,
	UInt32 = 1ull << 12,
	UInt64 = 1ull << 13,
	Float = 1ull << 14,
	Double = 1ull << 15,
	ObjectBase = 1ull << 16, // object, weak, lazy, soft, class and soft class references
	Object = 1ull << 17,
	WeakObject = 1ull << 18,
	LazyObject = 1ull << 19,
	SoftObject = 1ull << 20,
	Class = 1ull << 21,
	SoftClass = 1ull << 22,
	Interface = 1ull << 23,
	Struct = 1ull << 24,
	Array = 1ull << 25,
	Set = 1ull << 26,
	Map = 1ull << 27,
	Enum = 1ull << 28,
	Delegate = 1ull << 29,
	MulticastDelegate = 1ull << 30,
	FieldPath = 1ull << 31,
	Undeclared = 1ull << 32,
};
}

/** Class of a field, such as IntProperty. */
class FFieldClass
{
public:
	constexpr FFieldClass(const char* InName, uint64 InCastFlags) : Name(InName), CastFlags(InCastFlags) {}
	/** "IntProperty", "SoftObjectProperty", ... */
	FString GetName() const { return FString(Name); }
	bool HasAnyCastFlags(uint64 Flags) const { return (CastFlags & Flags) != 0; }

private:
	const char* Name;
	uint64 CastFlags;
};

/** A named, reflected member. */
class FField
{
public:
	FField(const FFieldClass& InFieldClass, FName InName) : FieldClass(&InFieldClass), Name(InName) {}
	virtual ~FField() = default;
	FField(const FField&) = delete;
	FField& operator=(const FField&) = delete;

	const FFieldClass* GetClass() const { return FieldClass; }
	FName GetFName() const { return Name; }
	/** Internal name; fields of user-defined structures carry a generated suffix. */
	FString GetName() const { return Name.ToString(); }
	/** The name as its author wrote it. */
	FString GetAuthoredName() const { return AuthoredName.IsEmpty() ? GetName() : AuthoredName; }
	void SetAuthoredName(FString InName) { AuthoredName = std::move(InName); }
	bool HasAnyCastFlags(uint64 Flags) const { return FieldClass->HasAnyCastFlags(Flags); }
	/** By key (case is ignored), such as "Category" and "ToolTip"; "" when there is none. */
	FString GetMetaData(const FString& Key) const;
	/** An empty value is not kept. */
	void SetMetaData(FString Key, FString Value);

private:
	const FFieldClass* FieldClass;
	FName Name;
	FString AuthoredName;
	TUniquePtr<FMetaData> MetaData; // null for most
};

/** A member that holds a value inside an object or structure. Value functions work on raw storage of GetSize() bytes. */
class FProperty : public FField
{
public:
	using FField::FField;

	/** Size and alignment are settled. Not so for a structure by value before it is linked; values are made of complete types
	 * only. */
	virtual bool IsComplete() const { return true; }
	virtual int32 GetSize() const = 0;
	virtual int32 GetAlignment() const = 0;
	virtual void InitializeValue(void* Value) const = 0;
	virtual void DestroyValue(void* Value) const = 0;
	virtual void CopyValue(void* To, const void* From) const = 0;
	/** Reads a JSON value by the property's type. False and a diagnostic where it cannot: the storage then keeps what it held. */
	virtual bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const = 0;
	/**
	 * Reads plain text, as settings files and the keys of map objects write values. False, and the storage untouched, where the
	 * text is not such a value or the type has no plain form.
	 */
	virtual bool ReadText(void* Value, FStringView Text) const;
	/** Equal as elements of sets and keys of maps: texts compare without regard to case. */
	virtual bool Identical(const void* A, const void* B) const = 0;
	/** Equal for values that are identical. */
	virtual uint64 HashValue(const void* Value) const = 0;
	/** The type in the grammar of project files: "array<object</Script/Engine.BTNode>>". */
	virtual FString GetTypeText() const = 0;
	/** Appends the structures whose values live inside this property's values, in containers too. */
	virtual void GatherStructs(std::vector<UScriptStruct*>& Structs) const;

	int32 GetOffset() const { return Offset; }
	void SetOffset(int32 InOffset) { Offset = InOffset; }
	bool IsDeprecated() const { return bDeprecated; }
	void SetDeprecated(bool bInDeprecated) { bDeprecated = bInDeprecated; }
	/** Its declaration states a default, kept by the structure that declares it. */
	bool HasDeclaredDefault() const { return bHasDeclaredDefault; }
	void SetHasDeclaredDefault() { bHasDeclaredDefault = true; }
	/** The structure or class that declares the property. */
	UStruct* GetOwnerStruct() const { return Owner; }
	void SetOwnerStruct(UStruct* InOwner) { Owner = InOwner; }

	template <class T>
	const T* ContainerPtrToValuePtr(const void* Container) const
	{
		return reinterpret_cast<const T*>(static_cast<const std::byte*>(Container) + Offset);
	}
	template <class T>
	T* ContainerPtrToValuePtr(void* Container) const
	{
		return reinterpret_cast<T*>(static_cast<std::byte*>(Container) + Offset);
	}

private:
	int32 Offset = 0;
	bool bDeprecated = false;
	bool bHasDeclaredDefault = false;
	UStruct* Owner = nullptr;
};
