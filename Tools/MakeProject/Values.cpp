#include "Values.h"
#include "Phrases.h"
#include "ScriptModule.h"
#include "Vocabulary.h"

namespace
{
constexpr std::string_view TypeTexts[] = {"int", "int64", "byte", "float", "double", "bool", "string", "name", "text",
	"array<int>", "set<name>", "map<name,float>", "enum</Script/Generated.EItemRarity>", "struct</Script/Generated.StatBlock>",
	"soft_object</Script/Engine.StaticMesh>", "soft_object</Script/Engine.Texture2D>", "soft_object</Script/Engine.SoundWave>",
	""};

static_assert(std::size(TypeTexts) == static_cast<std::size_t>(EValue::Count));

constexpr EValue CommonTypes[] = {
	EValue::Int, EValue::Float, EValue::Bool, EValue::Name, EValue::Float, EValue::Int, EValue::Bool, EValue::String};

void WriteInts(FJsonText& Json, FRandom& Random)
{
	Json.BeginArray();
	for (uint32 Left = Random.Below(5); Left != 0; --Left)
		Json.Number(Random.Below(1000));
	Json.EndArray();
}

void WriteNames(FJsonText& Json, FRandom& Random)
{
	Json.BeginArray();
	FDistinctNumbers Words(Random, static_cast<uint32>(Vocabulary::Parts.size()));
	for (uint32 Left = Random.Below(4); Left != 0; --Left)
		Json.String(Vocabulary::Parts[Words.Next()]);
	Json.EndArray();
}

/** Both spellings of a map are in use: an object where keys are text, and pairs. */
void WriteFloatsByName(FJsonText& Json, FRandom& Random)
{
	const bool bPairs = Random.OneIn(3);
	FDistinctNumbers Words(Random, static_cast<uint32>(Vocabulary::Quantities.size()));
	bPairs ? Json.BeginArray() : Json.BeginObject();
	for (uint32 Left = Random.Below(4); Left != 0; --Left)
	{
		const std::string_view Key = Vocabulary::Quantities[Words.Next()];
		if (bPairs)
		{
			Json.BeginArray();
			Json.String(Key);
		}
		else
			Json.Key(Key);
		Json.Decimal(Random.Below(10'000));
		if (bPairs)
			Json.EndArray();
	}
	bPairs ? Json.EndArray() : Json.EndObject();
}

void WriteStats(FJsonText& Json, FRandom& Random)
{
	Json.BeginObject();
	Json.Field("Strength", Random.Below(100));
	Json.Field("Agility", Random.Below(100));
	Json.Key("Speed");
	Json.Decimal(Random.Below(2000));
	Json.EndObject();
}

void WriteText(FJsonText& Json, FRandom& Random)
{
	const bool bWrapped = Random.OneIn(4);
	if (bWrapped)
	{
		Json.BeginObject();
		Json.Key("text");
	}
	Phrases::WriteTitle(Json, Random);
	if (bWrapped)
		Json.EndObject();
}
}

std::string_view TypeTextOf(EValue Type)
{
	return TypeTexts[static_cast<uint32>(Type)];
}

bool IsDeclaredByScript(EValue Type)
{
	return Type == EValue::Rarity || Type == EValue::Stats;
}

EValue PickValueType(FRandom& Random, uint32 Limit)
{
	if (Random.Chance(128))
		return Random.Pick(CommonTypes);
	return static_cast<EValue>(Random.Below(Limit));
}

void WritePlainValue(FJsonText& Json, EValue Type, FRandom& Random)
{
	switch (Type)
	{
		case EValue::Int:
		case EValue::Int64:
			return Json.Number(Random.HeavyTailed(40 * 256));
		case EValue::Byte:
			return Json.Number(Random.Below(256));
		case EValue::Float:
		case EValue::Double:
			return Json.Decimal(Random.HeavyTailed(500 * 256));
		case EValue::Bool:
			return Json.Raw(Random.Chance(128) ? "true" : "false");
		case EValue::String:
			return Phrases::WriteTitle(Json, Random);
		case EValue::Name:
			return Json.String(Random.Pick(Vocabulary::Parts));
		case EValue::Text:
			return WriteText(Json, Random);
		case EValue::IntArray:
			return WriteInts(Json, Random);
		case EValue::NameSet:
			return WriteNames(Json, Random);
		case EValue::FloatsByName:
			return WriteFloatsByName(Json, Random);
		case EValue::Rarity:
			return Json.String(Random.Pick(FScriptModule::RarityNames()));
		case EValue::Stats:
			return WriteStats(Json, Random);
		case EValue::UserEnum:
			return Json.Number(Random.Below(3));
		case EValue::StaticMesh:
		case EValue::Texture2D:
		case EValue::SoundWave:
		case EValue::Count:
			return Json.Raw("null");
	}
}
