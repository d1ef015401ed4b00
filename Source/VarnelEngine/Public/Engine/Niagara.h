#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** How particles are drawn; projects declare subclasses. */
class UNiagaraRendererProperties : public UObject
{
public:
	static UClass* StaticClass();
};

/** Source of particles, with what draws them. */
class UNiagaraEmitter : public UObject
{
public:
	static UClass* StaticClass();

	/** With empty slots. */
	const TArray<TObjectPtr<UNiagaraRendererProperties>>& GetRenderers() const { return Renderers; }

	TArray<TObjectPtr<UNiagaraRendererProperties>> Renderers;
};

/** Place of an emitter in a system, by name. */
struct FNiagaraEmitterHandle
{
	static UScriptStruct* StaticStruct();

	FName GetName() const { return Name; }
	/** Null where the handle has no emitter data, and while that lies in a package that is not in memory: loads nothing. */
	UNiagaraEmitter* GetEmitterData() const { return Emitter.GetIfLoaded(); }

	FName Name;
	TObjectPtr<UNiagaraEmitter> Emitter;
};

/** A parameter that is set from outside the system. */
struct FNiagaraUserParameter
{
	static UScriptStruct* StaticStruct();

	FName GetName() const { return Name; }

	FName Name;
	TObjectPtr<UStruct> Type; // class or structure; null for plain numbers and the like
};

/** Particle effect. A user parameter that is repeated is listed each time, and a warning. */
class UNiagaraSystem : public UObject
{
public:
	static UClass* StaticClass();

	/** Null where the system has none. Loads its package if need be. Kept for callers. */
	UObject* GetEffectType() const { return EffectType; }
	const TArray<FNiagaraEmitterHandle>& GetEmitterHandles() const { return EmitterHandles; }
	const TArray<FNiagaraUserParameter>& GetUserParameters() const { return UserParameters; }

	void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader) override;

	TObjectPtr<UObject> EffectType;
	TArray<FNiagaraEmitterHandle> EmitterHandles;
	TArray<FNiagaraUserParameter> UserParameters;
};
