#pragma once

#include "Core/Base/KeyHash.h"
#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/ArrayStorage.h"
#include "CoreObject/Reflection/Field.h"

#include <vector>

/** The property as a TProperty, or null when its cast flags say otherwise. */
template <class TProperty>
const TProperty* CastField(const FProperty* Property)
{
	return Property && Property->HasAnyCastFlags(TProperty::CastFlag) ? static_cast<const TProperty*>(Property) : nullptr;
}

/** Values that are the same element of a set. */
template <class T>
bool IsIdentical(const T& A, const T& B)
{
	return A == B;
}
inline bool IsIdentical(const FText& A, const FText& B)
{
	return A.ToString() == B.ToString();
}
template <class T>
uint64 HashForIdentity(const T& Value)
{
	return FKeyHash()(Value);
}
inline uint64 HashForIdentity(const FText& Value)
{
	return GetTypeHash(Value.ToString());
}

/** Common part of properties whose storage is one C++ value. */
template <class T, class TBase = FProperty>
class TValueProperty : public TBase
{
public:
	using TBase::TBase;
	const T& GetPropertyValue(const void* Value) const { return *static_cast<const T*>(Value); }

	int32 GetSize() const override { return sizeof(T); }
	int32 GetAlignment() const override { return alignof(T); }
	void InitializeValue(void* Value) const override { new (Value) T(); }
	void DestroyValue(void* Value) const override { static_cast<T*>(Value)->~T(); }
	void CopyValue(void* To, const void* From) const override { *static_cast<T*>(To) = *static_cast<const T*>(From); }
	bool Identical(const void* A, const void* B) const override { return IsIdentical(GetPropertyValue(A), GetPropertyValue(B)); }
	uint64 HashValue(const void* Value) const override { return HashForIdentity(GetPropertyValue(Value)); }
};

/** Storage: bool. */
class FBoolProperty : public TValueProperty<bool>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Bool;
	explicit FBoolProperty(FName InName);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;
};

/** Storage: FString. */
class FStrProperty : public TValueProperty<FString>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Str;
	explicit FStrProperty(FName InName);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;
};

/** Storage: FName. */
class FNameProperty : public TValueProperty<FName>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Name;
	explicit FNameProperty(FName InName);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;
};

/** Storage: FText. */
class FTextProperty : public TValueProperty<FText>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Text;
	explicit FTextProperty(FName InName);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;
};

/** Integers of every width, bytes, floats and doubles. */
class FNumericProperty : public FProperty
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Numeric;
	using FProperty::FProperty;

	virtual bool IsInteger() const = 0;
	/** The value as a signed integer (floating-point values truncated and saturated, unsigned ones reinterpreted). */
	virtual int64 GetSignedIntPropertyValue(const void* Value) const = 0;
	virtual double GetFloatingPointPropertyValue(const void* Value) const = 0;
};

template <class T>
inline constexpr uint64 NumericCastFlag = 0;
template <>
inline constexpr uint64 NumericCastFlag<int8> = EFieldCast::Int8;
template <>
inline constexpr uint64 NumericCastFlag<int16> = EFieldCast::Int16;
template <>
inline constexpr uint64 NumericCastFlag<int32> = EFieldCast::Int;
template <>
inline constexpr uint64 NumericCastFlag<int64> = EFieldCast::Int64;
template <>
inline constexpr uint64 NumericCastFlag<uint8> = EFieldCast::Byte;
template <>
inline constexpr uint64 NumericCastFlag<uint16> = EFieldCast::UInt16;
template <>
inline constexpr uint64 NumericCastFlag<uint32> = EFieldCast::UInt32;
template <>
inline constexpr uint64 NumericCastFlag<uint64> = EFieldCast::UInt64;
template <>
inline constexpr uint64 NumericCastFlag<float> = EFieldCast::Float;
template <>
inline constexpr uint64 NumericCastFlag<double> = EFieldCast::Double;

/** Storage: T. */
template <class T>
class TNumericProperty : public TValueProperty<T, FNumericProperty>
{
public:
	static constexpr uint64 CastFlag = NumericCastFlag<T>;
	explicit TNumericProperty(FName InName);

	bool IsInteger() const override { return std::is_integral_v<T>; }
	int64 GetSignedIntPropertyValue(const void* Value) const override;
	double GetFloatingPointPropertyValue(const void* Value) const override
	{
		return static_cast<double>(this->GetPropertyValue(Value));
	}
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;
};
extern template class TNumericProperty<int8>;
extern template class TNumericProperty<int16>;
extern template class TNumericProperty<int32>;
extern template class TNumericProperty<int64>;
extern template class TNumericProperty<uint8>;
extern template class TNumericProperty<uint16>;
extern template class TNumericProperty<uint32>;
extern template class TNumericProperty<uint64>;
extern template class TNumericProperty<float>;
extern template class TNumericProperty<double>;

