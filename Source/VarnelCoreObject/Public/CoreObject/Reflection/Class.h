#pragma once

#include "Core/Base/KeyHash.h"
#include "CoreObject/Objects/Object.h"
#include "CoreObject/Objects/ObjectPath.h"
#include "CoreObject/Reflection/Field.h"
#include "CoreObject/Reflection/MetaData.h"

#include <functional>
#include <unordered_map>
#include <vector>

/** Bytes that an instance of a class or structure may take; keeps a small project file from asking for huge objects. */
constexpr int32 MaxInstanceBytes = 1 << 20;
/** Parents of a class or structure, and structures inside structures by value. */
constexpr int32 MaxStructDepth = 64;

/** Something that was declared and cannot be laid out like that. */
struct FLinkFault
{
	int32 Property = INDEX_NONE; // its place among the own properties as they were added; INDEX_NONE: the parent
	const char* Rule = "";
	FString Text; // a sentence without full stop
};

/** Something with a list of properties and a parent: a class or a structure. */
class UStruct : public UObject
{
public:
	~UStruct() override;
	static UClass* StaticClass();

	/** Once the type is linked; null before. */
	UStruct* GetSuperStruct() const { return Super; }
	/** This structure is Other or derives from it. */
	bool IsChildOf(const UStruct* Other) const;
	/** "/Script/Engine.DataTable". */
	FTopLevelAssetPath GetStructPathName() const;
	/** By internal name, without regard to case, own ones first; null when there is none. */
	const FProperty* FindPropertyByName(FName PropertyName) const;
	FProperty* FindOwnProperty(FName PropertyName);
	/** Own properties in declaration order. */
	const std::vector<TUniquePtr<FProperty>>& GetOwnProperties() const { return Properties; }
	/** Bytes of an instance, parents included. */
	int32 GetPropertiesSize() const { return PropertiesSize; }
	int32 GetMinAlignment() const { return Alignment; }
	/** Own metadata by key (case is ignored), such as "ToolTip"; null, or "", when there is none. */
	const FString* FindMetaData(const FString& Key) const { return MetaData.Find(Key); }
	FString GetMetaData(const FString& Key) const
	{
		const FString* const Value = FindMetaData(Key);
		return Value ? *Value : FString();
	}
	void SetMetaData(FString Key, FString Value) { MetaData.Set(std::move(Key), std::move(Value)); }
	/** Laid out; instances can be made. */
	bool IsLinked() const { return bLinked; }
	/** Made by the program, not by a project; with or without a C++ class of its own. */
	bool IsNativeStruct() const { return bNative; }

	/** Appends an own property; its offset is set by Link. Null, and nothing appended, when an own property has that name, and
	 * after Link. */
	FProperty* AddProperty(TUniquePtr<FProperty> Property);
	/** Declares the parent. False after Link. */
	bool SetSuperStruct(UStruct* InSuper);
	/** LinkTypes for this type alone. Appends what was declared and is not so. */
	void Link(TArray<FLinkFault>* OutFaults = nullptr);
	/**
	 * Reads the default value of an own property; new instances have it from now on. After Link; parents' defaults and those of
	 * contained structures come before. False and a diagnostic where the value does not fit.
	 */
	virtual bool ReadDefault(FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader);

protected:
	/** Constructs the properties that no C++ class holds: those from the nearest native ancestor on downwards. */
	void InitializeDynamicProperties(void* Container) const;
	void DestroyDynamicProperties(void* Container) const;

private:
	friend class FObjectTable;
	friend class FClassRegistrar;
	friend class FTypeLinker;
	virtual void DestroyDefaults() {}
	void LoseParent(const char* Rule, const FString& Why);
	/** The property keeps its name and place, and is not read. */
	void LoseValue(int32 Property, const char* Rule, const FString& Why);
	void Layout();
	void PlaceParent();
	void DropPropertiesOfParents();
	const char* FindFault(const FProperty& Property) const;
	void PlaceProperty(int32 Index);

	UStruct* DeclaredSuper = nullptr;
	UStruct* Super = nullptr;
	FMetaData MetaData;
	std::vector<TUniquePtr<FProperty>> Properties;
	std::unordered_map<FName, int32, FKeyHash> PropertyIndices; // own, by name
	TArray<FLinkFault> LinkFaults;								// until they are taken
	int32 PropertiesSize = 0;
	int32 Alignment = 1;
	int32 Depth = 0;	  // parents above
	int32 ValueDepth = 0; // levels of structures held by value
	bool bLinked = false;
	bool bNative = false;
};

/**
 * Lays out own properties after the parent's, of the given types and of all those that they lead to. Called when their last
 * properties were added; types that are linked stay as they are. Where parents and structures held by value lead in a ring, every
 * member of it loses the parent or the value that leads on, so that it does not matter where one begins; the same becomes of what
 * would take too many levels or bytes. A property that a parent has too is dropped. Returns the types that were linked, each
 * after its parent and, but for rings, after the structures that its properties mention.
 */
