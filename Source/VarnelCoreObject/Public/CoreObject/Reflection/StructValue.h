#pragma once

#include "CoreObject/Reflection/Class.h"

/** An instance of a structure with its declared defaults. The structure is linked, and outlives it. */
class FStructValue
{
public:
	explicit FStructValue(const UScriptStruct& InStruct)
		: Struct(InStruct)
		, Value(::operator new(static_cast<std::size_t>(InStruct.GetPropertiesSize())))
	{
		Struct.InitializeStruct(Value);
	}
	~FStructValue()
	{
		Struct.DestroyStruct(Value);
		::operator delete(Value);
	}
	FStructValue(const FStructValue&) = delete;
	FStructValue& operator=(const FStructValue&) = delete;
	void* Get() const { return Value; }

private:
	const UScriptStruct& Struct;
	void* Value;
};
