#include "Queries/RegistryOverlay.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"

#include <algorithm>

namespace
{
constexpr std::string_view BlueprintClass = "/Script/Engine.Blueprint";

/** Numbers of the snapshot for those of a part: the base's number for what the base knows, new ones behind these. */
struct FNumbering
{
	FNumbering(std::vector<uint32>& InOut, std::vector<uint32>& InOwn, uint32 InNumBase)
		: Out(InOut)
		, Own(InOwn)
		, NumBase(InNumBase)
	{
	}
	void Add(uint32 OfBase)
	{
		if (OfBase != NoId)
			return Out.push_back(OfBase);
		Own.push_back(static_cast<uint32>(Out.size()));
		Out.push_back(NumBase + static_cast<uint32>(Own.size()) - 1);
	}

	std::vector<uint32>& Out;
	std::vector<uint32>& Own;
	const uint32 NumBase;
};
}

class FRegistryOverlay::FMaker
{
public:
	FMaker(const FRegistryPart& InBase, FRegistryOverlay& InOut)
		: Base(*InBase.Image)
		, BaseTables(Base.GetTables())
		, Part(*InOut.Part->Image)
		, Tables(Part.GetTables())
		, Out(InOut)
	{
	}

	/** False where only a new image is right. */
	bool Make();

private:
	bool NumberNodes();
	bool NumberClasses();
	bool NumberFolders();
	bool MayChangeSpelling() const;
	void PlacePackages();
	void CountHidden();
	void AddGraph();
	/** Dropped are packages of the base that refer to the node and are hidden, ascending. */
	void AddReferencers(uint32 Node, std::span<const std::pair<uint32, uint32>> Dropped);

	bool AddClasses();
	/** Classes that hidden or added Blueprints generate. */
	bool GatherGenerated(std::vector<uint32>& OutHidden, std::vector<uint32>& OutAdded) const;
	bool SetParent(uint32 Class, uint32 Parent);
	void MoveChild(uint32 Class, uint32 OldParent, uint32 NewParent);
	std::vector<uint32>& ChangeChildren(uint32 Class);
	uint32 GetParent(uint32 Class) const;
	/** Whether the class is Above or below it, by the parents as they are now; also where they lead in a circle. */
	bool LeadsTo(uint32 Class, uint32 Above) const;
	std::string_view GetFoldedClass(uint32 Class) const;
	bool IndexesSameBlueprints() const;

	const FRegistryImage& Base;
	const FRegistryTables& BaseTables;
	const FRegistryImage& Part;
	const FRegistryTables& Tables;
	FRegistryOverlay& Out;
};

bool FRegistryOverlay::FMaker::Make()
{
	if (!NumberNodes() || !NumberClasses() || !NumberFolders() || MayChangeSpelling())
		return false;
	PlacePackages();
	CountHidden();
	AddGraph();
	return AddClasses() && IndexesSameBlueprints();
}

bool FRegistryOverlay::FMaker::NumberNodes()
{
	FNumbering Numbering(Out.Nodes, Out.OwnNodes, Base.NumNodes());
	for (uint32 Node = 0; Node < Part.NumNodes(); ++Node)
	{
		const std::string_view Name = Tables.GetText(EZone::Nodes, Node);
		const uint32 OfBase = Base.FindNode(Name);
		const bool bTaken = OfBase < Base.NumPackages() && Node < Part.NumPackages() && !Out.IsHidden(OfBase);
		if (bTaken || (OfBase != NoId && BaseTables.GetText(EZone::Nodes, OfBase) != Name))
			return false;
		Numbering.Add(OfBase);
		if (Node < Part.NumPackages())
			Out.PackageOfNode.insert({Out.Nodes.back(), Node});
	}
	return true;
}

