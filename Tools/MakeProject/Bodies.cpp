#include "Bodies.h"

namespace
{
constexpr std::string_view TextureFormats[] = {"BC1", "BC3", "BC5", "BC7", "G8"};

void WriteSizeTag(FPackageDraft& Draft)
{
	const uint32 Size = 64u << Draft.Random.Below(7);
	std::string& Text = Draft.Tags.OpenString();
	FJsonText::AppendNumber(Text, Size);
	Text += 'x';
	FJsonText::AppendNumber(Text, Draft.Random.Chance(200) ? Size : Size / 2);
	Draft.Tags.CloseString();
}

void WriteCountTag(FPackageDraft& Draft, std::string_view Name, uint32 Mean)
{
	Draft.Tags.Key(Name);
	FJsonText::AppendNumber(Draft.Tags.OpenString(), Draft.Random.HeavyTailed(Mean * 256));
	Draft.Tags.CloseString();
}

/** What the registry tells about content that is made outside of the editor. */
void WritePlainTags(FPackageDraft& Draft)
{
	switch (Draft.Class)
	{
		case EAssetClass::StaticMesh:
		case EAssetClass::SkeletalMesh:
			WriteCountTag(Draft, "Triangles", 6000);
			WriteCountTag(Draft, "Vertices", 4000);
			break;
		case EAssetClass::Texture2D:
			Draft.Tags.Key("Dimensions");
			WriteSizeTag(Draft);
			Draft.Tags.Field("Format", Draft.Random.Pick(TextureFormats));
			break;
		case EAssetClass::SoundWave:
			WriteCountTag(Draft, "Milliseconds", 2500);
			break;
		case EAssetClass::AnimSequence:
			WriteCountTag(Draft, "Frames", 60);
			break;
		default:
			break;
	}
}

void WritePlainAsset(FPackageDraft& Draft)
{
	WritePlainTags(Draft);
	Draft.BeginAssetObject();
	Draft.EndPart();
}
}

void WriteBody(FPackageDraft& Draft)
{
	switch (Draft.Class)
	{
		case EAssetClass::Blueprint:
		case EAssetClass::WidgetBlueprint:
		case EAssetClass::AnimBlueprint:
			return WriteBlueprint(Draft);
		case EAssetClass::BehaviorTree:
			return WriteBehaviorTree(Draft);
		case EAssetClass::BlackboardData:
			return WriteBlackboard(Draft);
		case EAssetClass::EnvQuery:
			return WriteEnvQuery(Draft);
		case EAssetClass::DataTable:
			return WriteDataTable(Draft);
		case EAssetClass::DataAsset:
			return WriteDataAsset(Draft);
		case EAssetClass::UserDefinedEnum:
			return WriteEnum(Draft);
		case EAssetClass::UserDefinedStruct:
			return WriteStruct(Draft);
		case EAssetClass::Material:
			return WriteMaterial(Draft);
		case EAssetClass::MaterialInstanceConstant:
			return WriteMaterialInstance(Draft);
		case EAssetClass::NiagaraSystem:
			return WriteNiagaraSystem(Draft);
		default:
			return WritePlainAsset(Draft);
	}
}
