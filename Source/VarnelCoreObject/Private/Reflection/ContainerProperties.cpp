#include "Core/Base/SeededHash.h"
#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"

#include <algorithm>
#include <new>
#include <unordered_map>

namespace
{
constexpr FFieldClass ArrayClass("ArrayProperty", EFieldCast::Property | EFieldCast::Array);
constexpr FFieldClass SetClass("SetProperty", EFieldCast::Property | EFieldCast::Set);
constexpr FFieldClass MapClass("MapProperty", EFieldCast::Property | EFieldCast::Map);
constexpr FFieldClass PairClass("PairProperty", EFieldCast::Property); // inside maps only

FDynamicArray& AsArray(void* Array)
{
	return *static_cast<FDynamicArray*>(Array);
}

const FDynamicArray& AsArray(const void* Array)
{
	return *static_cast<const FDynamicArray*>(Array);
}

std::size_t OffsetOf(const FProperty& Element, int32 Index)
{
	return static_cast<std::size_t>(Element.GetSize()) * static_cast<std::size_t>(Index);
}

int32 AlignUp(int32 Offset, int32 Alignment)
{
	return (Offset + Alignment - 1) / Alignment * Alignment;
}

/** Finds the elements of a container that equal its last one. */
class FDistinctElements
{
public:
	FDistinctElements(const IArrayStorage& InStorage, const FProperty& InElement, void* InArray)
		: Storage(InStorage)
		, Element(InElement)
		, Array(InArray)
	{
	}
	/** The earlier element that equals the last one; null, and the last one is remembered, when there is none. */
	void* FindEarlierThanLast()
	{
		const int32 Last = Storage.Num(Array) - 1;
		const uint64 Hash =
			SeededHash::MixHash(0, Element.HashValue(Storage.GetElement(Array, Last))); // numbers hash to themselves
		const auto [First, End] = IndicesByHash.equal_range(Hash);
		const auto Found = std::find_if(First, End,
			[this, Last](const auto& Entry)
			{ return Element.Identical(Storage.GetElement(Array, Entry.second), Storage.GetElement(Array, Last)); });
		if (Found != End)
			return Storage.GetElement(Array, Found->second);
		IndicesByHash.emplace(Hash, Last);
		return nullptr;
	}

private:
	const IArrayStorage& Storage;
	const FProperty& Element;
	void* Array;
	std::unordered_multimap<uint64, int32> IndicesByHash;
};
}

void FDynamicArrayStorage::Initialize(void* Array) const
{
	new (Array) FDynamicArray();
}

void FDynamicArrayStorage::Destroy(void* Array) const
{
	Reset(Array, 0);
}

void FDynamicArrayStorage::Copy(void* To, const void* From) const
{
	if (To == From)
		return;
	const int32 Count = AsArray(From).Num;
	Reset(To, Count);
	for (int32 Index = 0; Index < Count; ++Index)
		Element.CopyValue(AddDefaulted(To), IArrayStorage::GetElement(const_cast<void*>(From), Index));
}

int32 FDynamicArrayStorage::Num(const void* Array) const
{
	return AsArray(Array).Num;
}

const void* FDynamicArrayStorage::GetElement(const void* Array, int32 Index) const
{
	return AsArray(Array).Data + OffsetOf(Element, Index);
}

void FDynamicArrayStorage::Reset(void* Array, int32 Capacity) const
{
	FDynamicArray& Dynamic = AsArray(Array);
	while (Dynamic.Num > 0)
		RemoveLast(Array);
	::operator delete(Dynamic.Data);
	Dynamic.Data = Capacity > 0 ? static_cast<std::byte*>(::operator new(OffsetOf(Element, Capacity))) : nullptr;
	Dynamic.Capacity = Capacity;
}

void* FDynamicArrayStorage::AddDefaulted(void* Array) const
{
	FDynamicArray& Dynamic = AsArray(Array);
	checkf(Dynamic.Num < Dynamic.Capacity, "room for the elements is made beforehand");
	void* const Added = Dynamic.Data + OffsetOf(Element, Dynamic.Num);
	Element.InitializeValue(Added);
	++Dynamic.Num;
	return Added;
}