bool FRegistryOverlay::FMaker::NumberClasses()
{
	FNumbering Numbering(Out.Classes, Out.OwnClasses, Base.NumClasses());
	for (uint32 Class = 0; Class < Part.NumClasses(); ++Class)
	{
		const std::string_view Path = Tables.GetText(EZone::Classes, Class);
		const uint32 OfBase = Base.FindClass(Path);
		if (OfBase != NoId && BaseTables.GetText(EZone::Classes, OfBase) != Path)
			return false;
		Numbering.Add(OfBase);
	}
	return true;
}

bool FRegistryOverlay::FMaker::NumberFolders()
{
	FNumbering Numbering(Out.Folders, Out.OwnFolders, BaseTables.NumTexts(EZone::Folders));
	for (uint32 Folder = 0; Folder < Tables.NumTexts(EZone::Folders); ++Folder)
	{
		const std::string_view Path = Tables.GetText(EZone::Folders, Folder);
		const FRowRange Spellings = Base.FindFolders(Path);
		uint32 OfBase = Spellings.Begin;
		while (OfBase < Spellings.End && BaseTables.GetText(EZone::Folders, OfBase) != Path)
			++OfBase;
		if (OfBase == Spellings.End && Spellings.Num() > 0) // the spellings of a folder have neighbouring numbers
			return false;
		Numbering.Add(OfBase < Spellings.End ? OfBase : NoId);
	}
	return true;
}

/** What has no file of its own is spelled as whoever mentions it first does. Where a package of the base spells it otherwise, who
 * that is may change with what is hidden and added. Declared classes come before all. */
bool FRegistryOverlay::FMaker::MayChangeSpelling() const
{
	if (!Tables.RespelledPackages.empty())
		return true;
	if (BaseTables.RespelledPackages.empty())
		return false;
	THashSet<uint32> ConcernedNodes(Out.Nodes.begin(), Out.Nodes.end());
	THashSet<uint32> ConcernedClasses;
	const auto IsDeclared = [this](uint32 Class)
	{ return BaseTables.ClassParents[Class] != NoId && BaseTables.GetText(EZone::Classes, Class).starts_with("/Script/"); };
	for (const uint32 Class : Tables.AssetClasses)
	{
		if (const uint32 OfBase = Out.Classes[Class]; OfBase < Base.NumClasses() && !IsDeclared(OfBase))
			ConcernedClasses.insert(OfBase);
	}
	const auto ForEachMention = [this](uint32 Package, const auto& VisitNode, const auto& VisitClass)
	{
		const FRowRange Edges = FRegistryTables::RangeOf(BaseTables.FirstDependencies, Package);
		for (uint32 Edge = Edges.Begin; Edge < Edges.End; ++Edge)
			VisitNode(BaseTables.DependencyTargets[Edge]);
		const FRowRange Assets = FRegistryTables::RangeOf(BaseTables.FirstAssets, Package);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
			VisitClass(BaseTables.AssetClasses[Asset]);
	};
	for (const uint32 Package : Out.Hidden)
	{
		ConcernedNodes.insert(Package);
		ForEachMention(
			Package, [&](uint32 Node) { ConcernedNodes.insert(Node); },
			[&](uint32 Class)
			{
				if (!IsDeclared(Class))
					ConcernedClasses.insert(Class);
			});
	}
	bool bMentioned = false;
	for (const uint32 Package : BaseTables.RespelledPackages)
		ForEachMention(
			Package, [&](uint32 Node) { bMentioned |= ConcernedNodes.contains(Node); },
			[&](uint32 Class) { bMentioned |= ConcernedClasses.contains(Class); });
	return bMentioned;
}

void FRegistryOverlay::FMaker::PlacePackages()
{
	for (uint32 Package = 0; Package < Part.NumPackages(); ++Package)
		Out.Places.push_back(Base.FindPlaceOfPackage(Tables.GetFolded(EZone::Nodes, Package)));
}

void FRegistryOverlay::FMaker::CountHidden()
{
	for (const uint32 Package : Out.Hidden)
	{
		Out.NumHiddenAssets += FRegistryTables::RangeOf(BaseTables.FirstAssets, Package).Num();
		Out.NumHiddenDependencies += FRegistryTables::RangeOf(BaseTables.FirstDependencies, Package).Num();
	}
}

