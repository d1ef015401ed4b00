#include "Bodies.h"
#include "Vocabulary.h"

namespace
{
constexpr std::string_view NamePrefixes[] = {"", "Base", "Detail", "Edge", "Wind"};
constexpr uint32 UnreadableOneIn = 40;

/** The parameters of a material, the same for the material itself and for the instances that override some of them. */
struct FParameters
{
	FParameters(const FProjectPlan& Plan, uint32 Material)
		: Random(Plan.MakeRandom(EPurpose::Parameters, Material))
		, NumScalars(Random.Below(9))
		, NumVectors(Random.Below(5))
		, NumTextures(Random.Below(6))
		, Names(Random, static_cast<uint32>(std::size(NamePrefixes) * Vocabulary::Quantities.size()))
	{
	}

	FRandom Random;
	uint32 NumScalars;
	uint32 NumVectors;
	uint32 NumTextures;
	FDistinctNumbers Names;

	std::string NextName()
	{
		const uint32 Pair = Names.Next();
		return std::string(NamePrefixes[Pair % std::size(NamePrefixes)]) +
			std::string(Vocabulary::Quantities[Pair / std::size(NamePrefixes)]);
	}
};

void WriteColor(FJsonText& Json, FRandom& Random)
{
	Json.BeginObject();
	for (const std::string_view Channel : {"R", "G", "B", "A"})
	{
		Json.Key(Channel);
		Json.Decimal(Random.Below(101));
	}
	Json.EndObject();
}

void WriteScalarValue(FPackageDraft& Draft)
{
	Draft.Objects.Decimal(Draft.Random.HeavyTailed(200 * 256));
}

void WriteVectorValue(FPackageDraft& Draft)
{
	WriteColor(Draft.Objects, Draft.Random);
}

void WriteTextureValue(FPackageDraft& Draft)
{
	Draft.WriteAnyReference(Draft.Objects, EAssetClass::Texture2D, ELinkKind::Hard);
}

/** Writes one list of parameters; each name is drawn, whether its parameter is written or not. */
void WriteList(FPackageDraft& Draft, std::string_view List, FParameters& Parameters, uint32 Num, uint32 WrittenOf256,
	void (*WriteValue)(FPackageDraft&))
{
	FJsonText& Json = Draft.Objects;
	Json.BeginArray(List);
	for (uint32 Index = 0; Index < Num; ++Index)
	{
		const std::string Name = Parameters.NextName();
		if (!Draft.Random.Chance(WrittenOf256))
			continue;
		Json.BeginObject();
		Json.Field("Name", Name);
		Json.Key("Value");
		if (Draft.Random.OneIn(UnreadableOneIn))
			Json.Raw("null");
		else
			WriteValue(Draft);
		Json.EndObject();
	}
	Json.EndArray();
}

void WriteParameters(FPackageDraft& Draft, uint32 Material, uint32 WrittenOf256)
{
	FParameters Parameters(Draft.Plan, Material);
	WriteList(Draft, "ScalarParameters", Parameters, Parameters.NumScalars, WrittenOf256, WriteScalarValue);
	WriteList(Draft, "VectorParameters", Parameters, Parameters.NumVectors, WrittenOf256, WriteVectorValue);
	WriteList(Draft, "TextureParameters", Parameters, Parameters.NumTextures, WrittenOf256, WriteTextureValue);
}

/** The material that a chain of instances ends in, by the topmost instance. */
std::optional<uint32> MaterialOf(const FPackageDraft& Draft, uint32 TopInstance)
{
	FRandom Random = Draft.Plan.MakeRandom(EPurpose::Parameters, TopInstance);
	return Draft.Picker.PickOfClass(Random, EAssetClass::Material, TopInstance);
}
}

void WriteMaterial(FPackageDraft& Draft)
{
	Draft.BeginAssetObject();
	WriteParameters(Draft, Draft.Package, 256);
	Draft.EndPart();
}

void WriteMaterialInstance(FPackageDraft& Draft)
{
	const uint32 TopInstance = Draft.Picker.RootOf(Draft.Package);
	const auto Material = MaterialOf(Draft, TopInstance);
	const auto Instance = Draft.Picker.ParentOf(Draft.Package);
	const auto Parent = Instance ? Instance : Material;

	Draft.BeginAssetObject();
	if (Parent)
	{
		Draft.Tags.Key("Parent");
		Draft.WriteReference(Draft.Tags, *Parent);
		Draft.Objects.Key("Parent");
		Draft.WriteReference(Draft.Objects, *Parent);
	}
	WriteParameters(Draft, Material.value_or(TopInstance), 110);
	Draft.EndPart();
}
