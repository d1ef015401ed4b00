#include "Core/Base/StrongComponents.h"
#include "Core/Program/Diagnostics.h"
#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/Properties.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <unordered_map>

namespace
{
template <class T>
auto& At(T& List, int32 Place)
{
	return List[static_cast<std::size_t>(Place)];
}
}

/** Orders types by what they need, cuts rings, and lays them out. */
class FTypeLinker
{
public:
	explicit FTypeLinker(const std::vector<UStruct*>& Roots)
	{
		for (UStruct* const Root : Roots)
			AddOpen(Root);
		for (std::size_t Place = 0; Place < Types.size(); ++Place)
			AddNeeds(Place);
		Rings = FindStrongComponents(Holds);
	}

	std::vector<UStruct*> Link()
	{
		std::vector<UStruct*> Linked;
		for (const int32 Place : Order())
		{
			CutRing(Place);
			Linked.push_back(At(Types, Place));
			Linked.back()->Layout();
		}
		return Linked;
	}

private:
	/** The place of a type that is still to be linked, INDEX_NONE for others. */
	int32 AddOpen(UStruct* Type)
	{
		if (!Type || Type->IsLinked())
			return INDEX_NONE;
		const auto [Found, bIsNew] = Places.emplace(Type, static_cast<int32>(Types.size()));
		if (bIsNew)
			Types.push_back(Type);
		return Found->second;
	}

	void AddNeeds(std::size_t Place)
	{
		UStruct* const Type = Types[Place];
		std::vector<int32> Held;
		std::vector<UScriptStruct*> MentionedTypes;
		const auto AddTo = [this](std::vector<int32>& List, UStruct* Needed)
		{
			if (const int32 Found = AddOpen(Needed); Found != INDEX_NONE)
				List.push_back(Found);
		};
		AddTo(Held, Type->DeclaredSuper);
		for (const TUniquePtr<FProperty>& Property : Type->Properties)
		{
			if (const auto* const Holder = CastField<FStructProperty>(Property.get()))
				AddTo(Held, &Holder->GetStruct());
			else
				Property->GatherStructs(MentionedTypes);
		}
		std::vector<int32> Mentioned = Held;
		for (UScriptStruct* const Struct : MentionedTypes)
			AddTo(Mentioned, Struct);
		Holds.push_back(std::move(Held));
		Mentions.push_back(std::move(Mentioned));
	}

	/** Elements of containers need no layout, but default values are made of them: those come earlier where no ring forbids it.
	 */
	std::vector<int32> Order() const
	{
		const std::vector<int32> Groups = FindStrongComponents(Mentions);
		std::vector<int32> Ordered(Types.size());
		std::iota(Ordered.begin(), Ordered.end(), 0);
		std::sort(Ordered.begin(), Ordered.end(),
			[&](int32 A, int32 B)
			{ return std::tuple(At(Groups, A), At(Rings, A), A) < std::tuple(At(Groups, B), At(Rings, B), B); });
		return Ordered;
	}

	bool LeadsBack(int32 Place, const UStruct* Needed) const
	{
		const auto Found = Places.find(Needed);
		return Found != Places.end() && At(Rings, Found->second) == At(Rings, Place);
	}

	void CutRing(int32 Place)
	{
		UStruct& Type = *At(Types, Place);
		if (LeadsBack(Place, Type.DeclaredSuper))
			Type.LoseParent("parent-cycle", Describe(Place));
		for (int32 Index = 0; Index < static_cast<int32>(Type.Properties.size()); ++Index)
		{
			const auto* const Holder = CastField<FStructProperty>(At(Type.Properties, Index).get());
			if (Holder && LeadsBack(Place, &Holder->GetStruct()))
				Type.LoseValue(Index, "value-cycle", Describe(Place));
		}
	}

	FString Describe(int32 Place)
	{
		if (RingTexts.empty())
			RingTexts = DescribeRings();
		return "parents and values lead in a ring: " + At(RingTexts, At(Rings, Place));
	}

	/** By ring; empty for what is none. */
	std::vector<FString> DescribeRings() const
	{
		std::vector<std::vector<int32>> Members(Types.size());
		for (int32 Place = 0; Place < static_cast<int32>(Types.size()); ++Place)
			At(Members, At(Rings, Place)).push_back(Place);
		std::vector<FString> Texts(Types.size());
		for (std::size_t Ring = 0; Ring < Members.size(); ++Ring)
		{
			if (!Members[Ring].empty())
				Texts[Ring] = DescribeRingOf(Members[Ring]);
		}
		return Texts;
	}

	FString DescribeRingOf(const std::vector<int32>& Members) const
	{
		const auto IsBefore = [this](int32 A, int32 B) { return At(Types, A)->GetPathName() < At(Types, B)->GetPathName(); };
		TArray<FString> Names;
		for (const int32 Place : FindRing(Holds, Rings, *std::min_element(Members.begin(), Members.end(), IsBefore)))
			Names.Add(At(Types, Place)->GetPathName());
		return Names.IsEmpty() ? FString() : DescribeRing(Names);
	}

	std::vector<UStruct*> Types; // in the order in which they were met
	std::unordered_map<const UStruct*, int32> Places;
	std::vector<std::vector<int32>> Holds;	  // parents and structures by value: what a layout needs
	std::vector<std::vector<int32>> Mentions; // these, and elements of containers
	std::vector<int32> Rings;				  // two types of one number hold one another
	std::vector<FString> RingTexts;			  // once one is asked for
};

std::vector<UStruct*> LinkTypes(const std::vector<UStruct*>& Types)
{
	return FTypeLinker(Types).Link();
}
