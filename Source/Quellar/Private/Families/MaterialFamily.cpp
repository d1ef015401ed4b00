#include "Core/Base/HashMap.h"
#include "Engine/Material.h"
#include "Families/FamilyScan.h"
#include "Families/SearchMode.h"

#include <functional>

namespace
{
constexpr const char* ParentContainer = "Material/Parent";
constexpr const char* ParameterContainer = "Material/Parameters";

/** The text of a parameter's value; none where it cannot be read. */
using FReadValue = TOptional<FString> (*)(const UMaterialInterface& Material, const FMaterialParameterInfo& Parameter);

TOptional<FString> ReadScalar(const UMaterialInterface& Material, const FMaterialParameterInfo& Parameter)
{
	float Value = 0;
	if (!Material.GetScalarParameterValue(Parameter, Value))
		return std::nullopt;
	return FString::SanitizeFloat(Value, 1);
}

TOptional<FString> ReadVector(const UMaterialInterface& Material, const FMaterialParameterInfo& Parameter)
{
	FLinearColor Value;
	if (!Material.GetVectorParameterValue(Parameter, Value))
		return std::nullopt;
	return FString::Printf("R=%.3f G=%.3f B=%.3f A=%.3f", static_cast<double>(Value.R), static_cast<double>(Value.G),
		static_cast<double>(Value.B), static_cast<double>(Value.A));
}

TOptional<FString> ReadNothing(const UMaterialInterface&, const FMaterialParameterInfo&)
{
	return std::nullopt;
}

struct FParameterKind
{
	const char* Name;
	const char* Value;
	FMaterialParameterLine (UMaterialInterface::*GetLine)() const;
	FReadValue ReadValue;
};
constexpr FParameterKind ParameterKinds[] = {
	{"ScalarParameter", "ScalarValue", &UMaterialInterface::GetScalarParameterLine, ReadScalar},
	{"VectorParameter", "VectorValue", &UMaterialInterface::GetVectorParameterLine, ReadVector},
	{"TextureParameter", "", &UMaterialInterface::GetTextureParameterLine, ReadNothing},
};

/**
 * Reads the materials of one search. Of the parameters that many materials share, those that match are looked for once: in a long
 * line of instances each has the parameters of all above it.
 */
class FMaterialReader
{
public:
	void Read(const UMaterialInterface& Material, FHitSink& Hits)
	{
		if (const UMaterialInterface* Parent = Material.GetParentMaterial())
		{
			Hits.Add("Parent", Parent->GetName(), ParentContainer);
			Hits.Add("ParentPath", Parent->GetPathName(), ParentContainer);
		}
		for (const FParameterKind& Kind : ParameterKinds)
			ReadParameters(Kind, Material, Hits);
	}

private:
	struct FMatching
	{
		TSharedPtr<const FMaterialParameterView> View; // keeps its address
		TArray<int32> Places;						   // ascending
	};

	void ReadParameters(const FParameterKind& Kind, const UMaterialInterface& Material, FHitSink& Hits)
	{
		if (Hits.IsFull())
			return;
		for (const FMaterialParameterInfo& Parameter : ListCandidates(Kind, Material, Hits))
		{
			Hits.Add(Kind.Name, Parameter.Name.ToString(), ParameterContainer);
			if (const TOptional<FString> Value = Kind.ReadValue(Material, Parameter))
				Hits.Add(Kind.Value, *Value, ParameterContainer);
			if (Hits.IsFull())
				return;
		}
	}

