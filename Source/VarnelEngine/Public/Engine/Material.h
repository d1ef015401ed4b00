#pragma once

#include "Core/Base/Map.h"
#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** Colour in linear light; 0 to 1, brighter ones above. */
struct FLinearColor
{
	static UScriptStruct* StaticStruct();

	float R = 0;
	float G = 0;
	float B = 0;
	float A = 1;
};

class UMaterialInterface;

/** Name of a parameter, and the material that states its value. */
struct FMaterialParameterInfo
{
	FName Name;
	/** The material whose value counts; null before the first look. Good until objects are unloaded. */
	const UMaterialInterface* Stating = nullptr;
};

/** All parameters of one kind of a material in order. Kept by materials far down a line of parents: those below need not go all
 * the way up again, and callers that look at many materials need not look at these again. */
struct FMaterialParameterView
{
	TArray<FMaterialParameterInfo> Parameters; // each with what states it
	TMap<FName, int32> Places;				   // of the parameters
	int32 Depth = 0;						   // materials above
	uint64 NumDestructions = 0;				   // when it was made, see GetNumDestructions: of no use once that has risen
};

/** The parameters of one kind of a material, in two parts. Good until objects are unloaded. */
struct FMaterialParameterLine
{
	TSharedPtr<const FMaterialParameterView> Above; // those of a material above it, or of itself; may be null
	/** What is stated below that one: by name, what states it. A name that Above has keeps its place there, the others follow. */
	TMap<FName, const UMaterialInterface*> Below;
};

/** Parameters as one material states them, in file order; a name that is repeated keeps its first value. No value: the parameter
 * exists and cannot be read, also where a parent has a value for it. */
template <class T>
using TMaterialParameters = TMap<FName, TOptional<T>>;

/**
 * What a surface can be drawn with: a material, or an instance that overrides parameters of a parent. Questions about parameters
 * load all parents; materials that are among their own parents inherit nothing. Game thread.
 */
class UMaterialInterface : public UObject
{
public:
	static UClass* StaticClass();

	/** The material that this one overrides, or null. */
	virtual const UMaterialInterface* GetParentMaterial() const { return nullptr; }

	FMaterialParameterLine GetScalarParameterLine() const;
	FMaterialParameterLine GetVectorParameterLine() const;
	FMaterialParameterLine GetTextureParameterLine() const;
	/** Appends each parameter once: those of the topmost parent first, then what each material below adds. */
	void GetAllScalarParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const;
	void GetAllVectorParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const;
	void GetAllTextureParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const;
	/** The value from the nearest material that states the parameter. False where none does, or where that one has no value. */
	bool GetScalarParameterValue(const FMaterialParameterInfo& Parameter, float& Out) const;
	bool GetVectorParameterValue(const FMaterialParameterInfo& Parameter, FLinearColor& Out) const;
	bool GetTextureParameterValue(const FMaterialParameterInfo& Parameter, FObjectPtr& Out) const;

	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;

private:
	template <class T>
	TOptional<T> FindValue(const FMaterialParameterInfo& Parameter, TMaterialParameters<T> UMaterialInterface::*Stated,
		FMaterialParameterLine (UMaterialInterface::*GetLine)() const) const;

	TMaterialParameters<float> ScalarParameters;
	TMaterialParameters<FLinearColor> VectorParameters;
	TMaterialParameters<FObjectPtr> TextureParameters;
	// Of some materials, once asked for.
	TSharedPtr<const FMaterialParameterView> ScalarView;
	TSharedPtr<const FMaterialParameterView> VectorView;
	TSharedPtr<const FMaterialParameterView> TextureView;
};

/** A material of its own, without a parent. */
class UMaterial : public UMaterialInterface
{
public:
	static UClass* StaticClass();
};

/** Material that overrides parameters of its parent, which may be null. */
class UMaterialInstance : public UMaterialInterface
{
public:
	static UClass* StaticClass();

	const UMaterialInterface* GetParentMaterial() const override { return Parent; }

	TObjectPtr<UMaterialInterface> Parent;
};

/** Instance whose parameters are fixed in its file. */
class UMaterialInstanceConstant : public UMaterialInstance
{
public:
	static UClass* StaticClass();
};

/** Piece of a material that others use. */
class UMaterialFunctionInterface : public UObject
{
public:
	static UClass* StaticClass();
};