void FDynamicArrayStorage::RemoveLast(void* Array) const
{
	FDynamicArray& Dynamic = AsArray(Array);
	Element.DestroyValue(Dynamic.Data + OffsetOf(Element, --Dynamic.Num));
}

FContainerProperty::FContainerProperty(
	const FFieldClass& InFieldClass, FName InName, TUniquePtr<FProperty> InInner, TUniquePtr<const IArrayStorage> InStorage)
	: FProperty(InFieldClass, InName)
	, Inner(std::move(InInner))
	, Storage(std::move(InStorage))
{
	if (!Storage)
		Storage = MakeUnique<const FDynamicArrayStorage>(*Inner);
}

bool FContainerProperty::Identical(const void* A, const void* B) const
{
	const int32 Count = Num(A);
	if (Count != Num(B))
		return false;
	for (int32 Index = 0; Index < Count; ++Index)
		if (!Inner->Identical(GetElement(A, Index), GetElement(B, Index)))
			return false;
	return true;
}

uint64 FContainerProperty::HashValue(const void* Value) const
{
	uint64 Hash = 0;
	for (int32 Index = 0; Index < Num(Value); ++Index)
		Hash = SeededHash::MixHash(Hash, Inner->HashValue(GetElement(Value, Index)));
	return Hash;
}

void FContainerProperty::GatherStructs(std::vector<UScriptStruct*>& Structs) const
{
	Inner->GatherStructs(Structs);
}

bool FContainerProperty::MakeRoom(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (!Inner->IsComplete())
	{
		Reader.Report(Json, EDiagnosticSeverity::Error, "property-type",
			"'" + GetName() + "' of type " + GetTypeText() + " takes no values before its structure is complete");
		return false;
	}
	if (!Reader.TakeBytes(Json, static_cast<int64>(Json.Num()) * Inner->GetSize()))
		return false;
	Storage->Reset(Value, Json.Num());
	return true;
}

FArrayProperty::FArrayProperty(FName InName, TUniquePtr<FProperty> InInner, TUniquePtr<const IArrayStorage> InStorage)
	: FContainerProperty(ArrayClass, InName, std::move(InInner), std::move(InStorage))
{
}

/** An element that cannot be read keeps its default, so that the others stay where they are counted. */
bool FArrayProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (!Json.IsArray())
	{
		Reader.ReportType(Json, *this, "an array");
		return false;
	}
	if (!MakeRoom(Value, Json, Reader))
		return false;
	for (const FJsonRef Element : Json)
		GetInner().ReadValue(GetStorage().AddDefaulted(Value), Element, Reader);
	return true;
}

FString FArrayProperty::GetTypeText() const
{
	return "array<" + GetInner().GetTypeText() + ">";
}

FSetProperty::FSetProperty(FName InName, TUniquePtr<FProperty> InInner) : FContainerProperty(SetClass, InName, std::move(InInner))
{
}

bool FSetProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (!Json.IsArray())
	{
		Reader.ReportType(Json, *this, "an array");
		return false;
	}
	if (!MakeRoom(Value, Json, Reader))
		return false;
	FDistinctElements Distinct(GetStorage(), GetInner(), Value);
	for (const FJsonRef Element : Json)
	{
		const bool bRead = GetInner().ReadValue(GetStorage().AddDefaulted(Value), Element, Reader);
		const bool bRepeated = bRead && Distinct.FindEarlierThanLast();
		if (bRepeated)
			Reader.Report(Element, EDiagnosticSeverity::Warning, "repeated-value",
				"'" + GetName() + "' has this value already; a set keeps it once");
		if (!bRead || bRepeated)
			GetStorage().RemoveLast(Value);
	}
	return true;
}

FString FSetProperty::GetTypeText() const
{
	return "set<" + GetInner().GetTypeText() + ">";
}

FPairProperty::FPairProperty(FName InName, TUniquePtr<FProperty> InKey, TUniquePtr<FProperty> InValue)
	: FProperty(PairClass, InName)
	, Key(std::move(InKey))
	, Value(std::move(InValue))
{
}

