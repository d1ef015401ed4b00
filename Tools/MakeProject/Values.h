#pragma once

#include "JsonText.h"
#include "Random.h"

/** The types that generated properties, variables, fields and columns have. */
enum class EValue : uint8
{
	Int,
	Int64,
	Byte,
	Float,
	Double,
	Bool,
	String,
	Name,
	Text,
	IntArray,
	NameSet,
	FloatsByName,
	Rarity,		// an enumeration of the script module
	Stats,		// a structure of the script module
	StaticMesh, // soft references
	Texture2D,
	SoundWave,
	UserEnum, // byte<E> of an enumeration that is an asset
	Count
};

/** Types with a fixed spelling; UserEnum, whose spelling names an asset, comes last and stands apart. */
constexpr uint32 NumFixedValues = static_cast<uint32>(EValue::UserEnum);

/** Types that a default value can be written for. */
constexpr uint32 NumPlainValues = static_cast<uint32>(EValue::IntArray);

/** The type as declarations spell it; empty for UserEnum. */
std::string_view TypeTextOf(EValue Type);

/** True when declaring a value of the type refers to the script module. */
bool IsDeclaredByScript(EValue Type);

/** Draws a type below Limit; numbers, truth values and names come most often. */
EValue PickValueType(FRandom& Random, uint32 Limit);

/** Writes a value that refers to no other package. */
void WritePlainValue(FJsonText& Json, EValue Type, FRandom& Random);
