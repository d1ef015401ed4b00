#include "Engine/Niagara.h"

#include "Core/Base/Map.h"
#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"

UClass* UNiagaraRendererProperties::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UNiagaraRendererProperties>("/Script/Engine.NiagaraRendererProperties", UObject::StaticClass()).Build();
	return Class;
}

UClass* UNiagaraEmitter::StaticClass()
{
	static UClass* const Class = TClassBuilder<UNiagaraEmitter>("/Script/Engine.NiagaraEmitter", UObject::StaticClass())
									 .Member("Renderers", &UNiagaraEmitter::Renderers)
									 .Build();
	return Class;
}

UScriptStruct* FNiagaraEmitterHandle::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FNiagaraEmitterHandle>("/Script/Engine.NiagaraEmitterHandle")
											 .Member("Name", &FNiagaraEmitterHandle::Name)
											 .Member("Emitter", &FNiagaraEmitterHandle::Emitter)
											 .Build();
	return Struct;
}

UScriptStruct* FNiagaraUserParameter::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FNiagaraUserParameter>("/Script/Engine.NiagaraUserParameter")
											 .Member("Name", &FNiagaraUserParameter::Name)
											 .Member("Type", &FNiagaraUserParameter::Type)
											 .Build();
	return Struct;
}

UClass* UNiagaraSystem::StaticClass()
{
	static UClass* const Class = TClassBuilder<UNiagaraSystem>("/Script/Engine.NiagaraSystem", UObject::StaticClass())
									 .Member("EffectType", &UNiagaraSystem::EffectType)
									 .Member("EmitterHandles", &UNiagaraSystem::EmitterHandles)
									 .Member("UserParameters", &UNiagaraSystem::UserParameters)
									 .Build();
	return Class;
}

void UNiagaraSystem::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	if (!Reader.HasListener())
		return;
	TSet<FName> Names;
	for (const FJsonRef Parameter : Json.Find("UserParameters"))
		if (const FJsonRef Name = Parameter.Find("Name"); Name.IsString() && !Names.Add(FName(Name.Text())))
			Reader.Report(Name, EDiagnosticSeverity::Warning, "repeated-parameter",
				FString("the system has a user parameter '") + Name.Text() + "' already");
}
