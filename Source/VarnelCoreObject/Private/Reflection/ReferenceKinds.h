#pragma once

#include "CoreObject/Reflection/Properties.h"

/** What distinguishes the kinds of object references; one row for each EObjectReference, in its order. */
struct FReferenceKind
{
	FFieldClass Class;
	const char* Word; // in type texts
	bool bToClass;	  // refers to classes, not to their objects
};

inline constexpr uint64 ReferenceBits = EFieldCast::Property | EFieldCast::ObjectBase;
inline constexpr FReferenceKind ReferenceKinds[] = {
	{{"ObjectProperty", ReferenceBits | EFieldCast::Object}, "object", false},
	{{"WeakObjectProperty", ReferenceBits | EFieldCast::WeakObject}, "weak_object", false},
	{{"LazyObjectProperty", ReferenceBits | EFieldCast::LazyObject}, "lazy_object", false},
	{{"SoftObjectProperty", ReferenceBits | EFieldCast::SoftObject}, "soft_object", false},
	{{"ClassProperty", ReferenceBits | EFieldCast::Object | EFieldCast::Class}, "class", true},
	{{"SoftClassProperty", ReferenceBits | EFieldCast::SoftObject | EFieldCast::SoftClass}, "soft_class", true},
	{{"InterfaceProperty", EFieldCast::Property | EFieldCast::Interface}, "interface", false},
};

inline const FReferenceKind& GetReferenceKind(EObjectReference Kind)
{
	return ReferenceKinds[static_cast<std::size_t>(Kind)];
}
