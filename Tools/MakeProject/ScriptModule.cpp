#include "ScriptModule.h"
#include "Phrases.h"
#include "Vocabulary.h"

#include <algorithm>

namespace
{
constexpr std::string_view Package = "/Script/Generated.";
constexpr uint32 AssetsPerExtraType = 4000;
constexpr uint32 MostExtraTypes = 200;
constexpr uint32 DeprecatedOneIn = 12;
constexpr uint32 DerivedOneIn = 4; // of the types that grow with the project, these derive from an earlier one

// A type repeats no name of the types that it derives from: each depth has a prefix of its own.
constexpr std::string_view DepthPrefixes[] = {"", "Extra", "Special"};

constexpr std::string_view Rarities[] = {"Common", "Uncommon", "Rare", "Heroic", "Legendary"};
constexpr std::string_view DamageKinds[] = {"Cut", "Pierce", "Crush", "Fire", "Frost", "Poison"};

struct FForm
{
	std::string_view Suffix;
	std::string_view Super;
};

constexpr FForm DataForms[] = {{"Data", "/Script/Engine.PrimaryDataAsset"}, {"Definition", "/Script/Engine.PrimaryDataAsset"},
	{"Config", "/Script/Engine.DataAsset"}};
constexpr FForm ActorForms[] = {{"Actor", "/Script/Engine.Actor"}, {"Character", "/Script/Engine.Character"},
	{"Component", "/Script/Engine.ActorComponent"}, {"Anchor", "/Script/Engine.SceneComponent"}};
constexpr FForm TaskForms[] = {{"", "/Script/Engine.BTTaskNode"}};
constexpr FForm DecoratorForms[] = {{"", "/Script/Engine.BTDecorator"}};
constexpr FForm ServiceForms[] = {{"", "/Script/Engine.BTService"}};
constexpr FForm GeneratorForms[] = {{"", "/Script/Engine.EnvQueryGenerator"}};
constexpr FForm TestForms[] = {{"", "/Script/Engine.EnvQueryTest"}};
constexpr FForm RendererForms[] = {{"Renderer", "/Script/Engine.NiagaraRendererProperties"}};
constexpr FForm RowForms[] = {{"Row", ""}, {"Record", ""}, {"Entry", ""}};

struct FRoleRow
{
	std::string_view Prefix;
	std::span<const FForm> Forms;
	uint32 Num;
	bool bGrowsWithProject;
};

constexpr FRoleRow Roles[] = {
	{"", DataForms, 12, true},
	{"", ActorForms, 12, false},
	{"BTTask_", TaskForms, 16, false},
	{"BTDecorator_", DecoratorForms, 10, false},
	{"BTService_", ServiceForms, 8, false},
	{"EnvQueryGenerator_", GeneratorForms, 6, false},
	{"EnvQueryTest_", TestForms, 8, false},
	{"", RendererForms, 5, false},
	{"", RowForms, 10, true},
};

static_assert(std::size(Roles) == static_cast<std::size_t>(EScriptRole::Count));

void DeclareProperties(FScriptType& Type, FRandom& Random)
{
	FDistinctNumbers Names(Random, static_cast<uint32>(Vocabulary::Quantities.size()));
	for (uint32 Left = Random.Between(2, 12); Left != 0; --Left)
	{
		FScriptProperty Property;
		Property.Name = std::string(DepthPrefixes[Type.Depth]) + std::string(Vocabulary::Quantities[Names.Next()]);
		Property.Type = PickValueType(Random, NumFixedValues);
		Property.bDeprecated = Random.OneIn(DeprecatedOneIn);
		Type.Properties.push_back(std::move(Property));
	}
}

void WriteProperty(FJsonText& Json, std::string_view Name, EValue Type, bool bDeprecated, FRandom& Random)
{
	Json.BeginObject();
	Json.Field("name", Name);
	Json.Field("type", TypeTextOf(Type));
	if (static_cast<uint32>(Type) < NumPlainValues && Random.Chance(160))
	{
		Json.Key("default");
		WritePlainValue(Json, Type, Random);
	}
	if (bDeprecated)
		Json.Field("deprecated", true);
	Json.EndObject();
}

void WriteType(FJsonText& Json, const FScriptType& Type, FRandom& Random)
{
	Json.BeginObject();
	Json.Field("name", Type.Name);
	Json.Key("super");
	Type.Super.empty() ? Json.Raw("null") : Json.String(Type.Super);
	Json.BeginArray("properties");
	for (const FScriptProperty& Property : Type.Properties)
		WriteProperty(Json, Property.Name, Property.Type, Property.bDeprecated, Random);
	Json.EndArray();
	Json.EndObject();
}

/** The structure that properties of type EValue::Stats have. */
void WriteStatBlock(FJsonText& Json, FRandom& Random)
{
	Json.BeginObject();
	Json.Field("name", "StatBlock");
	Json.Key("super");
	Json.Raw("null");
	Json.BeginArray("properties");
	WriteProperty(Json, "Strength", EValue::Int, false, Random);
	WriteProperty(Json, "Agility", EValue::Int, false, Random);
	WriteProperty(Json, "Speed", EValue::Float, false, Random);
	Json.EndArray();
	Json.EndObject();
}

void WriteEnum(FJsonText& Json, std::string_view Name, std::span<const std::string_view> Entries)
{
	Json.BeginObject();
	Json.Field("name", Name);
	Json.BeginArray("entries");
	for (const std::string_view Entry : Entries)
	{
		Json.BeginObject();
		Json.Field("name", Entry);
		Json.Field("display", Entry);
		Json.EndObject();
	}
	Json.EndArray();
	Json.EndObject();
}
}

