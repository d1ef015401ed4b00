#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "Objects/ObjectLoading.h"
#include "Objects/PathText.h"
#include "Reflection/JsonFaults.h"
#include "Reflection/ReferenceKinds.h"

namespace
{
constexpr int32 MaxNestedTypes = 16;
constexpr FStringView ScriptRoot = "/Script/"; // what lies below is in memory before any package is read

template <class TProperty>
TUniquePtr<FProperty> Make(FName Name)
{
	return MakeUnique<TProperty>(Name);
}

template <EUnreadKind Kind>
TUniquePtr<FProperty> MakeUnread(FName Name)
{
	return MakeUnique<FUnreadProperty>(Kind, Name);
}

struct FPlainType
{
	FStringView Word;
	TUniquePtr<FProperty> (*Make)(FName Name);
};
constexpr FPlainType PlainTypes[] = {
	{"bool", Make<FBoolProperty>},
	{"string", Make<FStrProperty>},
	{"name", Make<FNameProperty>},
	{"text", Make<FTextProperty>},
	{"int8", Make<FInt8Property>},
	{"int16", Make<FInt16Property>},
	{"int", Make<FIntProperty>},
	{"int64", Make<FInt64Property>},
	{"byte", Make<FByteProperty>},
	{"uint16", Make<FUInt16Property>},
	{"uint32", Make<FUInt32Property>},
	{"uint64", Make<FUInt64Property>},
	{"float", Make<FFloatProperty>},
	{"double", Make<FDoubleProperty>},
	{"delegate", MakeUnread<EUnreadKind::Delegate>},
	{"multicast_delegate", MakeUnread<EUnreadKind::MulticastDelegate>},
	{"field_path", MakeUnread<EUnreadKind::FieldPath>},
};

/** Class, structure or enumeration at a path; what lies in other packages than those of the program and its scripts is loaded. */
template <class T>
T* ResolveType(FStringView Path)
{
	UObject* Type = StaticFindObject(T::StaticClass(), Path);
	if (!Type && !Path.starts_with(ScriptRoot))
		Type = ObjectLoading::Load(T::StaticClass(), Path);
	if (Type)
		ObjectLoading::NoteReferenceToPackage(Type->GetPackage()->GetFName());
	return static_cast<T*>(Type);
}

/** Reads one type text from the front on. Functions give null once Error is set. */
class FTypeParser
{
public:
	FTypeParser(FStringView InText, FName InName, FString& OutError) : Text(InText), Rest(InText), Name(InName), Error(OutError)
	{
	}

	TUniquePtr<FProperty> ParseAll()
	{
		TUniquePtr<FProperty> Property = ParseType(1);
		SkipSpaces();
		return Property && !Rest.empty() ? Fail("'" + FString(Rest) + "' follows the type") : std::move(Property);
	}

private:
	TUniquePtr<FProperty> ParseType(int32 Level);
	TUniquePtr<FProperty> ParseTypeOf(FStringView Word, int32 Level);
	TUniquePtr<FProperty> ParseContainer(FStringView Word, int32 Level);
	TUniquePtr<FProperty> ParseMap(int32 Level);
	TUniquePtr<FProperty> ParseReference(EObjectReference Kind);
	TUniquePtr<FProperty> ParseStruct();
	TUniquePtr<FProperty> ParseEnum(FStringView Word);

	FStringView TakeUntil(FStringView Stops);
	/** The path of a class, structure or enumeration up to the closing bracket; empty when there is none. */
	FStringView TakePath(const char* What);
	void SkipSpaces();
	bool Take(char Character);
	TUniquePtr<FProperty> Fail(const FString& Reason);

