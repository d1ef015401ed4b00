#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/IdTable.h"
#include "Core/Text/String.h"

#include <string>
#include <string_view>
#include <variant>

class FJsonObject;
class FJsonValue;

/** Elements in order; a plain value. */
using FJsonArray = TArray<FJsonValue>;

/** Type of a JSON value. */
enum class EJson : uint8
{
	Null,
	Boolean,
	Number,
	String,
	Array,
	Object,
};

/**
 * One JSON value. A plain value type but for objects, which are shared; a null object pointer is the value null. Copying is cheap
 * but for long strings.
 */
class FJsonValue
{
public:
	FJsonValue() = default;
	FJsonValue(std::nullptr_t) {}
	FJsonValue(bool Value) : Data(Value) {}
	FJsonValue(int32 Value) : Data(static_cast<int64>(Value)) {}
	FJsonValue(int64 Value) : Data(Value) {}
	FJsonValue(double Value) : Data(Value) {}
	FJsonValue(FString Value) : Data(std::move(Value)) {}
	FJsonValue(const char* Value) : Data(FString(Value)) {}
	template <class T>
	FJsonValue(T* Value) = delete; // would be taken for a bool
	FJsonValue(FJsonArray Value);
	FJsonValue(TSharedPtr<FJsonObject> Value);

	EJson Type() const;
	bool IsNull() const { return Type() == EJson::Null; }

	// The getters convert as the fields of FJsonObject do, and report false where they cannot.
	bool TryGetString(FString& Out) const;
	bool TryGetNumber(double& Out) const;
	bool TryGetNumber(int32& Out) const;
	bool TryGetNumber(int64& Out) const;
	bool TryGetBool(bool& Out) const;
	/** Null when this is not an array / an object. */
	const FJsonArray* AsArray() const;
	TSharedPtr<FJsonObject> AsObject() const;
	/** The number as it was read or set: an integer that fits 64 bits keeps all its digits. */
	bool IsInteger() const { return std::holds_alternative<int64>(Data); }

private:
	using FArrayBox = TSharedPtr<const FJsonArray>; // arrays are immutable once they are a value
	std::variant<std::monostate, bool, int64, double, FString, FArrayBox, TSharedPtr<FJsonObject>> Data;
	template <class TOut>
	friend class TJsonWriter;
};

/**
 * JSON object that keeps insertion order. Keys are case-sensitive; setting a key again keeps its first place and takes the last
 * value.
 *
 * Typed getters convert: string from number (integers without a fraction, others in the shortest form that reads back) and from
 * bool ("true"/"false"); number from a numeric string and from bool (1/0); bool from number (non-zero) and from "true"/"false"/
 * "1"/"0" in any case; an integer from a number by truncation toward zero, and by the nearest end of its range where the number
 * lies outside. Where they cannot convert they report false and leave Out alone.
 *
 * A numeric string is, from its first to its last character: an optional sign, decimal digits with an optional point, an optional
 * exponent ("7", "+7", "007", ".5", "1e3"); no blanks, "nan", "inf" or hexadecimal digits. A not-a-number or infinite number,
 * which no text gives, converts to nothing but double.
 */
class FJsonObject
{
public:
	struct FField
	{
		FString Key;
		FJsonValue Value;
	};

	int32 Num() const { return Fields.Num(); }
	bool HasField(FStringView Key) const { return FindField(Key) != nullptr; }
	const FJsonValue* FindField(FStringView Key) const;
	void SetField(FString Key, FJsonValue Value);
	void SetStringField(FString Key, FString Value) { SetField(std::move(Key), FJsonValue(std::move(Value))); }
	void SetNumberField(FString Key, int64 Value) { SetField(std::move(Key), FJsonValue(Value)); }
	void SetNumberField(FString Key, int32 Value) { SetField(std::move(Key), FJsonValue(Value)); }
	void SetNumberField(FString Key, double Value) { SetField(std::move(Key), FJsonValue(Value)); }
	void SetBoolField(FString Key, bool Value) { SetField(std::move(Key), FJsonValue(Value)); }
	void SetArrayField(FString Key, FJsonArray Value) { SetField(std::move(Key), FJsonValue(std::move(Value))); }
	void SetObjectField(FString Key, TSharedPtr<FJsonObject> Value) { SetField(std::move(Key), FJsonValue(std::move(Value))); }

	bool TryGetStringField(FStringView Key, FString& Out) const;
	bool TryGetNumberField(FStringView Key, double& Out) const;
	bool TryGetNumberField(FStringView Key, int32& Out) const;
	bool TryGetBoolField(FStringView Key, bool& Out) const;
	bool TryGetArrayField(FStringView Key, const FJsonArray*& Out) const;
	bool TryGetObjectField(FStringView Key, TSharedPtr<FJsonObject>& Out) const;

	const TArray<FField>& GetFields() const { return Fields; }

private:
	int32 FindPosition(FStringView Key) const;
	void AddField(FString Key, FJsonValue Value);

	TArray<FField> Fields;
	TIdTable<UINT32_MAX> Positions; // by key, empty while a scan is faster
};

/** Where and why a text is not the JSON that was asked for. */
struct FJsonError
{
	int64 Offset = 0; // bytes from the start of the text
	int32 Line = 1;
	int32 Column = 1; // code points
	FString Text;
	const char* Rule = "json-syntax"; // short stable word, for diagnostics
};

/** How much room a value takes as compact text. */
struct FJsonSize
{
	int64 NumBytes = 0;			// of the text
	int64 NumBytesInString = 0; // of the text inside a JSON string, without the quotes around it
};

/** Reading and writing of JSON text. Any thread. */
namespace Json
{
/** Nesting allowed in messages and arguments, and in packages. */
constexpr int32 MaxMessageDepth = 128;
constexpr int32 MaxPackageDepth = 256;
/** Values in one document; those of the largest real files are some hundred thousand. A document of so many takes about 200 MiB
 * beside its text. */
constexpr int64 MaxDocumentValues = 3 * 1024 * 1024;

/**
 * Strict RFC 8259; invalid UTF-8 and lone surrogates are repaired to U+FFFD, and a number beyond the range of double becomes the
 * largest finite one. False, Error (if given) and Out as it was where the text is not JSON. MaxDepth counts containers inside
 * each other and is at most MaxPackageDepth. Any thread.
 */
bool Parse(std::string_view Text, FJsonValue& Out, FJsonError* Error = nullptr, int32 MaxDepth = MaxMessageDepth);
/** As Parse, but true only for an object. */
bool ParseObject(
	std::string_view Text, TSharedPtr<FJsonObject>& Out, FJsonError* Error = nullptr, int32 MaxDepth = MaxMessageDepth);

/**
 * Compact text: no blanks, keys in order; whole numbers below 2^53 without fraction and exponent, others in the shortest form
 * that reads back; valid UTF-8, control characters escaped. Infinite numbers, which JSON lacks, are written as the largest finite
 * ones and NaN as null. Containers nested deeper than MaxPackageDepth are written as null.
 */
FString Write(const FJsonValue& Value);
FString Write(const FJsonObject& Object);
/** The same, indented by two blanks a level, for people. */
FString WritePretty(const FJsonObject& Object);
/** Appends what Write gives. */
void Append(std::string& Out, const FJsonObject& Object);
/** The size of what Write gives, without writing it. */
FJsonSize Measure(const FJsonValue& Value);
/** Appends Text as a JSON string with its quotes. */
void AppendQuoted(std::string& Out, std::string_view Text);
/** Appends a number in the writer's form. */
void AppendNumber(std::string& Out, double Value);
}
