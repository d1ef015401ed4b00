#include "Scan/ClassTable.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "Scan/GroupByRow.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
bool IsClassPath(std::string_view Text)
{
	const std::size_t Dot = Text.find('.');
	return Text.starts_with('/') && Dot != std::string_view::npos && Dot + 1 < Text.size() &&
		Text.find_first_of(".:/", Dot + 1) == std::string_view::npos;
}

/** Numbers of the elements by row. RowOf[Element] may be NoId. */
void ListByRow(const std::vector<uint32>& RowOf, std::size_t NumRows, std::vector<uint32>& First, std::vector<uint32>& Elements)
{
	const auto ForEach = [&RowOf](const auto& Visit)
	{
		for (uint32 Element = 0; Element < RowOf.size(); ++Element)
		{
			if (RowOf[Element] != NoId)
				Visit(RowOf[Element], Element);
		}
	};
	GroupByRow(NumRows, ForEach, First, Elements);
}

/** Takes the parent away from every class that is among its own parents, as objects of such classes have it. */
void CutCircles(std::vector<uint32>& Parents, std::vector<uint32>& OutCut)
{
	std::vector<uint32> PassedFrom(Parents.size(), NoId); // the class whose walk came by first
	for (uint32 Class = 0; Class < Parents.size(); ++Class)
	{
		uint32 At = Class;
		for (; At != NoId && PassedFrom[At] == NoId; At = Parents[At])
			PassedFrom[At] = Class;
		const bool bCameBack = At != NoId && PassedFrom[At] == Class;
		while (bCameBack && At != NoId)
		{
			OutCut.push_back(At);
			At = std::exchange(Parents[At], NoId);
		}
	}
}
}

std::vector<uint32> AppendSorted(const FTextTable& Texts, FTextTable& Out)
{
	std::vector<std::string> Folded(Texts.Num());
	std::vector<uint32> Order(Texts.Num());
	std::iota(Order.begin(), Order.end(), 0);
	for (const uint32 Id : Order)
		Folded[Id] = Unicode::Fold(Texts.Get(Id));
	std::sort(Order.begin(), Order.end(),
		[&](uint32 A, uint32 B)
		{
			const int Compared = Folded[A].compare(Folded[B]);
			return Compared != 0 ? Compared < 0 : Texts.Get(A) < Texts.Get(B);
		});
	std::vector<uint32> Places(Texts.Num());
	for (const uint32 Id : Order)
		Places[Id] = Out.AddNew(Texts.Get(Id));
	return Places;
}

void FClassTable::AddDeclared(const TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>& ChildAndParent)
{
	for (const auto& [Child, Parent] : ChildAndParent)
	{
		if (Child.IsValid() && Parent.IsValid())
			SetParent(Paths.Add(Child.ToString()), Paths.Add(Parent.ToString()));
	}
}

void FClassTable::AddGenerated(std::string_view Class, std::string_view Parent, std::string_view NativeParent)
{
	Class = FPackageName::ExportTextPathToObjectPath(Class);
	Parent = FPackageName::ExportTextPathToObjectPath(Parent);
	NativeParent = FPackageName::ExportTextPathToObjectPath(NativeParent);
	if (!IsClassPath(Class))
		return;
	const uint32 Id = Paths.Add(Class);
	if (IsClassPath(Parent))
		SetParent(Id, Paths.Add(Parent));
	else if (IsClassPath(NativeParent))
		SetParent(Id, Paths.Add(NativeParent));
	else
		Disputed.push_back(Id);
}

void FClassTable::SetParent(uint32 Class, uint32 Parent)
{
	if (Parents.size() < Paths.Num())
		Parents.resize(Paths.Num(), NoId);
	if (Parents[Class] != NoId || Class == Parent)
		Disputed.push_back(Class);
	else
		Parents[Class] = Parent;
}

void FClassTable::Finish(FRegistryDraft& Draft, FTextTable& OutPaths)
{
	const std::vector<uint32> Places = AppendSorted(Paths, OutPaths);
	Draft.ClassParents.assign(Paths.Num(), NoId);
	for (uint32 Class = 0; Class < Parents.size(); ++Class)
		Draft.ClassParents[Places[Class]] = Parents[Class] == NoId ? NoId : Places[Parents[Class]];
	for (const uint32 Class : Disputed)
		Draft.UnclearClasses.push_back(Places[Class]);
	CutCircles(Draft.ClassParents, Draft.UnclearClasses);
	std::sort(Draft.UnclearClasses.begin(), Draft.UnclearClasses.end());
	Draft.UnclearClasses.erase(std::unique(Draft.UnclearClasses.begin(), Draft.UnclearClasses.end()), Draft.UnclearClasses.end());
	for (uint32& Class : Draft.AssetClasses)
		Class = Places[Class];
	ListByRow(Draft.ClassParents, Paths.Num(), Draft.FirstClassChildren, Draft.ClassChildren);
	ListByRow(Draft.AssetClasses, Paths.Num(), Draft.FirstClassAssets, Draft.ClassAssets);
}