void FRegistryOverlay::FMaker::AddGraph()
{
	for (const uint32 Target : Tables.DependencyTargets)
		Out.DependencyTargets.push_back(Out.Nodes[Target]);
	std::vector<uint32> Targets = Out.DependencyTargets;
	std::vector<std::pair<uint32, uint32>> Dropped; // links of the base that are hidden: target, source
	for (const uint32 Package : Out.Hidden)
	{
		const FRowRange Edges = FRegistryTables::RangeOf(BaseTables.FirstDependencies, Package);
		for (uint32 Edge = Edges.Begin; Edge < Edges.End; ++Edge)
		{
			Targets.push_back(BaseTables.DependencyTargets[Edge]);
			Dropped.emplace_back(Targets.back(), Package);
		}
	}
	std::sort(Targets.begin(), Targets.end());
	Targets.erase(std::unique(Targets.begin(), Targets.end()), Targets.end());
	std::sort(Dropped.begin(), Dropped.end());
	auto First = Dropped.begin();
	for (const uint32 Target : Targets)
	{
		const auto End = std::find_if(First, Dropped.end(), [Target](const auto& Link) { return Link.first != Target; });
		AddReferencers(Target, {First, End});
		First = End;
	}
}

/** Those of the base that are not hidden and those of the part, merged in registry order. A package may have very many, so what
 * lies between two changes is copied as it is. */
void FRegistryOverlay::FMaker::AddReferencers(uint32 Node, std::span<const std::pair<uint32, uint32>> Dropped)
{
	const auto Begin = static_cast<uint32>(Out.ReferencerSources.size());
	const bool bInBase = Node < Base.NumNodes();
	const uint32 OfPart = bInBase ? Part.FindNode(BaseTables.GetText(EZone::Nodes, Node)) : Out.OwnNodes[Node - Base.NumNodes()];
	const FRowRange Known = bInBase ? FRegistryTables::RangeOf(BaseTables.FirstReferencers, Node) : FRowRange();
	const std::span<const uint32> Sources = BaseTables.ReferencerSources.subspan(Known.Begin, Known.Num()); // ascending
	const auto FindEdge = [&](uint32 Source)
	{ return Known.Begin + static_cast<uint32>(std::lower_bound(Sources.begin(), Sources.end(), Source) - Sources.begin()); };
	uint32 Next = Known.Begin;
	const auto CopyUpTo = [&](uint32 Edge)
	{
		Out.ReferencerSources.insert(Out.ReferencerSources.end(), BaseTables.ReferencerSources.begin() + Next,
			BaseTables.ReferencerSources.begin() + Edge);
		Out.ReferencerFlags.insert(
			Out.ReferencerFlags.end(), BaseTables.ReferencerFlags.begin() + Next, BaseTables.ReferencerFlags.begin() + Edge);
		Next = Edge;
	};
	auto DropBelow = [&, At = std::size_t{0}](uint32 Source) mutable
	{
		for (; At < Dropped.size() && Dropped[At].second < Source; ++At)
		{
			CopyUpTo(FindEdge(Dropped[At].second));
			++Next;
		}
	};
	const FRowRange Added = OfPart == NoId ? FRowRange() : FRegistryTables::RangeOf(Tables.FirstReferencers, OfPart);
	for (uint32 Edge = Added.Begin; Edge < Added.End; ++Edge)
	{
		const uint32 Source = Tables.ReferencerSources[Edge];
		DropBelow(Out.Places[Source]);
		CopyUpTo(FindEdge(Out.Places[Source]));
		Out.ReferencerSources.push_back(Out.Nodes[Source]);
		Out.ReferencerFlags.push_back(Tables.ReferencerFlags[Edge]);
	}
	DropBelow(Base.NumPackages());
	CopyUpTo(Known.End);
	Out.ReferencersOf[Node] = {Begin, static_cast<uint32>(Out.ReferencerSources.size())};
}

