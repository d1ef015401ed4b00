#include "Families/NiagaraFamily.h"

#include "Engine/Niagara.h"
#include "Families/FamilyScan.h"
#include "Families/SearchMode.h"
#include "ReferencedName.h"

namespace
{
constexpr const char* SystemContainer = "Niagara";
constexpr const char* RendererContainer = "Niagara/Renderer";
constexpr const char* UserParameterContainer = "Niagara/UserParameters";

// Handles may share an emitter, so a small file can hold endless renderers; a real system has a few dozen.
constexpr int32 MaxRenderers = 100'000;

void ReadRenderers(const UNiagaraEmitter& Emitter, int32& NumLeft, FHitSink& Hits)
{
	for (const TObjectPtr<UNiagaraRendererProperties>& Slot : Emitter.GetRenderers())
	{
		if (NumLeft-- <= 0)
			return;
		const UNiagaraRendererProperties* Renderer = Slot.GetIfLoaded();
		if (!Renderer)
			continue;
		Hits.Add("RendererName", Renderer->GetName(), RendererContainer);
		Hits.Add("RendererType", Renderer->GetClass()->GetName(), RendererContainer);
		if (Hits.IsFull())
			return;
	}
}

void ReadEmitters(const UNiagaraSystem& System, FHitSink& Hits)
{
	int32 NumRenderersLeft = MaxRenderers;
	for (const FNiagaraEmitterHandle& Handle : System.GetEmitterHandles())
	{
		Hits.Add("EmitterName", Handle.GetName().ToString(), "Niagara/Emitter");
		const UNiagaraEmitter* Emitter = Handle.GetEmitterData();
		if (!Emitter)
			continue;
		ReadRenderers(*Emitter, NumRenderersLeft, Hits);
		if (Hits.IsFull())
			return;
	}
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

void SearchNiagaraSystems(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanByMode(&UOrivaneSettings::NiagaraSearchMode,
		{.Names = ReadName, .Contents = ReadIfInMemory, .ContentsUse = EPackageUse::None}, {UNiagaraSystem::StaticClass()},
		Params, OnDone);
}
