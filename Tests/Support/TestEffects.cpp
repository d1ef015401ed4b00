#include "Support/TestEffects.h"

namespace
{
std::string Quote(const std::string& Text)
{
	return '"' + Text + '"';
}

void AddTo(std::string& List, const std::string& Element)
{
	List += (List.empty() ? "" : ", ") + Element;
}

std::string Object(const std::string& Path, const std::string& Class, const std::string& Properties)
{
	return R"({"path": ")" + Path + R"(", "class": ")" + Class + R"(", "properties": {)" + Properties + "}}";
}
}

FTestMaterial& FTestMaterial::Parent(const std::string& ParentPackage)
{
	ParentPath = Quote(ParentPackage + "." + ParentPackage.substr(ParentPackage.rfind('/') + 1));
	return *this;
}

FTestMaterial& FTestMaterial::Add(std::string& List, const std::string& Name, const std::string& Value)
{
	AddTo(List, R"({"Name": ")" + Name + R"(", "Value": )" + Value + "}");
	return *this;
}

std::string FTestMaterial::GetObjects() const
{
	std::string Properties = R"("ScalarParameters": [)" + Scalars + R"(], "VectorParameters": [)" + Vectors +
		R"(], "TextureParameters": [)" + Textures + "]";
	if (Class.find("MaterialInstance") != std::string::npos)
		Properties += R"(, "Parent": )" + ParentPath;
	return Object(Package.substr(Package.rfind('/') + 1), Class, Properties);
}

FTestNiagaraSystem& FTestNiagaraSystem::EffectType(const std::string& Path)
{
	EffectTypePath = Quote(Path);
	return *this;
}

FTestNiagaraSystem& FTestNiagaraSystem::Emitter(const std::string& Name)
{
	CloseEmitter();
	LastEmitter = GetName() + ":" + Name;
	return Handle(Name, Quote(LastEmitter));
}

FTestNiagaraSystem& FTestNiagaraSystem::Handle(const std::string& Name, const std::string& EmitterJson)
{
	AddTo(Handles, R"({"Name": ")" + Name + R"(", "Emitter": )" + EmitterJson + "}");
	return *this;
}

FTestNiagaraSystem& FTestNiagaraSystem::Renderer(const std::string& Name, const std::string& RendererClass)
{
	const std::string Path = LastEmitter + "." + Name;
	AddTo(Slots, RendererClass.empty() ? "null" : Quote(Path));
	if (!RendererClass.empty())
		AddTo(Parts, Object(Path, RendererClass, ""));
	return *this;
}

FTestNiagaraSystem& FTestNiagaraSystem::UserParameter(const std::string& Name, const std::string& Type)
{
	AddTo(UserParameters, R"({"Name": ")" + Name + R"(", "Type": )" + (Type.empty() ? "null" : Quote(Type)) + "}");
	return *this;
}

void FTestNiagaraSystem::CloseEmitter()
{
	if (!LastEmitter.empty())
		AddTo(Parts, Object(LastEmitter, "/Script/Engine.NiagaraEmitter", R"("Renderers": [)" + Slots + "]"));
	LastEmitter.clear();
	Slots.clear();
}

std::string FTestNiagaraSystem::GetObjects() const
{
	FTestNiagaraSystem Whole = *this;
	Whole.CloseEmitter();
	std::string Objects = Object(GetName(), Class,
		R"("EffectType": )" + EffectTypePath + R"(, "EmitterHandles": [)" + Handles + R"(], "UserParameters": [)" +
			UserParameters + "]");
	if (!Whole.Parts.empty())
		AddTo(Objects, Whole.Parts);
	return Objects;
}