int32 FPairProperty::GetValueOffset() const
{
	return AlignUp(Key->GetSize(), Value->GetAlignment());
}

int32 FPairProperty::GetSize() const
{
	return AlignUp(GetValueOffset() + Value->GetSize(), GetAlignment());
}

int32 FPairProperty::GetAlignment() const
{
	return std::max(Key->GetAlignment(), Value->GetAlignment());
}

void FPairProperty::InitializeValue(void* Pair) const
{
	Key->InitializeValue(Pair);
	Value->InitializeValue(ValueOf(Pair));
}

void FPairProperty::DestroyValue(void* Pair) const
{
	Value->DestroyValue(ValueOf(Pair));
	Key->DestroyValue(Pair);
}

void FPairProperty::CopyValue(void* To, const void* From) const
{
	Key->CopyValue(To, From);
	Value->CopyValue(ValueOf(To), ValueOf(From));
}

/** A list of two, or a member of an object whose key is the key. */
bool FPairProperty::ReadValue(void* Pair, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (!Json.IsArray() || Json.Num() != 2)
	{
		Reader.ReportType(Json, *this, "pairs of a key and a value");
		return false;
	}
	auto Part = Json.begin();
	return Key->ReadValue(Pair, *Part, Reader) && Value->ReadValue(ValueOf(Pair), *++Part, Reader);
}

bool FPairProperty::Identical(const void* A, const void* B) const
{
	return Key->Identical(A, B) && Value->Identical(ValueOf(A), ValueOf(B));
}

uint64 FPairProperty::HashValue(const void* Pair) const
{
	return SeededHash::MixHash(Key->HashValue(Pair), Value->HashValue(ValueOf(Pair)));
}

FString FPairProperty::GetTypeText() const
{
	return "map<" + Key->GetTypeText() + "," + Value->GetTypeText() + ">";
}

void FPairProperty::GatherStructs(std::vector<UScriptStruct*>& Structs) const
{
	Key->GatherStructs(Structs);
	Value->GatherStructs(Structs);
}

FMapProperty::FMapProperty(FName InName, TUniquePtr<FProperty> InKey, TUniquePtr<FProperty> InValue)
	: FContainerProperty(MapClass, InName, MakeUnique<FPairProperty>(InName, std::move(InKey), std::move(InValue)))
{
}

bool FMapProperty::ReadPair(void* Pair, const FJsonRef& Json, bool bIsMember, FPropertyReader& Reader) const
{
	if (!bIsMember)
		return GetPair().ReadValue(Pair, Json, Reader);
	if (GetKeyProperty().ReadText(Pair, Json.Key()))
		return GetValueProperty().ReadValue(GetPair().ValueOf(Pair), Json, Reader);
	Reader.ReportType(Json, *this, "other keys");
	return false;
}

bool FMapProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	const bool bTextualKey =
		GetKeyProperty().HasAnyCastFlags(EFieldCast::Str | EFieldCast::Name | EFieldCast::Text | EFieldCast::Enum);
	const bool bIsObject = Json.IsObject() && bTextualKey;
	if (!Json.IsArray() && !bIsObject)
	{
		Reader.ReportType(Json, *this, bTextualKey ? "an object or an array of pairs" : "an array of pairs");
		return false;
	}
	if (!MakeRoom(Value, Json, Reader))
		return false;
	FDistinctElements Distinct(GetStorage(), GetKeyProperty(), Value);
	for (const FJsonRef Element : Json)
	{
		void* const Pair = GetStorage().AddDefaulted(Value);
		const bool bRead = ReadPair(Pair, Element, bIsObject, Reader);
		void* const Earlier = bRead ? Distinct.FindEarlierThanLast() : nullptr;
		if (Earlier)
		{
			Reader.Report(Element, EDiagnosticSeverity::Warning, "repeated-value",
				"'" + GetName() + "' has this key already; the later value counts");
			GetValueProperty().CopyValue(GetPair().ValueOf(Earlier), GetPair().ValueOf(Pair));
		}
		if (!bRead || Earlier)
			GetStorage().RemoveLast(Value);
	}
	return true;
}

FString FMapProperty::GetTypeText() const
{
	return GetPair().GetTypeText();
}
