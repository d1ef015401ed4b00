#include "Families/MaterialFamily.h"

#include "Engine/Material.h"
#include "Families/FamilyScan.h"
#include "Families/SearchMode.h"

namespace
{
constexpr const char* ParentContainer = "Material/Parent";
constexpr const char* ParameterContainer = "Material/Parameters";

using FListParameters = void (UMaterialInterface::*)(TArray<FMaterialParameterInfo>&) const;

/** Reports the parameters of one kind by name; ReadValue(const FMaterialParameterInfo&) may add the value. */
template <class TReadValue>
void ReadParameters(
	const UMaterialInterface& Material, FListParameters List, const char* Kind, FHitSink& Hits, TReadValue&& ReadValue)
{
	if (Hits.IsFull())
		return;
	TArray<FMaterialParameterInfo> Parameters;
	(Material.*List)(Parameters);
	for (const FMaterialParameterInfo& Parameter : Parameters)
	{
		Hits.Add(Kind, Parameter.Name.ToString(), ParameterContainer);
		ReadValue(Parameter);
		if (Hits.IsFull())
			return;
	}
}

void ReadAllParameters(const UMaterialInterface& Material, FHitSink& Hits)
{
	const auto ReadScalar = [&](const FMaterialParameterInfo& Parameter)
	{
		float Value = 0;
		if (Material.GetScalarParameterValue(Parameter, Value))
			Hits.Add("ScalarValue", FString::SanitizeFloat(Value, 1), ParameterContainer);
	};
	const auto ReadVector = [&](const FMaterialParameterInfo& Parameter)
	{
		FLinearColor Value;
		if (Material.GetVectorParameterValue(Parameter, Value))
			Hits.Add("VectorValue",
				FString::Printf("R=%.3f G=%.3f B=%.3f A=%.3f", static_cast<double>(Value.R), static_cast<double>(Value.G),
					static_cast<double>(Value.B), static_cast<double>(Value.A)),
				ParameterContainer);
	};
	ReadParameters(Material, &UMaterialInterface::GetAllScalarParameterInfo, "ScalarParameter", Hits, ReadScalar);
	ReadParameters(Material, &UMaterialInterface::GetAllVectorParameterInfo, "VectorParameter", Hits, ReadVector);
	ReadParameters(Material, &UMaterialInterface::GetAllTextureParameterInfo, "TextureParameter", Hits,
		[](const FMaterialParameterInfo&) {});
}

void ReadMaterial(const UMaterialInterface& Material, FHitSink& Hits)
{
	if (const UMaterialInterface* Parent = Material.GetParentMaterial())
	{
		Hits.Add("Parent", Parent->GetName(), ParentContainer);
		Hits.Add("ParentPath", Parent->GetPathName(), ParentContainer);
	}
	ReadAllParameters(Material, Hits);
}

void LoadAndRead(const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits)
{
	if (const auto* Function = LoadAssetForReading<UMaterialFunctionInterface>(Asset))
	{
		Result.AssetClass = "MaterialFunction";
		Hits.Add("AssetName", Function->GetName(), "MaterialFunction");
	}
	else if (const auto* Material = LoadAssetForReading<UMaterialInterface>(Asset))
	{
		Result.AssetClass = Material->IsA<UMaterialInstance>() ? "MaterialInstance" : "Material";
		ReadMaterial(*Material, Hits);
	}
}

/** The class text stays empty: which of the family's classes an asset is shows only when it is loaded. */
void ReadName(const FAssetData& Asset, FAssetResult&, FHitSink& Hits)
{
	Hits.Add("AssetName", Asset.AssetName.ToString(), "Material");
}
}

void SearchMaterials(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	const TArray<UClass*> Classes = {
		UMaterial::StaticClass(), UMaterialInstanceConstant::StaticClass(), UMaterialFunctionInterface::StaticClass()};
	ScanByMode(&UOrivaneSettings::MaterialSearchMode,
		{.Names = ReadName, .Contents = LoadAndRead, .ContentsUse = EPackageUse::LoadEach}, Classes, Params, OnDone);
}
