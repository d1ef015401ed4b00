#pragma once

#include "Core/Json/Json.h"
#include "Core/Json/JsonDocument.h"
#include "CoreObject/Reflection/Class.h"

/** The property leads to an object or a class. */
bool IsReference(const FProperty& Property);
/** The value is, to the letter, that of the defaults; Defaults may be null. */
bool IsDefaultValue(const FProperty& Property, const void* Container, const void* Defaults);

/**
 * Writes values of properties as JSON that people can read: references as paths, enumerations by the names of their entries,
 * structures as objects with all their members, sets as arrays. A value takes a bounded number of bytes: what is longer ends in
 * "...". Loads nothing but enumerations. Game thread.
 */
class FValueWriter
{
public:
	explicit FValueWriter(int64 InMaxBytes) : MaxBytes(InMaxBytes) {}

	/** Null for properties that are not read, such as delegates. */
	FJsonValue Write(const FProperty& Property, const void* Value);
	/** The members of an instance by the names that authors gave them, own ones first. */
	FJsonValue WriteMembers(const UStruct& Struct, const void* Container);
	/** A value as its file has it. */
	FJsonValue WriteStored(const FJsonRef& Json);
	FJsonValue WriteText(FStringView Text);
	/** Values that were cut so far. */
	int32 GetNumCut() const { return NumCut; }

private:
	template <class TMake>
	FJsonValue Bound(TMake Make);
	FJsonValue MakeValue(const FProperty& Property, const void* Value, int32 Depth);
	FJsonValue MakeMembers(const UStruct& Struct, const void* Container, int32 Depth);
	FJsonValue MakeElements(const class FContainerProperty& Property, const void* Value, int32 Depth);
	FJsonValue MakePairs(const class FMapProperty& Property, const void* Value, int32 Depth);
	FJsonValue MakeStored(const FJsonRef& Json, int32 Depth);
	FJsonValue MakeText(FStringView Text);
	/** Room is used up; tells so in place of a value. */
	FJsonValue Cut();
	FJsonValue Charge(FJsonValue Value);

	const int64 MaxBytes;
	int64 Room = 0;
	bool bCut = false;
	int32 NumCut = 0;
};
