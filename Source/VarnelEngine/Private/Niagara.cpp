#include "Engine/Niagara.h"

#include "CoreObject/NativeClass.h"
#include "CoreObject/PropertyReader.h"

namespace
{
/** None where nothing is referred to, or what is in memory shows that there is no such object. */
template <class T>
FName GetNameWithoutLoading(const TObjectPtr<T>& Reference)
{
	if (const T* const Object = Reference.GetIfLoaded())
		return Object->GetFName();
	const UPackage* const Package = FindPackage(Reference.GetPath().Asset.PackageName);
	return Package && Package->IsFullyLoaded() ? FName() : Reference.GetFName();
}
}

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

FName FNiagaraUserParameter::GetTypeName() const
{
	return GetNameWithoutLoading(Type);
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

FName UNiagaraSystem::GetEffectTypeName() const
{
	return GetNameWithoutLoading(EffectType);
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
