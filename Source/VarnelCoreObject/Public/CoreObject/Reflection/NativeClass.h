#pragma once

#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/Properties.h"

/** A native class or structure on its way into the reflection system; filled by the builders below. */
struct FNativeTypeDraft
{
	const char* Path; // "/Script/Engine.BehaviorTree"
	int32 Size = 0;
	int32 Alignment = 1;
	std::vector<TUniquePtr<FProperty>> Properties; // with their offsets
};

/** Makes the class known for good. Game thread, like everything here. */
UClass* RegisterNativeClass(FNativeTypeDraft Draft, UClass* Super, UObject* (*Constructor)(void* Memory), bool bAbstract);
UScriptStruct* RegisterNativeStruct(FNativeTypeDraft Draft, const FNativeStructOps& Ops);
/** A class that adds nothing to its parent and needs no C++ class of its own. The class itself when it is known already. */
UClass* RegisterPlainClass(const char* Path, UClass* Super);

/**
 * A static object of a module that makes one of its classes known. The class is built when any class is first looked up, since
 * only then all static objects exist that it may need:
 *
 *	const FAutoNativeClass Registration(&UQuellarSettings::StaticClass);
 */
class FAutoNativeClass
{
public:
	explicit FAutoNativeClass(UClass* (*InStaticClass)());
	FAutoNativeClass(const FAutoNativeClass&) = delete;
	FAutoNativeClass& operator=(const FAutoNativeClass&) = delete;
	/** Builds the classes that wait. */
	static void BuildAll();

private:
	UClass* (*StaticClass)();
	const FAutoNativeClass* Next;
};

/** What people see of a reflected member, as metadata. */
struct FMemberText
{
	const char* Category = "";
	const char* ToolTip = "";
};

/** The property that reflects a member of type T. */
template <class T>
struct TPropertyOf
{
	static TUniquePtr<FProperty> Make(FName Name)
	{
		if constexpr (std::is_same_v<T, uint8>)
			return MakeUnique<FByteProperty>(Name);
		else if constexpr (NumericCastFlag<T> != 0)
			return MakeUnique<TNumericProperty<T>>(Name);
		else
			return MakeUnique<FStructProperty>(Name, *T::StaticStruct());
	}
};
template <>
struct TPropertyOf<bool>
{
	static TUniquePtr<FProperty> Make(FName Name) { return MakeUnique<FBoolProperty>(Name); }
};
template <>
struct TPropertyOf<FString>
{
	static TUniquePtr<FProperty> Make(FName Name) { return MakeUnique<FStrProperty>(Name); }
};
template <>
struct TPropertyOf<FName>
{
	static TUniquePtr<FProperty> Make(FName Name) { return MakeUnique<FNameProperty>(Name); }
};
template <>
struct TPropertyOf<FText>
{
	static TUniquePtr<FProperty> Make(FName Name) { return MakeUnique<FTextProperty>(Name); }
};
template <class T>
struct TPropertyOf<TObjectPtr<T>>
{
	static TUniquePtr<FProperty> Make(FName Name)
	{
		return MakeUnique<FObjectPropertyBase>(EObjectReference::Object, Name, &T::StaticClass);
	}
};
template <class T>
struct TPropertyOf<TSoftObjectPtr<T>>
{
	static TUniquePtr<FProperty> Make(FName Name)
	{
		return MakeUnique<FObjectPropertyBase>(EObjectReference::SoftObject, Name, &T::StaticClass);
	}
};
template <>
struct TPropertyOf<TObjectPtr<UClass>>
{
	static TUniquePtr<FProperty> Make(FName Name)
	{
		return MakeUnique<FObjectPropertyBase>(EObjectReference::Class, Name, &UObject::StaticClass);
	}
};
template <class T>
struct TPropertyOf<TArray<T>>
{
	static TUniquePtr<FProperty> Make(FName Name)
	{
		return MakeUnique<FArrayProperty>(Name, TPropertyOf<T>::Make(Name), MakeUnique<TNativeArrayStorage<T>>());
	}
};

/** Common part of the builders: reflects members by their C++ type. */
template <class T, class TBuilder>
class TNativeTypeBuilder
{
public:
	explicit TNativeTypeBuilder(const char* Path)
		: Draft{.Path = Path, .Size = sizeof(T), .Alignment = alignof(T), .Properties = {}}
	{
	}

	template <class TMember, class TOwner>
	TBuilder& Member(const char* Name, TMember TOwner::*Pointer, FMemberText Text = {})
	{
		TUniquePtr<FProperty> Property = TPropertyOf<TMember>::Make(Name);
		const auto* const Base = reinterpret_cast<const std::byte*>(&Sample);
		Property->SetOffset(static_cast<int32>(reinterpret_cast<const std::byte*>(&(Sample.*Pointer)) - Base));
		Property->SetMetaData("Category", Text.Category);
		Property->SetMetaData("ToolTip", Text.ToolTip);
		Draft.Properties.push_back(std::move(Property));
		return static_cast<TBuilder&>(*this);
	}

protected:
	FNativeTypeDraft Draft;

private:
	T Sample; // members' offsets are measured on it
};

/**
 * Reflects a C++ class with its members; their types give the properties: bool, the number types, FString, FName, FText,
 *TObjectPtr, TSoftObjectPtr (TObjectPtr<UClass> is a class reference), structures with a StaticStruct(), and TArray of all of
 *these but bool. Used once for a class, on first use:
 *
 *	UClass* UBehaviorTree::StaticClass()
 *	{
 *		static UClass* const Class = TClassBuilder<UBehaviorTree>("/Script/Engine.BehaviorTree", UObject::StaticClass())
 *										 .Member("BlackboardAsset", &UBehaviorTree::BlackboardAsset)
 *										 .Member("RootNode", &UBehaviorTree::RootNode)
 *										 .Build();
 *		return Class;
 *	}
 *
 * The class needs a public default constructor.
 */
template <class T>
class TClassBuilder : public TNativeTypeBuilder<T, TClassBuilder<T>>
{
public:
	TClassBuilder(const char* Path, UClass* InSuper) : TNativeTypeBuilder<T, TClassBuilder<T>>(Path), Super(InSuper) {}
	/** No objects of this very class can be made. */
	TClassBuilder& Abstract()
	{
		bAbstract = true;
		return *this;
	}
	/** What people are told of the class, its metadata "ToolTip". */
	TClassBuilder& ToolTip(const char* InText)
	{
		Text = InText;
		return *this;
	}
	UClass* Build()
	{
		UClass* const Class = RegisterNativeClass(
			std::move(this->Draft), Super, [](void* Memory) -> UObject* { return new (Memory) T(); }, bAbstract);
		if (*Text)
			Class->SetMetaData("ToolTip", Text);
		return Class;
	}

private:
	UClass* Super;
	const char* Text = "";
	bool bAbstract = false;
};

/** Reflects a C++ structure with its members, as TClassBuilder does; T is default constructible and assignable. */
template <class T>
class TStructBuilder : public TNativeTypeBuilder<T, TStructBuilder<T>>
{
public:
	using TNativeTypeBuilder<T, TStructBuilder<T>>::TNativeTypeBuilder;
	UScriptStruct* Build()
	{
		static constexpr FNativeStructOps Ops = {
			[](void* Value) { new (Value) T(); },
			[](void* Value) { static_cast<T*>(Value)->~T(); },
			[](void* To, const void* From) { *static_cast<T*>(To) = *static_cast<const T*>(From); },
		};
		return RegisterNativeStruct(std::move(this->Draft), Ops);
	}
};
