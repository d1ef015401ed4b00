#include "Engine/UserDefinedEnum.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"

namespace
{
constexpr FStringView EntriesKey = "Entries";
}

UClass* UUserDefinedEnum::StaticClass()
{
	static UClass* const Class = TClassBuilder<UUserDefinedEnum>("/Script/Engine.UserDefinedEnum", UEnum::StaticClass()).Build();
	return Class;
}

bool UUserDefinedEnum::ReadCustomProperty(FStringView Key, const FJsonRef&, FPropertyReader&)
{
	return Key == EntriesKey;
}

void UUserDefinedEnum::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	SetEntries(Reader.ReadEnumEntries(Json.Find(EntriesKey), GetFName().View()));
}
