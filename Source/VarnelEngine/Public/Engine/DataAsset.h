#pragma once

#include "CoreObject/Reflection/Class.h"

/** Asset of plain data. Projects declare subclasses with the properties. */
class UDataAsset : public UObject
{
public:
	static UClass* StaticClass();
};

/** Something that a player can do, as far as input is concerned. */
class UInputAction : public UDataAsset
{
public:
	static UClass* StaticClass();
};

/** Which keys trigger which actions. */
class UInputMappingContext : public UDataAsset
{
public:
	static UClass* StaticClass();
};