FScriptModule::FScriptModule(uint32 NumAssets, FRandom Random)
{
	const uint32 Extra = std::min(NumAssets / AssetsPerExtraType, MostExtraTypes);
	for (uint32 Role = 0; Role < std::size(Roles); ++Role)
		Declare(static_cast<EScriptRole>(Role), Roles[Role].Num + (Roles[Role].bGrowsWithProject ? Extra : 0), Random);
}

std::string FScriptModule::ToJson(FRandom Random) const
{
	FJsonText Json;
	Json.BeginObject();
	Json.Field("varnel_script", 1u);
	Json.BeginArray("classes");
	for (uint32 Role = 0; Role < static_cast<uint32>(EScriptRole::Row); ++Role)
	{
		for (const FScriptType& Type : Types[Role])
			WriteType(Json, Type, Random);
	}
	Json.EndArray();
	Json.BeginArray("structs");
	WriteStatBlock(Json, Random);
	for (const FScriptType& Type : TypesFor(EScriptRole::Row))
		WriteType(Json, Type, Random);
	Json.EndArray();
	Json.BeginArray("enums");
	WriteEnum(Json, "EItemRarity", Rarities);
	WriteEnum(Json, "EDamageKind", DamageKinds);
	Json.EndArray();
	Json.EndObject();
	return std::move(Json.Text);
}

std::span<const std::string_view> FScriptModule::RarityNames()
{
	return Rarities;
}

void FScriptModule::Declare(EScriptRole Role, uint32 Num, FRandom& Random)
{
	const FRoleRow& Row = Roles[static_cast<uint32>(Role)];
	const Vocabulary::FWords FirstWords = Row.Prefix.empty() ? Vocabulary::Subjects : Vocabulary::Actions;
	const uint32 NumFirst = static_cast<uint32>(FirstWords.size());
	FDistinctNumbers Words(Random, NumFirst * static_cast<uint32>(Vocabulary::Parts.size()));

	auto& Declared = Types[static_cast<uint32>(Role)];
	for (uint32 Index = 0; Index < Num; ++Index)
	{
		const FForm& Form = Random.Pick(Row.Forms);
		const uint32 Pair = Words.Next();
		FScriptType Type;
		Type.Name = Row.Prefix;
		Type.Name += FirstWords[Pair % NumFirst];
		Type.Name += Vocabulary::Parts[Pair / NumFirst];
		Type.Name += Form.Suffix;
		Type.Path = std::string(Package) + Type.Name;
		ChooseSuper(Role, Form.Super, Type, Random);
		DeclareProperties(Type, Random);
		Declared.push_back(std::move(Type));
	}
}

void FScriptModule::ChooseSuper(EScriptRole Role, std::string_view NativeSuper, FScriptType& Type, FRandom& Random) const
{
	Type.Super = NativeSuper;
	const auto Earlier = TypesFor(Role);
	if (!Roles[static_cast<uint32>(Role)].bGrowsWithProject || Earlier.empty() || !Random.OneIn(DerivedOneIn))
		return;
	const FScriptType& Parent = Random.Pick(Earlier);
	if (Parent.Depth + 1 == std::size(DepthPrefixes))
		return;
	Type.Super = Parent.Path;
	Type.Depth = Parent.Depth + 1;
}
