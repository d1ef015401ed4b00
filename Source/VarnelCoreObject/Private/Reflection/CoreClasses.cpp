#include "Objects/ObjectTable.h"
#include "Reflection/ClassRegistrar.h"

namespace
{
constexpr const char* CorePackage = "/Script/CoreObject";

struct FCoreClasses
{
	UClass* Object = nullptr;
	UClass* Package = nullptr;
	UClass* Struct = nullptr;
	UClass* ScriptStruct = nullptr;
	UClass* Class = nullptr;
	UClass* Enum = nullptr;
};

/** UObject is made by its children alone. */
class UPlainObject final : public UObject
{
};

template <class T>
UClass* MakeClass(UClass* Super, bool bAbstract)
{
	auto* const Class = new (::operator new(sizeof(UClass))) UClass();
	FNativeTypeDraft Draft{.Path = CorePackage, .Size = sizeof(T), .Alignment = alignof(T), .Properties = {}};
	FClassRegistrar::Fill(
		*Class, Draft, Super, [](void* Memory) -> UObject* { return new (Memory) T(); }, bAbstract);
	return Class;
}

/**
 * The classes that describe classes. Each needs the others to be an object in a package, so all are made before the first is put
 * there. While that happens, StaticClass() gives them already.
 */
void Make(FCoreClasses& Core)
{
	Core.Object = MakeClass<UPlainObject>(nullptr, false);
	Core.Package = MakeClass<UPackage>(Core.Object, true);
	Core.Struct = MakeClass<UStruct>(Core.Object, true);
	Core.ScriptStruct = MakeClass<UScriptStruct>(Core.Struct, false);
	Core.Class = MakeClass<UClass>(Core.Struct, false);
	Core.Enum = MakeClass<UEnum>(Core.Object, false);

	UPackage* const Package = FindPackage(CorePackage, true);
	Package->MarkAsFullyLoaded();
	FObjectTable& Table = FObjectTable::Get();
	Table.Add(*Core.Object, *Core.Class, Package, "Object");
	Table.Add(*Core.Package, *Core.Class, Package, "Package");
	Table.Add(*Core.Struct, *Core.Class, Package, "Struct");
	Table.Add(*Core.ScriptStruct, *Core.Class, Package, "ScriptStruct");
	Table.Add(*Core.Class, *Core.Class, Package, "Class");
	Table.Add(*Core.Enum, *Core.Class, Package, "Enum");
}

const FCoreClasses& GetCoreClasses()
{
	static FCoreClasses Core;
	if (!Core.Object)
		Make(Core);
	return Core;
}
}

UClass* UObject::StaticClass()
{
	return GetCoreClasses().Object;
}

UClass* UPackage::StaticClass()
{
	return GetCoreClasses().Package;
}

UClass* UStruct::StaticClass()
{
	return GetCoreClasses().Struct;
}

UClass* UScriptStruct::StaticClass()
{
	return GetCoreClasses().ScriptStruct;
}

UClass* UClass::StaticClass()
{
	return GetCoreClasses().Class;
}

UClass* UEnum::StaticClass()
{
	return GetCoreClasses().Enum;
}