std::vector<UStruct*> LinkTypes(const std::vector<UStruct*>& Types);

/** What the program knows about a structure of its own. */
struct FNativeStructOps
{
	void (*Construct)(void* Value);
	void (*Destroy)(void* Value);
	void (*Assign)(void* To, const void* From);
};

/** A structure that values have. */
class UScriptStruct : public UStruct
{
public:
	~UScriptStruct() override;
	static UClass* StaticClass();

	/** Value: raw storage of GetPropertiesSize() bytes; it gets the declared defaults. */
	void InitializeStruct(void* Value) const;
	void DestroyStruct(void* Value) const;
	void CopyStruct(void* To, const void* From) const;
	bool ReadDefault(FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader) override;

private:
	friend class FObjectTable;
	friend class FClassRegistrar;
	void DestroyDefaults() override;
	/** The nearest structure upwards that is a C++ one, or null. */
	const UScriptStruct* FindNative() const;

	const FNativeStructOps* NativeOps = nullptr;
	void* Defaults = nullptr; // an instance; only properties with a declared default are read from it
};

/** A class: native, declared by a script module, or generated from a Blueprint. */
class UClass : public UStruct
{
public:
	~UClass() override;
	static UClass* StaticClass();

	UClass* GetSuperClass() const { return static_cast<UClass*>(GetSuperStruct()); }
	bool IsAbstract() const { return bAbstract; }
	/** Backed by a C++ class of its own. */
	bool IsNative() const { return NativeConstructor != nullptr; }
	/**
	 * The object that carries the class's defaults, made on first use: the parent's defaults, then the class's own. Abstract
	 * classes have one too; null only before the class is linked. Lies in no package and is in no list.
	 */
	UObject* GetDefaultObject();
	template <class T>
	T* GetDefaultObject()
	{
		return static_cast<T*>(GetDefaultObject());
	}
	bool ReadDefault(FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader) override;

private:
	friend class FObjectTable;
	friend class FClassRegistrar;
	using FConstructor = UObject* (*)(void* Memory);
	void DestroyDefaults() override;

	FConstructor NativeConstructor = nullptr;
	UObject* DefaultObject = nullptr;
	int32 NumInstances = 0; // in the table; the default object is not
	bool bAbstract = false;
};

/** Named integers. */
class UEnum : public UObject
{
public:
	static UClass* StaticClass();
	struct FEntry
	{
		FName Name; // as stored: "E_Name::entry" for user-defined ones
		FText DisplayName;
		int64 Value = 0;
	};
	/** All entries, the generated maximum included. */
	int32 NumEnums() const { return Entries.Num(); }
	FName GetNameByIndex(int32 Index) const { return Entries[Index].Name; }
	FText GetDisplayNameTextByIndex(int32 Index) const { return Entries[Index].DisplayName; }
	/** Value of an entry by its full or short name ("E_Name::entry" or "entry"), without regard to case; false when there is
	 * none. */
	bool TryGetValueByName(FStringView Name, int64& Out) const;
	void SetEntries(TArray<FEntry> InEntries);
	const TArray<FEntry>& GetEntries() const { return Entries; }

private:
	TArray<FEntry> Entries;
	std::unordered_map<FString, int64, FKeyHash> ValuesByShortName;
};

/** What a walk over properties includes. */
struct FPropertyWalk
{
	bool bIncludeSuper = true;
	bool bIncludeDeprecated = true;
};

/** Properties in the reflection system's order: own first in declaration order, then the parents', nearest first. */
class FPropertyRange
{
public:
	explicit FPropertyRange(const UStruct& InStruct, FPropertyWalk InWalk = {});
	class FIterator
	{
	public:
		FIterator() = default;
		FIterator(const UStruct* InStruct, FPropertyWalk InWalk);
		const FProperty* operator*() const;
		FIterator& operator++();
		bool operator!=(const FIterator& Other) const { return Struct != Other.Struct || Index != Other.Index; }

	private:
		void SkipToListed();
		const UStruct* Struct = nullptr;
		std::size_t Index = 0;
		FPropertyWalk Walk;
	};
	FIterator begin() const { return Begin; }
	FIterator end() const { return {}; }

private:
	FIterator Begin;
};
inline FPropertyRange PropertiesOf(const UStruct& Struct, FPropertyWalk Walk = {})
{
	return FPropertyRange(Struct, Walk);
}

/** A class in memory by its path ("/Script/Engine.Actor", export form too); null when there is none. Never loads. */
UClass* FindClass(FStringView Path);
/** Visits all classes in memory, parents before children among native ones. */
void ForEachClass(const std::function<void(UClass&)>& Visit);