using FInt8Property = TNumericProperty<int8>;
using FInt16Property = TNumericProperty<int16>;
using FIntProperty = TNumericProperty<int32>;
using FInt64Property = TNumericProperty<int64>;
using FUInt16Property = TNumericProperty<uint16>;
using FUInt32Property = TNumericProperty<uint32>;
using FUInt64Property = TNumericProperty<uint64>;
using FFloatProperty = TNumericProperty<float>;
using FDoubleProperty = TNumericProperty<double>;

/** Byte, alone or carrying an enumeration. Storage: uint8. */
class FByteProperty : public TNumericProperty<uint8>
{
public:
	explicit FByteProperty(FName InName, UEnum* InEnum = nullptr);
	/** Null without an enumeration; loads the enumeration's package where it was unloaded meanwhile. */
	UEnum* GetEnum() const;
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;

private:
	FObjectPtr Enum;
};

/** Enumeration of its own kind, no number to the reflection system. Storage: int64. */
class FEnumProperty : public TValueProperty<int64>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Enum;
	FEnumProperty(FName InName, UEnum& InEnum);
	/** Loads the enumeration's package where it was unloaded meanwhile; null when it is gone for good. */
	UEnum* GetEnum() const;
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool ReadText(void* Value, FStringView Text) const override;
	FString GetTypeText() const override;

private:
	FObjectPtr Enum;
};

/** What a reference leads to, and whether it needs its target. */
enum class EObjectReference : uint8
{
	Object,
	WeakObject,
	LazyObject,
	SoftObject,
	Class,
	SoftClass,
	Interface,
};

/** References to objects and classes, one field class for each kind. All are resolved lazily, so the kinds differ in name only.
 * Storage: FObjectPtr. */
class FObjectPropertyBase : public TValueProperty<FObjectPtr>
{
public:
	static constexpr uint64 CastFlag = EFieldCast::ObjectBase; // interfaces do not carry it
	FObjectPropertyBase(EObjectReference InKind, FName InName, FObjectPtr InPropertyClass);
	/** For native members: the class is asked for later, so that classes may refer to themselves and to each other. */
	FObjectPropertyBase(EObjectReference InKind, FName InName, UClass* (*InNativeClass)());

	EObjectReference GetKind() const { return Kind; }
	/** The class that objects, or for class references the classes, must be or derive from. Null while it is not in memory:
	 * nothing is checked then. */
	UClass* GetPropertyClass() const;
	/** The object referred to, loading its package if need be; null when it cannot be had or is of another class. */
	UObject* GetObjectPropertyValue(const void* Value) const;
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	FString GetTypeText() const override;
	/** The object, or for class references the class, is of the property's class; of a class that is not linked yet nobody can
	 * tell, and it passes. */
	bool Accepts(const UObject& Object) const;

private:
	EObjectReference Kind;
	FObjectPtr PropertyClass;
	UClass* (*NativeClass)() = nullptr;
};

/** Storage: an instance of the structure. */
class FStructProperty : public FProperty
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Struct;
	FStructProperty(FName InName, UScriptStruct& InStruct);
	UScriptStruct& GetStruct() const { return Struct; }

	bool IsComplete() const override;
	int32 GetSize() const override;
	int32 GetAlignment() const override;
	void InitializeValue(void* Value) const override;
	void DestroyValue(void* Value) const override;
	void CopyValue(void* To, const void* From) const override;
	/** Members that the JSON does not mention keep what they hold. */
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool Identical(const void* A, const void* B) const override;
	uint64 HashValue(const void* Value) const override;
	FString GetTypeText() const override;
	void GatherStructs(std::vector<UScriptStruct*>& Structs) const override;

private:
	UScriptStruct& Struct;
};

/** Common part of arrays, sets and maps: a sequence of elements of one property. */
class FContainerProperty : public FProperty
{
public:
	const FProperty& GetInner() const { return *Inner; }
	int32 Num(const void* Value) const { return Storage->Num(Value); }
	const void* GetElement(const void* Value, int32 Index) const { return Storage->GetElement(Value, Index); }

