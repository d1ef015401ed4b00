#pragma once

#include <string>

/** A material, or an instance of one where it has a parent, under construction. Values are JSON. */
class FTestMaterial
{
public:
	FTestMaterial(std::string InPackage, std::string InClass) : Package(std::move(InPackage)), Class(std::move(InClass)) {}

	/** By package, "/Game/M_Base". */
	FTestMaterial& Parent(const std::string& ParentPackage);
	FTestMaterial& Scalar(const std::string& Name, const std::string& Value) { return Add(Scalars, Name, Value); }
	FTestMaterial& Vector(const std::string& Name, const std::string& Value) { return Add(Vectors, Name, Value); }
	FTestMaterial& Texture(const std::string& Name, const std::string& Value = "null") { return Add(Textures, Name, Value); }

	const std::string& GetPackage() const { return Package; }
	const std::string& GetClass() const { return Class; }
	/** The list "objects" of its package, without brackets. */
	std::string GetObjects() const;

private:
	FTestMaterial& Add(std::string& List, const std::string& Name, const std::string& Value);

	std::string Package;
	std::string Class;
	std::string ParentPath = "null";
	std::string Scalars;
	std::string Vectors;
	std::string Textures;
};

/** A particle system under construction; its emitters and renderers lie in its package. */
class FTestNiagaraSystem
{
public:
	explicit FTestNiagaraSystem(std::string InPackage) : Package(std::move(InPackage)) {}

	/** An object path. */
	FTestNiagaraSystem& EffectType(const std::string& Path);
	FTestNiagaraSystem& Emitter(const std::string& Name);
	/** A handle to an emitter by JSON: null, or a path in quotes. */
	FTestNiagaraSystem& Handle(const std::string& Name, const std::string& EmitterJson);
	/** A renderer of the last emitter, of a class path; "" for an empty slot. */
	FTestNiagaraSystem& Renderer(const std::string& Name, const std::string& Class);
	/** Type is the path of a class or structure, "" for none. */
	FTestNiagaraSystem& UserParameter(const std::string& Name, const std::string& Type = "");

	const std::string& GetPackage() const { return Package; }
	const std::string& GetClass() const { return Class; }
	std::string GetObjects() const;

private:
	void CloseEmitter();
	std::string GetName() const { return Package.substr(Package.rfind('/') + 1); }

	std::string Package;
	std::string Class = "/Script/Engine.NiagaraSystem";
	std::string EffectTypePath = "null";
	std::string Handles;
	std::string UserParameters;
	std::string LastEmitter;
	std::string Slots; // of the last emitter
	std::string Parts; // emitters and renderers
};
