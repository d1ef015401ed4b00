#pragma once

#include "CoreObject/Reflection/Class.h"

/** Enumeration that is an asset. Entries are stored as "E_Name::entry", the generated last one as "E_Name::E_Name_MAX". */
class UUserDefinedEnum : public UEnum
{
public:
	static UClass* StaticClass();

	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;
	void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader) override;
};
