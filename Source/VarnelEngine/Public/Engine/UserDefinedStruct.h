#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** Structure that is an asset. Its fields' internal names carry a generated suffix; the authored names do not. */
class UUserDefinedStruct : public UScriptStruct
{
public:
	static UClass* StaticClass();

	/** As the asset names it; the parent in force is GetSuperStruct(), none where this one cannot be had or leads back here. */
	TObjectPtr<UScriptStruct> SuperStruct;
	FString Category;

	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;
	void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader) override;
};

/** Texts that editors show for objects. */
namespace FObjectEditorUtils
{
/** The heading under which editors list the structure; empty where it has none. */
FText GetCategoryText(const UUserDefinedStruct* Struct);
}