	FStringView Text;
	FStringView Rest;
	FName Name;
	FString& Error;
};

TUniquePtr<FProperty> FTypeParser::ParseType(int32 Level)
{
	if (Level > MaxNestedTypes)
		return Fail(FString::Printf("types are nested more than %d levels deep", MaxNestedTypes));
	SkipSpaces();
	const FStringView Word = TakeUntil("<>, ");
	SkipSpaces();
	if (Rest.starts_with('<'))
	{
		Rest.remove_prefix(1);
		TUniquePtr<FProperty> Property = ParseTypeOf(Word, Level);
		if (!Property)
			return nullptr;
		SkipSpaces();
		return Take('>') ? std::move(Property) : Fail("a '>' is missing");
	}
	for (const FPlainType& Plain : PlainTypes)
		if (Plain.Word == Word)
			return Plain.Make(Name);
	return Fail(Word.empty() ? FString("a type is missing") : "'" + FString(Word) + "' is not a type");
}

/** Behind "Word<". */
TUniquePtr<FProperty> FTypeParser::ParseTypeOf(FStringView Word, int32 Level)
{
	for (std::size_t Kind = 0; Kind < std::size(ReferenceKinds); ++Kind)
		if (Word == ReferenceKinds[Kind].Word)
			return ParseReference(static_cast<EObjectReference>(Kind));
	if (Word == "array" || Word == "set")
		return ParseContainer(Word, Level);
	if (Word == "map")
		return ParseMap(Level);
	if (Word == "struct")
		return ParseStruct();
	if (Word == "enum" || Word == "byte")
		return ParseEnum(Word);
	return Fail("'" + FString(Word) + "' is not a type that takes types or classes in <>");
}

TUniquePtr<FProperty> FTypeParser::ParseContainer(FStringView Word, int32 Level)
{
	TUniquePtr<FProperty> Inner = ParseType(Level + 1);
	if (!Inner)
		return nullptr;
	if (Word == "set")
		return MakeUnique<FSetProperty>(Name, std::move(Inner));
	return MakeUnique<FArrayProperty>(Name, std::move(Inner));
}

TUniquePtr<FProperty> FTypeParser::ParseMap(int32 Level)
{
	TUniquePtr<FProperty> Key = ParseType(Level + 1);
	if (!Key)
		return nullptr;
	SkipSpaces();
	if (!Take(','))
		return Fail("a map has two types, the key's and the value's");
	TUniquePtr<FProperty> Value = ParseType(Level + 1);
	return Value ? MakeUnique<FMapProperty>(Name, std::move(Key), std::move(Value)) : nullptr;
}

TUniquePtr<FProperty> FTypeParser::ParseReference(EObjectReference Kind)
{
	const FStringView Path = TakePath("class");
	if (Path.empty())
		return nullptr;
	const UClass* const Class = FindClass(Path);
	if (!Class && Path.starts_with(ScriptRoot))
		return Fail("there is no class " + FString(Path));
	return MakeUnique<FObjectPropertyBase>(Kind, Name, FObjectPtr(FSoftObjectPath(Path)));
}

TUniquePtr<FProperty> FTypeParser::ParseStruct()
{
	const FStringView Path = TakePath("structure");
	if (Path.empty())
		return nullptr;
	if (auto* const Struct = ResolveType<UScriptStruct>(Path))
		return MakeUnique<FStructProperty>(Name, *Struct);
	return Fail("there is no structure " + FString(Path));
}

TUniquePtr<FProperty> FTypeParser::ParseEnum(FStringView Word)
{
	const FStringView Path = TakePath("enumeration");
	if (Path.empty())
		return nullptr;
	auto* const Enum = ResolveType<UEnum>(Path);
	if (!Enum)
		return Fail("there is no enumeration " + FString(Path));
	if (Word == "byte")
		return MakeUnique<FByteProperty>(Name, Enum);
	return MakeUnique<FEnumProperty>(Name, *Enum);
}

FStringView FTypeParser::TakeUntil(FStringView Stops)
{
	const FStringView Taken = Rest.substr(0, Rest.find_first_of(Stops));
	Rest.remove_prefix(Taken.size());
	return Taken;
}

FStringView FTypeParser::TakePath(const char* What)
{
	SkipSpaces();
	FStringView Path = TakeUntil(">");
	while (Path.ends_with(' '))
		Path.remove_suffix(1);
	if (PathText::IsTopLevelPath(Path))
		return Path;
	Fail(FJsonFaults::Quote(Path) + " is not the full path of a " + What);
	return {};
}

void FTypeParser::SkipSpaces()
{
	while (Rest.starts_with(' '))
		Rest.remove_prefix(1);
}

bool FTypeParser::Take(char Character)
{
	const bool bIsNext = Rest.starts_with(Character);
	Rest.remove_prefix(bIsNext ? 1 : 0);
	return bIsNext;
}

TUniquePtr<FProperty> FTypeParser::Fail(const FString& Reason)
{
	Error = FJsonFaults::Quote(Text) + " cannot be used: " + Reason;
	return nullptr;
}
}

TUniquePtr<FProperty> MakeProperty(FStringView TypeText, FName Name, FString& OutError)
{
	return FTypeParser(TypeText, Name, OutError).ParseAll();
}
