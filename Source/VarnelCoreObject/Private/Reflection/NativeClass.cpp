#include "CoreObject/Reflection/NativeClass.h"

#include "Objects/ObjectTable.h"
#include "Reflection/ClassRegistrar.h"

namespace
{
/** A declared class that was there first keeps its objects, but its name means the native one from now on. */
void AddToPackage(UObject& Object, UClass& Class, const char* Path)
{
	const FTopLevelAssetPath Place(Path);
	checkf(Place.IsValid(), "native classes and structures lie directly in a package");
	UPackage* const Package = FindPackage(Place.PackageName, true);
	Package->MarkAsFullyLoaded();
	FObjectTable::Get().Add(Object, Class, Package, Place.AssetName);
}
}

void FClassRegistrar::FillStruct(UStruct& Struct, FNativeTypeDraft& Draft, UStruct* Super)
{
	Struct.Super = Super;
	for (TUniquePtr<FProperty>& Property : Draft.Properties)
		Struct.AddProperty(std::move(Property));
	Struct.PropertiesSize = Draft.Size;
	Struct.Alignment = Draft.Alignment;
	Struct.Depth = Super ? Super->Depth + 1 : 0;
	Struct.bLinked = true;
	Struct.bNative = true;
}

void FClassRegistrar::Fill(
	UClass& Class, FNativeTypeDraft& Draft, UClass* Super, UObject* (*Constructor)(void* Memory), bool bAbstract)
{
	FillStruct(Class, Draft, Super);
	Class.NativeConstructor = Constructor;
	Class.bAbstract = bAbstract;
}

void FClassRegistrar::Fill(UScriptStruct& Struct, FNativeTypeDraft& Draft, const FNativeStructOps& Ops)
{
	FillStruct(Struct, Draft, nullptr);
	Struct.NativeOps = &Ops;
}

namespace
{
constinit const FAutoNativeClass* FirstWaiting = nullptr; // needs no constructor, so static objects find it in any order
}

FAutoNativeClass::FAutoNativeClass(UClass* (*InStaticClass)()) : StaticClass(InStaticClass), Next(FirstWaiting)
{
	FirstWaiting = this;
}

void FAutoNativeClass::BuildAll()
{
	while (const FAutoNativeClass* const Waiting = FirstWaiting)
	{
		FirstWaiting = Waiting->Next;
		Waiting->StaticClass();
	}
}

UClass* RegisterNativeClass(FNativeTypeDraft Draft, UClass* Super, UObject* (*Constructor)(void* Memory), bool bAbstract)
{
	UClass& Metaclass = *UClass::StaticClass();
	auto* const Class = static_cast<UClass*>(FObjectTable::Construct(Metaclass));
	FClassRegistrar::Fill(*Class, Draft, Super, Constructor, bAbstract);
	AddToPackage(*Class, Metaclass, Draft.Path);
	return Class;
}

UScriptStruct* RegisterNativeStruct(FNativeTypeDraft Draft, const FNativeStructOps& Ops)
{
	UClass& Metaclass = *UScriptStruct::StaticClass();
	auto* const Struct = static_cast<UScriptStruct*>(FObjectTable::Construct(Metaclass));
	FClassRegistrar::Fill(*Struct, Draft, Ops);
	AddToPackage(*Struct, Metaclass, Draft.Path);
	return Struct;
}

UClass* RegisterPlainClass(const char* Path, UClass* Super)
{
	UClass* const Known = FindClass(Path);
	if (Known && Known->IsNativeStruct())
		return Known;
	FNativeTypeDraft Draft{
		.Path = Path, .Size = Super->GetPropertiesSize(), .Alignment = Super->GetMinAlignment(), .Properties = {}};
	return RegisterNativeClass(std::move(Draft), Super, nullptr, false);
}