	int32 GetSize() const override { return Storage->GetSize(); }
	int32 GetAlignment() const override { return Storage->GetAlignment(); }
	void InitializeValue(void* Value) const override { Storage->Initialize(Value); }
	void DestroyValue(void* Value) const override { Storage->Destroy(Value); }
	void CopyValue(void* To, const void* From) const override { Storage->Copy(To, From); }
	bool Identical(const void* A, const void* B) const override;
	uint64 HashValue(const void* Value) const override;
	void GatherStructs(std::vector<UScriptStruct*>& Structs) const override;

protected:
	/** Without InStorage the elements lie in an FDynamicArray. */
	FContainerProperty(const FFieldClass& InFieldClass, FName InName, TUniquePtr<FProperty> InInner,
		TUniquePtr<const IArrayStorage> InStorage = nullptr);
	/** Empties the container for Json's elements; false and a diagnostic where there can be none, or too many for the memory. */
	bool MakeRoom(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const;
	const IArrayStorage& GetStorage() const { return *Storage; }

private:
	TUniquePtr<FProperty> Inner;
	TUniquePtr<const IArrayStorage> Storage;
};

/** Storage: a TArray of a native class, else an FDynamicArray. */
class FArrayProperty : public FContainerProperty
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Array;
	FArrayProperty(FName InName, TUniquePtr<FProperty> InInner, TUniquePtr<const IArrayStorage> InStorage = nullptr);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	FString GetTypeText() const override;
};

/** Distinct values in the order in which they were added. Storage: an FDynamicArray. */
class FSetProperty : public FContainerProperty
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Set;
	FSetProperty(FName InName, TUniquePtr<FProperty> InInner);
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	FString GetTypeText() const override;
};

/** Key and value of a map side by side; never listed as a property of its own. */
class FPairProperty : public FProperty
{
public:
	FPairProperty(FName InName, TUniquePtr<FProperty> InKey, TUniquePtr<FProperty> InValue);
	const FProperty& GetKey() const { return *Key; }
	const FProperty& GetValue() const { return *Value; }
	bool IsComplete() const override { return Key->IsComplete() && Value->IsComplete(); }
	int32 GetSize() const override;
	int32 GetAlignment() const override;
	void* ValueOf(void* Pair) const { return static_cast<std::byte*>(Pair) + GetValueOffset(); }
	const void* ValueOf(const void* Pair) const { return static_cast<const std::byte*>(Pair) + GetValueOffset(); }
	void InitializeValue(void* Pair) const override;
	void DestroyValue(void* Pair) const override;
	void CopyValue(void* To, const void* From) const override;
	bool ReadValue(void* Pair, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool Identical(const void* A, const void* B) const override;
	uint64 HashValue(const void* Pair) const override;
	FString GetTypeText() const override;
	void GatherStructs(std::vector<UScriptStruct*>& Structs) const override;

private:
	int32 GetValueOffset() const;
	TUniquePtr<FProperty> Key;
	TUniquePtr<FProperty> Value;
};

/** Values by distinct keys in the order in which the keys were first added; elements are pairs. Storage: an FDynamicArray. */
class FMapProperty : public FContainerProperty
{
public:
	static constexpr uint64 CastFlag = EFieldCast::Map;
	FMapProperty(FName InName, TUniquePtr<FProperty> InKey, TUniquePtr<FProperty> InValue);
	const FProperty& GetKeyProperty() const { return GetPair().GetKey(); }
	const FProperty& GetValueProperty() const { return GetPair().GetValue(); }
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	FString GetTypeText() const override;

private:
	bool ReadPair(void* Pair, const FJsonRef& Json, bool bIsMember, FPropertyReader& Reader) const;
	const FPairProperty& GetPair() const { return static_cast<const FPairProperty&>(GetInner()); }
};

/** Why a property has no value here; Undeclared: nothing declares its type. */
enum class EUnreadKind : uint8
{
	Delegate,
	MulticastDelegate,
	FieldPath,
	Undeclared,
};

/** Delegates, field paths, and properties of a type that nothing declares or that cannot be had by value: listed in their place,
 * without storage; values in files are passed over. */
class FUnreadProperty : public FProperty
{
public:
	FUnreadProperty(EUnreadKind InKind, FName InName);
	/** An undeclared one, with its type as its declaration spells it. */
	FUnreadProperty(FName InName, FString InTypeText);

	int32 GetSize() const override { return 0; }
	int32 GetAlignment() const override { return 1; }
	void InitializeValue(void*) const override {}
	void DestroyValue(void*) const override {}
	void CopyValue(void*, const void*) const override {}
	bool ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const override;
	bool Identical(const void*, const void*) const override { return true; }
	uint64 HashValue(const void*) const override { return 0; }
	FString GetTypeText() const override;

private:
	FString TypeText;
};