	/** All parameters that may match, in order. */
	TArray<FMaterialParameterInfo> ListCandidates(
		const FParameterKind& Kind, const UMaterialInterface& Material, const FHitSink& Hits)
	{
		const FMaterialParameterLine Line = (Material.*Kind.GetLine)();
		TArray<int32> Places = Line.Above ? FindMatching(Kind, Line.Above, Material, Hits) : TArray<int32>();
		TArray<FMaterialParameterInfo> Added;
		for (const auto& [Name, Stating] : Line.Below)
		{
			if (const int32* Place = Line.Above ? Line.Above->Places.Find(Name) : nullptr)
				Places.Add(*Place);
			else
				Added.Add({Name, Stating});
		}
		Places.Sort(std::less<>());
		TArray<FMaterialParameterInfo> Candidates;
		for (int32 Index = 0; Index < Places.Num(); ++Index)
		{
			if (Index > 0 && Places[Index] == Places[Index - 1])
				continue;
			const FMaterialParameterInfo& Parameter = Line.Above->Parameters[Places[Index]];
			const UMaterialInterface* const* const Nearer = Line.Below.Find(Parameter.Name);
			Candidates.Add({Parameter.Name, Nearer ? *Nearer : Parameter.Stating});
		}
		Candidates.Append(std::move(Added));
		return Candidates;
	}

	/** Places of the parameters whose name or value matches. */
	const TArray<int32>& FindMatching(const FParameterKind& Kind, const TSharedPtr<const FMaterialParameterView>& View,
		const UMaterialInterface& Material, const FHitSink& Hits)
	{
		if (FNotedTexts* const Noted = Hits.GetNoted())
		{
			NoteShared(Kind, View, Material, *Noted);
			return NoneMatch;
		}
		const auto [Found, bIsNew] = Matching.insert({View.get(), FMatching{View, {}}});
		TArray<int32>& Places = Found.value().Places;
		for (int32 Place = 0; bIsNew && Place < View->Parameters.Num(); ++Place)
		{
			const FMaterialParameterInfo& Parameter = View->Parameters[Place];
			const TOptional<FString> Value = Kind.ReadValue(Material, Parameter);
			if (Hits.Matches(Parameter.Name.ToString()) || (Value && Hits.Matches(*Value)))
				Places.Add(Place);
		}
		return Places;
	}

	static void NoteShared(const FParameterKind& Kind, const TSharedPtr<const FMaterialParameterView>& View,
		const UMaterialInterface& Material, FNotedTexts& Noted)
	{
		FNotedTexts::FShared& Shared = Noted.Shared.emplace_back();
		Shared.Key = View;
		if (Noted.For->KnowsShared(View.get()))
			return;
		for (const FMaterialParameterInfo& Parameter : View->Parameters)
		{
			FNotedTexts::Append(Shared.Texts, Parameter.Name.ToString());
			if (const TOptional<FString> Value = Kind.ReadValue(Material, Parameter))
				FNotedTexts::Append(Shared.Texts, *Value);
		}
	}

	THashMap<const FMaterialParameterView*, FMatching> Matching;
	const TArray<int32> NoneMatch = {};
};

void LoadAndRead(const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits, FMaterialReader& Reader)
{
	if (const auto* Function = LoadAssetForReading<UMaterialFunctionInterface>(Asset))
	{
		Result.AssetClass = "MaterialFunction";
		Hits.Add("AssetName", Function->GetName(), "MaterialFunction");
	}
	else if (const auto* Material = LoadAssetForReading<UMaterialInterface>(Asset))
	{
		Result.AssetClass = Material->IsA<UMaterialInstance>() ? "MaterialInstance" : "Material";
		Reader.Read(*Material, Hits);
	}
}

/** The class text stays empty: which of the family's classes an asset is shows only when it is loaded. */
void ReadName(const FAssetData& Asset, FAssetResult&, FHitSink& Hits)
{
	Hits.Add("AssetName", Asset.AssetName.ToString(), "Material");
}
}

/**
 * Materials, material instances and material functions. By the settings' MaterialSearchMode it matches asset names from the
 * registry, or loads every one of them for parents, parameters and values; a material's own name is not a hit then.
 */
void SearchMaterials(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	const TArray<UClass*> Classes = {
		UMaterial::StaticClass(), UMaterialInstanceConstant::StaticClass(), UMaterialFunctionInterface::StaticClass()};
	FMaterialReader Reader;
	const auto ReadContents = [&Reader](const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits)
	{ LoadAndRead(Asset, Result, Hits, Reader); };
	ScanByMode("Material", &UOrivaneSettings::MaterialSearchMode,
		{.Names = ReadName, .Contents = ReadContents, .ContentsOrigin = ETextOrigin::Package}, Classes, Params, OnDone);
}