bool FRegistryOverlay::FMaker::GatherGenerated(std::vector<uint32>& OutHidden, std::vector<uint32>& OutAdded) const
{
	const auto FindGenerated = [](const FRegistryImage& Image, uint32 Asset) -> std::string_view
	{
		const FRegistryTables& From = Image.GetTables();
		const FRowRange Tags = FRegistryTables::RangeOf(From.FirstTags, Asset);
		for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
		{
			if (Unicode::EqualsFolded(From.GetText(EZone::TagKeys, From.TagKeys[Tag]), FBlueprintTags::GeneratedClassPath))
				return FPackageName::ExportTextPathToObjectPath(From.GetText(EZone::TagValues, From.TagValues[Tag]));
		}
		return {};
	};
	const auto IsUnclear = [](const FRegistryTables& From, uint32 Class)
	{ return std::binary_search(From.UnclearClasses.begin(), From.UnclearClasses.end(), Class); };
	for (const uint32 Package : Out.Hidden)
	{
		const FRowRange Assets = FRegistryTables::RangeOf(BaseTables.FirstAssets, Package);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
		{
			const std::string_view Path = FindGenerated(Base, Asset);
			const uint32 Class = Path.empty() ? NoId : Base.FindClass(Path);
			if (Class != NoId && IsUnclear(BaseTables, Class))
				return false;
			if (Class != NoId)
				OutHidden.push_back(Class);
		}
	}
	for (uint32 Asset = 0; Asset < Part.NumAssets(); ++Asset)
	{
		const std::string_view Path = FindGenerated(Part, Asset);
		const uint32 Class = Path.empty() ? NoId : Part.FindClass(Path);
		if (Class != NoId &&
			(IsUnclear(Tables, Class) || (Out.Classes[Class] < Base.NumClasses() && IsUnclear(BaseTables, Out.Classes[Class]))))
			return false;
		if (Class != NoId)
			OutAdded.push_back(Class);
	}
	return true;
}

bool FRegistryOverlay::FMaker::AddClasses()
{
	std::vector<uint32> Ungenerated;
	std::vector<uint32> Added;
	if (!GatherGenerated(Ungenerated, Added))
		return false;
	std::sort(Ungenerated.begin(), Ungenerated.end());
	// Classes whose Blueprint is gone keep the parent that was declared for them, which the part knows too.
	for (const uint32 Class : Ungenerated)
	{
		const uint32 OfPart = Part.FindClass(BaseTables.GetText(EZone::Classes, Class));
		const uint32 Parent = OfPart == NoId ? NoId : Tables.ClassParents[OfPart];
		if (!SetParent(Class, Parent == NoId ? NoId : Out.Classes[Parent]))
			return false;
	}
	for (const uint32 OfPart : Added)
	{
		const uint32 Class = Out.Classes[OfPart];
		const uint32 Parent = Tables.ClassParents[OfPart] == NoId ? NoId : Out.Classes[Tables.ClassParents[OfPart]];
		const bool bGivenByAnother = GetParent(Class) != NoId && GetParent(Class) != Parent;
		if (bGivenByAnother || !SetParent(Class, Parent))
			return false;
	}
	return true;
}

uint32 FRegistryOverlay::FMaker::GetParent(uint32 Class) const
{
	if (const auto Found = Out.ParentOfClass.find(Class); Found != Out.ParentOfClass.end())
		return Found->second;
	return Class < Base.NumClasses() ? BaseTables.ClassParents[Class] : NoId;
}

bool FRegistryOverlay::FMaker::LeadsTo(uint32 Class, uint32 Above) const
{
	for (uint32 Step = 0; Class != NoId && Step <= Base.NumClasses() + Part.NumClasses(); ++Step, Class = GetParent(Class))
	{
		if (Class == Above)
			return true;
	}
	return Class != NoId;
}

