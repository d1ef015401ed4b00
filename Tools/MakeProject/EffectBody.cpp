#include "Bodies.h"
#include "Vocabulary.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr std::string_view ParameterTypes[] = {
	"/Script/Engine.Texture2D", "/Script/Engine.StaticMesh", "/Script/Generated.StatBlock", "", ""};

void WriteHandles(FPackageDraft& Draft, uint32 NumEmitters)
{
	FJsonText& Json = Draft.Objects;
	Json.BeginArray("EmitterHandles");
	FDistinctNumbers Names(Draft.Random, static_cast<uint32>(Vocabulary::Parts.size()));
	for (uint32 Emitter = 0; Emitter < NumEmitters; ++Emitter)
	{
		Json.BeginObject();
		Json.Field("Name", Vocabulary::Parts[Names.Next()]);
		Json.Key("Emitter");
		Draft.WritePartPath(Json, "Emitter_" + std::to_string(Emitter));
		Json.EndObject();
	}
	if (Draft.Random.OneIn(20)) // a handle whose emitter was deleted
	{
		Json.BeginObject();
		Json.Field("Name", Vocabulary::Parts[Names.Next()]);
		Json.Key("Emitter");
		Json.Raw("null");
		Json.EndObject();
	}
	Json.EndArray();
}

void WriteUserParameters(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	Json.BeginArray("UserParameters");
	FDistinctNumbers Names(Draft.Random, static_cast<uint32>(Vocabulary::Quantities.size()));
	for (uint32 Left = Draft.Random.Doublings(140, 8); Left != 0; --Left)
	{
		Json.BeginObject();
		Json.Key("Name");
		std::string& Text = Json.OpenString();
		Text += "User.";
		Text += Vocabulary::Quantities[Names.Next()];
		Json.CloseString();
		Json.Key("Type");
		const std::string_view Type = Draft.Random.Pick(ParameterTypes);
		if (Type.empty())
			Json.Raw("null");
		else if (Type.starts_with("/Script/Generated"))
			Draft.WriteScriptPath(Json, Type);
		else
			Json.String(Type);
		Json.EndObject();
	}
	Json.EndArray();
}

void WriteEmitter(FPackageDraft& Draft, const std::string& Emitter)
{
	FJsonText& Json = Draft.Objects;
	const uint32 NumRenderers = 1 + Draft.Random.Doublings(70, 3);
	Draft.BeginPart(Emitter, "/Script/Engine.NiagaraEmitter");
	Json.BeginArray("Renderers");
	for (uint32 Renderer = 0; Renderer < NumRenderers; ++Renderer)
		Draft.WritePartPath(Json, Emitter + ".Renderer_" + std::to_string(Renderer));
	if (Draft.Random.OneIn(30))
		Json.Raw("null");
	Json.EndArray();
	Draft.EndPart();

	Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
	for (uint32 Renderer = 0; Renderer < NumRenderers; ++Renderer)
	{
		const FScriptType& Type = Draft.Random.Pick(Draft.Script.TypesFor(EScriptRole::EffectRenderer));
		Draft.BeginPart(Emitter + ".Renderer_" + std::to_string(Renderer), Type.Path);
		Draft.EndPart();
	}
}
}

void WriteNiagaraSystem(FPackageDraft& Draft)
{
	const uint32 NumEmitters = 1 + Draft.Random.Doublings(150, 7);
	Draft.BeginAssetObject();
	if (Draft.Random.OneIn(3))
	{
		Draft.Objects.Key("EffectType");
		Draft.WriteAnyReference(Draft.Objects, EAssetClass::DataAsset, ELinkKind::Hard);
	}
	WriteHandles(Draft, NumEmitters);
	WriteUserParameters(Draft);
	Draft.EndPart();

	for (uint32 Emitter = 0; Emitter < NumEmitters; ++Emitter)
		WriteEmitter(Draft, "Emitter_" + std::to_string(Emitter));
}
