#include "Core/Base/SeededHash.h"
#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "Reflection/ReferenceKinds.h"

namespace
{
constexpr FFieldClass StructClass("StructProperty", EFieldCast::Property | EFieldCast::Struct);
}

FObjectPropertyBase::FObjectPropertyBase(EObjectReference InKind, FName InName, FObjectPtr InPropertyClass)
	: TValueProperty(GetReferenceKind(InKind).Class, InName)
	, Kind(InKind)
	, PropertyClass(InPropertyClass)
{
}

FObjectPropertyBase::FObjectPropertyBase(EObjectReference InKind, FName InName, UClass* (*InNativeClass)())
	: TValueProperty(GetReferenceKind(InKind).Class, InName)
	, Kind(InKind)
	, NativeClass(InNativeClass)
{
}

UClass* FObjectPropertyBase::GetPropertyClass() const
{
	return NativeClass ? NativeClass() : Cast<UClass>(PropertyClass.GetIfLoaded());
}

UObject* FObjectPropertyBase::GetObjectPropertyValue(const void* Value) const
{
	UObject* const Object = GetPropertyValue(Value).Get();
	return Object && Accepts(*Object) ? Object : nullptr;
}

bool FObjectPropertyBase::Accepts(const UObject& Object) const
{
	const UClass* const Expected = GetPropertyClass();
	if (!Expected)
		return true;
	if (!GetReferenceKind(Kind).bToClass)
		return Object.IsA(Expected);
	const auto* const Class = Cast<UClass>(&Object);
	return Class && (!Class->IsLinked() || Class->IsChildOf(Expected));
}

bool FObjectPropertyBase::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	const TOptional<FObjectPtr> Reference = Reader.ReadReference(Json, *this);
	if (Reference)
		*static_cast<FObjectPtr*>(Value) = *Reference;
	return Reference.has_value();
}

FString FObjectPropertyBase::GetTypeText() const
{
	const FString ClassPath = NativeClass ? NativeClass()->GetPathName() : PropertyClass.GetPath().ToString();
	return FString(GetReferenceKind(Kind).Word) + "<" + ClassPath + ">";
}

FStructProperty::FStructProperty(FName InName, UScriptStruct& InStruct) : FProperty(StructClass, InName), Struct(InStruct)
{
}

bool FStructProperty::IsComplete() const
{
	return Struct.IsLinked();
}

int32 FStructProperty::GetSize() const
{
	return Struct.GetPropertiesSize();
}

int32 FStructProperty::GetAlignment() const
{
	return Struct.GetMinAlignment();
}

void FStructProperty::InitializeValue(void* Value) const
{
	Struct.InitializeStruct(Value);
}

void FStructProperty::DestroyValue(void* Value) const
{
	Struct.DestroyStruct(Value);
}

void FStructProperty::CopyValue(void* To, const void* From) const
{
	Struct.CopyStruct(To, From);
}

bool FStructProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (!Json.IsObject())
	{
		Reader.ReportType(Json, *this, "an object");
		return false;
	}
	Reader.ReadProperties(Struct, Value, Json, nullptr);
	return true;
}

bool FStructProperty::Identical(const void* A, const void* B) const
{
	for (const FProperty* Member : PropertiesOf(Struct))
		if (!Member->Identical(Member->ContainerPtrToValuePtr<void>(A), Member->ContainerPtrToValuePtr<void>(B)))
			return false;
	return true;
}

uint64 FStructProperty::HashValue(const void* Value) const
{
	uint64 Hash = 0;
	for (const FProperty* Member : PropertiesOf(Struct))
		Hash = SeededHash::MixHash(Hash, Member->HashValue(Member->ContainerPtrToValuePtr<void>(Value)));
	return Hash;
}

FString FStructProperty::GetTypeText() const
{
	return "struct<" + Struct.GetPathName() + ">";
}

void FStructProperty::GatherStructs(std::vector<UScriptStruct*>& Structs) const
{
	Structs.push_back(&Struct);
}