/** False where the parents would lead in a circle, or the class is or becomes one of Blueprints. */
bool FRegistryOverlay::FMaker::SetParent(uint32 Class, uint32 Parent)
{
	const uint32 OldParent = GetParent(Class);
	if (OldParent == Parent)
		return true;
	const uint32 Topmost = Base.FindClass(BlueprintClass);
	const auto IsOfBlueprints = [&](uint32 Above) { return Above != NoId && Topmost != NoId && LeadsTo(Above, Topmost); };
	if ((Parent != NoId && LeadsTo(Parent, Class)) || IsOfBlueprints(OldParent) || IsOfBlueprints(Parent))
		return false;
	Out.ParentOfClass[Class] = Parent;
	MoveChild(Class, OldParent, Parent);
	return true;
}

void FRegistryOverlay::FMaker::MoveChild(uint32 Class, uint32 OldParent, uint32 NewParent)
{
	if (OldParent != NoId)
		std::erase(ChangeChildren(OldParent), Class);
	if (NewParent == NoId)
		return;
	std::vector<uint32>& Children = ChangeChildren(NewParent);
	const auto ComesBefore = [this](uint32 A, std::string_view Folded) { return GetFoldedClass(A) < Folded; };
	Children.insert(std::lower_bound(Children.begin(), Children.end(), GetFoldedClass(Class), ComesBefore), Class);
}

std::vector<uint32>& FRegistryOverlay::FMaker::ChangeChildren(uint32 Class)
{
	const auto [Place, bNew] = Out.ChildrenOfClass.insert({Class, {}});
	std::vector<uint32>& Children = Place.value();
	if (bNew && Class < Base.NumClasses())
	{
		const FRowRange Known = FRegistryTables::RangeOf(BaseTables.FirstClassChildren, Class);
		Children.assign(BaseTables.ClassChildren.begin() + Known.Begin, BaseTables.ClassChildren.begin() + Known.End);
	}
	return Children;
}

std::string_view FRegistryOverlay::FMaker::GetFoldedClass(uint32 Class) const
{
	return Class < Base.NumClasses() ? BaseTables.GetFolded(EZone::Classes, Class)
									 : Tables.GetFolded(EZone::Classes, Out.OwnClasses[Class - Base.NumClasses()]);
}

/** Which assets own index entries follows from their classes; the part knows but its own classes and the declared ones. */
bool FRegistryOverlay::FMaker::IndexesSameBlueprints() const
{
	const uint32 OfPart = Part.FindClass(BlueprintClass);
	const uint32 OfBoth = OfPart == NoId ? Base.FindClass(BlueprintClass) : Out.Classes[OfPart];
	for (uint32 Package = 0; Package < Part.NumPackages(); ++Package)
	{
		if (FRegistryTables::RangeOf(Tables.FirstEntries, Package).Num() == 0)
			continue;
		const FRowRange Assets = FRegistryTables::RangeOf(Tables.FirstAssets, Package);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
		{
			uint32 Class = Tables.AssetClasses[Asset];
			const bool bIsBlueprint = OfBoth != NoId && LeadsTo(Out.Classes[Class], OfBoth);
			while (Class != NoId && Class != OfPart)
				Class = Tables.ClassParents[Class];
			if (bIsBlueprint != (Class != NoId))
				return false;
		}
	}
	return true;
}

TSharedPtr<const FRegistryOverlay> FRegistryOverlay::Make(
	const FRegistryPart& Base, TSharedPtr<const FRegistryPart> Part, std::vector<uint32> Hidden)
{
	const auto Overlay = MakeShared<FRegistryOverlay>();
	Overlay->Part = std::move(Part);
	Overlay->Hidden = std::move(Hidden);
	return FMaker(Base, *Overlay).Make() ? Overlay : nullptr;
}

bool FRegistryOverlay::IsHidden(uint32 Package) const
{
	return std::binary_search(Hidden.begin(), Hidden.end(), Package);
}
