#pragma once

#include "Engine/Material.h"

#include <unordered_map>
#include <vector>

/** Goes from a material up its parents and gathers the parameters of one kind. Lives for one question. */
template <class T>
class TMaterialLineReader
{
public:
	using FStated = TMaterialParameters<T> UMaterialInterface::*;
	using FKept = TSharedPtr<const FMaterialParameterView> UMaterialInterface::*;

	TMaterialLineReader(FStated InStated, FKept InKept) : Stated(InStated), Kept(InKept) {}

	FMaterialParameterLine Read(const UMaterialInterface& Material)
	{
		const std::vector<const UMaterialInterface*> Line = Climb(Material);
		for (auto Next = Line.rbegin(); Next != Line.rend(); ++Next)
			Descend(**Next);
		return std::move(Found);
	}

private:
	static constexpr int32 KeptEvery = 64; // materials; few lines of a real project are as long

	/** The material and those above it, nearest first, up to one whose view was kept, with which the line begins. */
	std::vector<const UMaterialInterface*> Climb(const UMaterialInterface& Material)
	{
		std::vector<const UMaterialInterface*> Line;
		std::unordered_map<const UMaterialInterface*, std::size_t> Places;
		for (const UMaterialInterface* Next = &Material; Next; Next = Next->GetParentMaterial())
		{
			const TSharedPtr<const FMaterialParameterView>& View = Next->*Kept;
			if (View && View->NumDestructions == GetNumDestructions())
			{
				Found.Above = View;
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
			Found = {};
			Add(*Line[Place]);
			Keep(*Line[Place], 0);
		}
		Found = {.Above = Line[First]->*Kept, .Below = {}};
		Line.resize(First);
	}

	void Descend(const UMaterialInterface& Material)
	{
		const int32 Depth = NumBelow++ + (Found.Above ? Found.Above->Depth + 1 : 0);
		Add(Material);
		if (Depth % KeptEvery != KeptEvery - 1)
			return;
		Keep(Material, Depth);
		Found = {.Above = Material.*Kept, .Below = {}};
		NumBelow = 0;
	}

	void Add(const UMaterialInterface& Material)
	{
		for (const auto& [Name, Value] : Material.*Stated)
			Found.Below.Add(Name, &Material);
	}

	void Keep(const UMaterialInterface& Material, int32 Depth) const
	{
		auto View = MakeShared<FMaterialParameterView>();
		if (Found.Above)
			*View = *Found.Above;
		for (const auto& [Name, Stating] : Found.Below)
		{
			if (const int32* const Place = View->Places.Find(Name))
			{
				View->Parameters[*Place].Stating = Stating;
				continue;
			}
			View->Places.Add(Name, View->Parameters.Num());
			View->Parameters.Add({Name, Stating});
		}
		View->Depth = Depth;
		View->NumDestructions = GetNumDestructions();
		const_cast<UMaterialInterface&>(Material).*Kept = std::move(View);
	}

	const FStated Stated;
	const FKept Kept;
	FMaterialParameterLine Found;
	int32 NumBelow = 0; // materials below Found.Above
};
