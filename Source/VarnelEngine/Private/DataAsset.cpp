#include "Engine/DataAsset.h"

#include "CoreObject/Reflection/NativeClass.h"

UClass* UDataAsset::StaticClass()
{
	static UClass* const Class = TClassBuilder<UDataAsset>("/Script/Engine.DataAsset", UObject::StaticClass()).Build();
	return Class;
}

UClass* UInputAction::StaticClass()
{
	static UClass* const Class = TClassBuilder<UInputAction>("/Script/Engine.InputAction", UDataAsset::StaticClass()).Build();
	return Class;
}

UClass* UInputMappingContext::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UInputMappingContext>("/Script/Engine.InputMappingContext", UDataAsset::StaticClass()).Build();
	return Class;
}
