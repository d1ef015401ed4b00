#include "Bodies.h"
#include "Phrases.h"
#include "Vocabulary.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr uint32 MostRows = 200;

/** A field of a structure that is an asset. */
struct FField
{
	std::string Name; // internal, with its generated suffix
	std::string_view Authored;
	EValue Type = EValue::Int;
	bool bDeprecated = false;
};

std::string MakeInternalName(std::string_view Authored, uint32 Index, FRandom& Random)
{
	std::string Name(Authored);
	Name += '_';
	FJsonText::AppendNumber(Name, Index);
	Name += '_';
	for (uint32 Digit = 0; Digit < 32; ++Digit)
		Name += "0123456789ABCDEF"[Random.Below(16)];
	return Name;
}

/** The fields of a structure, the same for the structure itself and for the tables whose rows it describes. */
std::vector<FField> FieldsOf(const FProjectPlan& Plan, uint32 Structure)
{
	FRandom Random = Plan.MakeRandom(EPurpose::Fields, Structure);
	FDistinctNumbers Names(Random, static_cast<uint32>(Vocabulary::Quantities.size()));
	std::vector<FField> Fields(1 + std::min(Random.HeavyTailed(7 * 256), 40u));
	for (uint32 Index = 0; Index < Fields.size(); ++Index)
	{
		FField& Field = Fields[Index];
		Field.Authored = Vocabulary::Quantities[Names.Next()];
		Field.Name = MakeInternalName(Field.Authored, Index * 3 + 2, Random);
		Field.Type = PickValueType(Random, static_cast<uint32>(EValue::Count));
		Field.bDeprecated = Random.OneIn(25);
	}
	return Fields;
}

struct FColumn
{
	std::string Name;
	EValue Type;
};

/** Writes the row structure of a table, if it has one, and returns the columns that rows are written for. */
std::vector<FColumn> WriteRowStruct(FPackageDraft& Draft)
{
	std::vector<FColumn> Columns;
	const auto Structure = Draft.Picker.PickOfClass(Draft.Random, EAssetClass::UserDefinedStruct, Draft.Package);
	if (Draft.Random.OneIn(20))
	{
		Columns.push_back({"Value", EValue::Int});
		return Columns;
	}
	Draft.Objects.Key("RowStruct");
	if (Structure && Draft.Random.Chance(128))
	{
		Draft.WriteReference(Draft.Objects, *Structure);
		for (FField& Field : FieldsOf(Draft.Plan, *Structure))
			Columns.push_back({std::move(Field.Name), Field.Type});
		return Columns;
	}
	const FScriptType& Row = Draft.Random.Pick(Draft.Script.TypesFor(EScriptRole::Row));
	Draft.WriteScriptPath(Draft.Objects, Row.Path);
	for (const FScriptProperty& Property : Row.Properties)
		Columns.push_back({Property.Name, Property.Type});
	return Columns;
}

void WriteRow(FPackageDraft& Draft, const std::vector<FColumn>& Columns)
{
	Draft.Objects.BeginObject();
	for (const FColumn& Column : Columns)
	{
		Draft.Objects.Key(Column.Name);
		Draft.WriteValue(Draft.Objects, Column.Type);
	}
	Draft.Objects.EndObject();
}

void WriteEntry(FJsonText& Json, std::string_view Name, bool bNumbered, uint32 Index, FRandom& Random)
{
	Json.BeginObject();
	Json.Key("name");
	std::string& Text = Json.OpenString();
	if (bNumbered)
		FJsonText::AppendNumber(Text += "NewEnumerator", Index);
	else
		Text += Name;
	Json.CloseString();
	Json.Key("display");
	if (Random.OneIn(4))
		Phrases::WriteTitle(Json, Random);
	else
		Json.String(Name);
	Json.EndObject();
}
}

void WriteDataTable(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	Draft.BeginAssetObject();
	const std::vector<FColumn> Columns = WriteRowStruct(Draft);
	Json.BeginObject("Rows");

	const uint32 NumParts = static_cast<uint32>(Vocabulary::Parts.size());
	FDistinctNumbers Names(Draft.Random, static_cast<uint32>(Vocabulary::Adjectives.size()) * NumParts);
	for (uint32 Left = std::clamp(Draft.Random.HeavyTailed(25 * 256), 1u, MostRows); Left != 0; --Left)
	{
		const uint32 Pair = Names.Next();
		std::string& Text = Json.OpenString();
		Text += Vocabulary::Adjectives[Pair / NumParts];
		Text += Vocabulary::Parts[Pair % NumParts];
		Json.CloseString();
		Text += ':';
		WriteRow(Draft, Columns);
	}
	Json.EndObject();
	Draft.EndPart();
}

void WriteDataAsset(FPackageDraft& Draft)
{
	const FScriptType& Type = Draft.Random.Pick(Draft.Script.TypesFor(EScriptRole::DataAsset));
	Draft.AssetClassPath = Type.Path;
	Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
	Draft.Tags.Field("PrimaryAssetType", Type.Name);
	Draft.BeginAssetObject();
	for (const FScriptProperty& Property : Type.Properties)
	{
		if (Property.bDeprecated || Draft.Random.Chance(64))
			continue;
		Draft.Objects.Key(Property.Name);
		Draft.WriteValue(Draft.Objects, Property.Type);
	}
	Draft.EndPart();
}

void WriteEnum(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	Draft.BeginAssetObject();
	Json.BeginArray("Entries");
	const bool bNumbered = Draft.Random.Chance(128); // the editor numbers enumerators until somebody names them
	FDistinctNumbers Names(Draft.Random, static_cast<uint32>(Vocabulary::Adjectives.size()));
	const uint32 NumEntries = std::min(3 + Draft.Random.HeavyTailed(5 * 256), 60u);
	for (uint32 Index = 0; Index < NumEntries; ++Index)
		WriteEntry(Json, Vocabulary::Adjectives[Names.Next()], bNumbered, Index, Draft.Random);
	Json.EndArray();
	Draft.EndPart();
}

void WriteStruct(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	Draft.BeginAssetObject();
	if (Draft.Random.OneIn(6))
	{
		Json.Key("SuperStruct");
		Draft.WriteScriptPath(Json, Draft.Random.Pick(Draft.Script.TypesFor(EScriptRole::Row)).Path);
	}
	if (Draft.Random.Chance(128))
		Json.Field("Category", Draft.Random.Pick(Vocabulary::Subjects));
	if (Draft.Random.Chance(170))
	{
		Json.BeginObject("MetaData");
		Json.Key("Tooltip");
		Phrases::WriteSentence(Json, Draft.Random);
		Json.EndObject();
	}
	Json.BeginArray("Fields");
	for (const FField& Field : FieldsOf(Draft.Plan, Draft.Package))
	{
		Json.BeginObject();
		Json.Field("name", Field.Name);
		Json.Field("authored", Field.Authored);
		Json.Key("type");
		Draft.WriteType(Json, Field.Type);
		if (Field.bDeprecated)
			Json.Field("deprecated", true);
		Json.EndObject();
	}
	Json.EndArray();
	Draft.EndPart();
}
