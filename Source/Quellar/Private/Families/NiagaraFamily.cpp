#include "Assets/ReferencedName.h"
#include "Core/Base/HashMap.h"
#include "Engine/Niagara.h"
#include "Families/FamilyScan.h"
#include "Families/SearchMode.h"

namespace
{
constexpr const char* SystemContainer = "Niagara";
constexpr const char* RendererContainer = "Niagara/Renderer";
constexpr const char* UserParameterContainer = "Niagara/UserParameters";

enum class EReadAs : uint8
{
	FirstTime, // ends once the hit cap is reached
	Repeats,   // of what was read to its end
};

void ReadRenderers(const UNiagaraEmitter& Emitter, EReadAs How, int64 Times, FHitSink& Hits)
{
	for (const TObjectPtr<UNiagaraRendererProperties>& Slot : Emitter.GetRenderers())
	{
		const UNiagaraRendererProperties* Renderer = Slot.GetIfLoaded();
		if (!Renderer)
			continue;
		Hits.Add("RendererName", Renderer->GetName(), RendererContainer, Times);
		Hits.Add("RendererType", Renderer->GetClass()->GetName(), RendererContainer, Times);
		if (How == EReadAs::FirstTime && Hits.IsFull())
			return;
	}
}

/** Handles may share an emitter, so that a small file can hold endless renderers: they are read once, and then counted. */
void ReadEmitters(const UNiagaraSystem& System, FHitSink& Hits)
{
	THashMap<const UNiagaraEmitter*, int64> NumRepeats;
	for (const FNiagaraEmitterHandle& Handle : System.GetEmitterHandles())
	{
		Hits.Add("EmitterName", Handle.GetName().ToString(), "Niagara/Emitter");
		const UNiagaraEmitter* Emitter = Handle.GetEmitterData();
		if (!Emitter)
			continue;
		const auto [Known, bIsNew] = NumRepeats.insert({Emitter, 0});
		if (bIsNew || Hits.IsFull())
			ReadRenderers(*Emitter, EReadAs::FirstTime, 1, Hits);
		else
			++Known.value();
		if (Hits.IsFull())
			break;
	}
	for (const auto& [Emitter, Times] : NumRepeats)
		ReadRenderers(*Emitter, EReadAs::Repeats, Times, Hits);
}

void ReadUserParameters(const UNiagaraSystem& System, FHitSink& Hits)
{
	for (const FNiagaraUserParameter& Parameter : System.GetUserParameters())
	{
		const FName Type = FindReferencedName(Parameter.Type, System, *UStruct::StaticClass());
		Hits.Add("UserParamName", Parameter.GetName().ToString(), UserParameterContainer);
		Hits.Add("UserParamType", Type.IsNone() ? FString("Invalid") : Type.ToString(), UserParameterContainer);
		if (Hits.IsFull())
			return;
	}
}

void ReadName(const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits)
{
	Result.AssetClass = "NiagaraSystem";
	Hits.Add("AssetName", Asset.AssetName.ToString(), SystemContainer);
}

void ReadIfInMemory(const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits)
{
	if (!ResolveAssetObject(Asset, ELoad::Never))
		return;
	const auto* System = LoadAssetForReading<UNiagaraSystem>(Asset); // loads nothing: it is there
	if (!System)
		return;
	if (const FName EffectType = FindReferencedName(System->EffectType, *System, *UObject::StaticClass()); !EffectType.IsNone())
		Hits.Add("EffectType", EffectType.ToString(), SystemContainer);
	ReadEmitters(*System, Hits);
	ReadUserParameters(*System, Hits);
	Result.AssetClass = "NiagaraSystem";
	if (!Hits.HasHits())
		ReadName(Asset, Result, Hits);
}
}

/**
 * Particle systems. By the settings' NiagaraSearchMode it matches asset names from the registry, or reads effect types, emitters,
 * renderers and user parameters of the systems that are in memory. Loads nothing in either mode.
 */
void SearchNiagaraSystems(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanByMode("NiagaraSystem", &UOrivaneSettings::NiagaraSearchMode,
		{.Names = ReadName, .Contents = ReadIfInMemory, .ContentsOrigin = ETextOrigin::Unkept}, {UNiagaraSystem::StaticClass()},
		Params, OnDone);
}
