#pragma once

#include "Core/Base/Map.h"
#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** Table of rows that share one structure. Only the rows' names are kept: cells are checked while the project is, and not read
 * otherwise. */
class UDataTable : public UObject
{
public:
	static UClass* StaticClass();

	TObjectPtr<UScriptStruct> RowStruct;
	/** Names of the rows in file order; rows whose names differ by case alone are one. */
	const TSet<FName>& GetRowMap() const { return RowNames; }

	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;
	void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader) override;

private:
	TSet<FName> RowNames;
};
