#pragma once

#include "Engine/Material.h"

#include <unordered_map>
#include <vector>

/** What a material and those above it state of one kind of parameters: each name, the topmost material's first, with the nearest
 * material that states it. Kept by materials far down a line, so that those below need not go all the way up again. */
struct FMaterialParameterView
{
	TMap<FName, const UMaterialInterface*> Stating;
	int32 Depth = 0;			// materials above
	uint64 NumDestructions = 0; // when it was made; it is of no use once objects were destroyed since
};

/** The parameters of one kind of a material, with those of its parents. Lives for one question. */
template <class T>
class TMaterialLine
{
public:
	using FStated = TMaterialParameters<T> UMaterialInterface::*;
	using FKept = TSharedPtr<const FMaterialParameterView> UMaterialInterface::*;

	TMaterialLine(const UMaterialInterface& Material, FStated InStated, FKept InKept) : Stated(InStated), Kept(InKept)
	{
		const std::vector<const UMaterialInterface*> Line = Climb(Material);
		for (auto Next = Line.rbegin(); Next != Line.rend(); ++Next)
			Descend(**Next);
	}

	void List(TArray<FMaterialParameterInfo>& Out) const
	{
		if (Above)
		{
			for (const auto& [Name, Stating] : Above->Stating)
				Out.Add({Name, FindBelow(Name, Stating)});
		}
		for (const auto& [Name, Stating] : Below)
		{
			if (!Above || !Above->Stating.Contains(Name))
				Out.Add({Name, Stating});
		}
	}

	/** Null where no material states the parameter. */
	const UMaterialInterface* FindStating(FName Name) const
	{
		const UMaterialInterface* const* const Found = Above ? Above->Stating.Find(Name) : nullptr;
		return FindBelow(Name, Found ? *Found : nullptr);
	}

private:
	static constexpr int32 KeptEvery = 64; // materials; few lines of a real project are as long

	const UMaterialInterface* FindBelow(FName Name, const UMaterialInterface* Otherwise) const
	{
		const UMaterialInterface* const* const Found = Below.Find(Name);
		return Found ? *Found : Otherwise;
	}

	/** The material and those above it, nearest first, up to one whose view was kept, which becomes Above. */
	std::vector<const UMaterialInterface*> Climb(const UMaterialInterface& Material)
	{
		std::vector<const UMaterialInterface*> Line;
		std::unordered_map<const UMaterialInterface*, std::size_t> Places;
		for (const UMaterialInterface* Next = &Material; Next; Next = Next->GetParentMaterial())
		{
			const TSharedPtr<const FMaterialParameterView>& View = Next->*Kept;
			if (View && View->NumDestructions == GetNumDestructions())
			{
				Above = View;
				break;
			}
			const auto [Place, bIsNew] = Places.emplace(Next, Line.size());
			if (!bIsNew)
			{
				CutRing(Line, Place->second);
				break;
			}
			Line.push_back(Next);
		}
		return Line;
	}

	/** Materials that are among their own parents inherit nothing. */
	void CutRing(std::vector<const UMaterialInterface*>& Line, std::size_t First)
	{
		for (std::size_t Place = First; Place < Line.size(); ++Place)
		{
			Above = nullptr;
			Below.Empty();
			Add(*Line[Place]);
			Keep(*Line[Place], 0);
		}
		Above = Line[First]->*Kept;
		Below.Empty();
		Line.resize(First);
	}

	void Descend(const UMaterialInterface& Material)
	{
		const int32 Depth = NumMaterials++ + (Above ? Above->Depth + 1 : 0);
		Add(Material);
		if (Depth % KeptEvery != KeptEvery - 1)
			return;
		Keep(Material, Depth);
		Above = Material.*Kept;
		Below.Empty();
		NumMaterials = 0;
	}

	void Add(const UMaterialInterface& Material)
	{
		for (const auto& [Name, Value] : Material.*Stated)
			Below.Add(Name, &Material);
	}

	void Keep(const UMaterialInterface& Material, int32 Depth)
	{
		auto View = MakeShared<FMaterialParameterView>();
		if (Above)
			View->Stating = Above->Stating;
		for (const auto& [Name, Stating] : Below)
			View->Stating.Add(Name, Stating);
		View->Depth = Depth;
		View->NumDestructions = GetNumDestructions();
		const_cast<UMaterialInterface&>(Material).*Kept = std::move(View);
	}

	const FStated Stated;
	const FKept Kept;
	TSharedPtr<const FMaterialParameterView> Above;
	TMap<FName, const UMaterialInterface*> Below; // what the materials below that state, nearest last
	int32 NumMaterials = 0;						  // below Above
};
