#include "Queries/RegistrySnapshot.h"

#include "Image/FolderText.h"
#include "Queries/RegistryOverlay.h"

namespace
{
FRegistrySnapshot::FNeighbours GetNeighbours(FRowRange Range, std::span<const uint32> Neighbours, std::span<const uint8> Flags)
{
	return {Neighbours.subspan(Range.Begin, Range.Num()), Flags.subspan(Range.Begin, Range.Num())};
}

template <class T>
const T* Find(const THashMap<uint32, T>& Map, uint32 Key)
{
	const auto Found = Map.find(Key);
	return Found == Map.end() ? nullptr : &Found->second;
}
}

FRegistryPart::FRegistryPart(TSharedPtr<const FRegistryImage> InImage, const FRegistryScanOptions& Options)
	: Image(std::move(InImage))
	, Names(*Image)
	, Sources(Options.Sources)
{
	const FRegistryTables& Tables = Image->GetTables();
	const FString Project = FolderText::WithTrailingSlash(Options.ProjectFolder);
	for (const uint32 Id : Tables.RootFolders)
	{
		const FString Folder(Tables.GetText(EZone::Files, Id));
		RootFolders.push_back(Folder.View().starts_with('/') ? Folder : Project + Folder);
	}
}

FAssetData FRegistryPart::MakeAssetData(uint32 Asset) const
{
	const FRegistryTables& Tables = Image->GetTables();
	const uint32 Package = Tables.AssetPackages[Asset];
	FAssetData Data;
	Data.PackageName = Names.GetNode(Package);
	Data.PackagePath = Names.GetFolder(Package);
	Data.AssetName = Names.GetAssetName(Asset);
	Data.AssetClassPath = Names.GetClass(Tables.AssetClasses[Asset]);
	if (Tables.AssetOuters[Asset] != NoId)
		Data.OuterPath = FName(Image->GetAssetOuter(Asset));
	Data.Image = Image;
	Data.Row = Asset;
	return Data;
}

FString FRegistryPart::GetFileName(uint32 Package, const IPackageSource*& OutSource) const
{
	OutSource = nullptr;
	if (Package == NoId)
		return {};
	const FRegistryTables& Tables = Image->GetTables();
	const uint32 File = Tables.PackageFiles[Package];
	if (const int32 Source = Tables.FileSources[File]; Sources.IsValidIndex(Source))
		OutSource = Sources[Source];
	return RootFolders[Image->GetRootOfFile(File)] + Image->GetRelativePath(File);
}

uint32 FRegistrySnapshot::NumNodes() const
{
	return Base->Image->NumNodes() + (Overlay ? static_cast<uint32>(Overlay->OwnNodes.size()) : 0);
}

uint32 FRegistrySnapshot::FindNode(FName Name) const
{
	uint32 Node = Base->Names.FindNode(Name);
	if (!Overlay)
		return Node;
	if (const uint32 OfPart = Node == NoId ? Overlay->Part->Names.FindNode(Name) : NoId; OfPart != NoId)
		Node = Overlay->Nodes[OfPart];
	return IsKnown(Node) ? Node : NoId;
}

uint32 FRegistrySnapshot::FindNode(std::string_view Name) const
{
	uint32 Node = Base->Image->FindNode(Name);
	if (!Overlay)
		return Node;
	if (const uint32 OfPart = Node == NoId ? Overlay->Part->Image->FindNode(Name) : NoId; OfPart != NoId)
		Node = Overlay->Nodes[OfPart];
	return IsKnown(Node) ? Node : NoId;
}

bool FRegistrySnapshot::IsKnown(uint32 Node) const
{
	return Node != NoId && (FindPackage(Node).Row != NoId || !GetReferencers(Node).Nodes.empty());
}

FName FRegistrySnapshot::GetNodeName(uint32 Node) const
{
	const uint32 NumBase = Base->Image->NumNodes();
	return Node < NumBase ? Base->Names.GetNode(Node) : Overlay->Part->Names.GetNode(Overlay->OwnNodes[Node - NumBase]);
}

std::string_view FRegistrySnapshot::GetNodeText(uint32 Node) const
{
	const uint32 NumBase = Base->Image->NumNodes();
	return Node < NumBase ? Base->Image->GetTables().GetText(EZone::Nodes, Node)
						  : Overlay->Part->Image->GetTables().GetText(EZone::Nodes, Overlay->OwnNodes[Node - NumBase]);
}

FRegistrySnapshot::FRow FRegistrySnapshot::FindPackage(uint32 Node) const
{
	if (Overlay)
	{
		if (const uint32* const Package = Find(Overlay->PackageOfNode, Node))
			return {*Overlay->Part, *Package};
	}
	const bool bHasFile = Node < Base->Image->NumPackages() && !(Overlay && Overlay->IsHidden(Node));
	return {*Base, bHasFile ? Node : NoId};
}

void FRegistrySnapshot::ForEachPackage(const std::function<void(const FRow& Package)>& Visit) const
{
	uint32 Added = 0; // of the overlay
	const auto VisitAdded = [&](uint32 Place)
	{
		for (; Overlay && Added < Overlay->Places.size() && Overlay->Places[Added] <= Place; ++Added)
			Visit({*Overlay->Part, Added});
	};
	for (uint32 Package = 0; Package < Base->Image->NumPackages(); ++Package)
	{
		VisitAdded(Package);
		if (!Overlay || !Overlay->IsHidden(Package))
			Visit({*Base, Package});
	}
	VisitAdded(NoId);
}

FRegistrySnapshot::FNeighbours FRegistrySnapshot::GetDependencies(uint32 Node) const
{
	const FRegistryTables& Tables = Base->Image->GetTables();
	if (!Overlay)
		return GetNeighbours(
			FRegistryTables::RangeOf(Tables.FirstDependencies, Node), Tables.DependencyTargets, Tables.DependencyFlags);
	const FRow Package = FindPackage(Node);
	if (Package.Row == NoId)
		return {};
	const bool bOfBase = &Package.Part == Base.get();
	return GetNeighbours(FRegistryTables::RangeOf(Package.GetTables().FirstDependencies, Package.Row),
		bOfBase ? Tables.DependencyTargets : std::span<const uint32>(Overlay->DependencyTargets),
		Package.GetTables().DependencyFlags);
}

FRegistrySnapshot::FNeighbours FRegistrySnapshot::GetReferencers(uint32 Node) const
{
	if (const FRowRange* const Range = Overlay ? Find(Overlay->ReferencersOf, Node) : nullptr)
		return GetNeighbours(*Range, Overlay->ReferencerSources, Overlay->ReferencerFlags);
	if (Node >= Base->Image->NumNodes())
		return {};
	const FRegistryTables& Tables = Base->Image->GetTables();
	return GetNeighbours(
		FRegistryTables::RangeOf(Tables.FirstReferencers, Node), Tables.ReferencerSources, Tables.ReferencerFlags);
}

FRowRange FRegistrySnapshot::GetAssets(const FRow& Package) const
{
	if (Package.Row == NoId)
		return {};
	FRowRange Assets = FRegistryTables::RangeOf(Package.GetTables().FirstAssets, Package.Row);
	if (&Package.Part != Base.get())
		Assets = {Assets.Begin + Base->Image->NumAssets(), Assets.End + Base->Image->NumAssets()};
	return Assets;
}

FRegistrySnapshot::FRow FRegistrySnapshot::GetAsset(uint32 Asset) const
{
	const uint32 NumBase = Base->Image->NumAssets();
	return Asset < NumBase ? FRow{*Base, Asset} : FRow{*Overlay->Part, Asset - NumBase};
}

FAssetData FRegistrySnapshot::MakeAssetData(uint32 Asset) const
{
	const FRow Row = GetAsset(Asset);
	return Row.Part.MakeAssetData(Row.Row);
}

bool FRegistrySnapshot::IsFiltered(uint32 Asset) const
{
	const FRow Row = GetAsset(Asset);
	return Row.Part.Image->IsFiltered(Row.Row);
}

void FRegistrySnapshot::AppendObjectPath(uint32 Asset, FString& Out) const
{
	const FRow Row = GetAsset(Asset);
	Row.Part.Image->AppendObjectPath(Row.Row, Out);
}

uint32 FRegistrySnapshot::FindClass(std::string_view Path) const
{
	const uint32 Class = Base->Image->FindClass(Path);
	if (Class != NoId || !Overlay)
		return Class;
	const uint32 OfPart = Overlay->Part->Image->FindClass(Path);
	return OfPart == NoId ? NoId : Overlay->Classes[OfPart];
}

uint32 FRegistrySnapshot::GetClassOf(uint32 Asset) const
{
	const FRow Row = GetAsset(Asset);
	const uint32 Class = Row.GetTables().AssetClasses[Row.Row];
	return &Row.Part == Base.get() ? Class : Overlay->Classes[Class];
}

FTopLevelAssetPath FRegistrySnapshot::GetClassPath(uint32 Class) const
{
	const uint32 NumBase = Base->Image->NumClasses();
	return Class < NumBase ? Base->Names.GetClass(Class) : Overlay->Part->Names.GetClass(Overlay->OwnClasses[Class - NumBase]);
}

uint32 FRegistrySnapshot::GetParentClass(uint32 Class) const
{
	if (const uint32* const Parent = Overlay ? Find(Overlay->ParentOfClass, Class) : nullptr)
		return *Parent;
	return Class < Base->Image->NumClasses() ? Base->Image->GetTables().ClassParents[Class] : NoId;
}

void FRegistrySnapshot::GatherDerivedClasses(uint32 Class, std::vector<uint32>& OutClasses) const
{
	if (!Overlay)
		return Base->Image->GatherDerivedClasses(Class, OutClasses);
	const FRegistryTables& Tables = Base->Image->GetTables();
	std::size_t Next = OutClasses.size();
	OutClasses.push_back(Class);
	for (; Next < OutClasses.size(); ++Next)
	{
		const uint32 At = OutClasses[Next];
		std::span<const uint32> Children;
		if (const auto* const Changed = Find(Overlay->ChildrenOfClass, At))
			Children = *Changed;
		else if (At < Base->Image->NumClasses())
		{
			const FRowRange Range = FRegistryTables::RangeOf(Tables.FirstClassChildren, At);
			Children = Tables.ClassChildren.subspan(Range.Begin, Range.Num());
		}
		OutClasses.insert(OutClasses.end(), Children.begin(), Children.end());
	}
}

uint32 FRegistrySnapshot::NumClasses() const
{
	return Base->Image->NumClasses() + (Overlay ? static_cast<uint32>(Overlay->OwnClasses.size()) : 0);
}

uint32 FRegistrySnapshot::NumFolders() const
{
	return Base->Image->GetTables().NumTexts(EZone::Folders) + (Overlay ? static_cast<uint32>(Overlay->OwnFolders.size()) : 0);
}

uint32 FRegistrySnapshot::GetFolderOf(uint32 Asset) const
{
	const FRow Row = GetAsset(Asset);
	const uint32 Folder = Row.GetTables().PackageFolders[Row.GetTables().AssetPackages[Row.Row]];
	return &Row.Part == Base.get() ? Folder : Overlay->Folders[Folder];
}

std::string_view FRegistrySnapshot::GetFolderPath(uint32 Folder) const
{
	const FRegistryTables& Tables = Base->Image->GetTables();
	const uint32 NumBase = Tables.NumTexts(EZone::Folders);
	return Folder < NumBase ? Tables.GetText(EZone::Folders, Folder)
							: Overlay->Part->Image->GetTables().GetText(EZone::Folders, Overlay->OwnFolders[Folder - NumBase]);
}

uint32 FRegistrySnapshot::NumPackages() const
{
	const uint32 NumBase = Base->Image->NumPackages();
	return Overlay ? NumBase - static_cast<uint32>(Overlay->Hidden.size()) + Overlay->Part->Image->NumPackages() : NumBase;
}

uint32 FRegistrySnapshot::NumAssets() const
{
	const uint32 NumBase = Base->Image->NumAssets();
	return Overlay ? NumBase - static_cast<uint32>(Overlay->NumHiddenAssets) + Overlay->Part->Image->NumAssets() : NumBase;
}

std::vector<int32> FRegistrySnapshot::CountAssetsByClass() const
{
	std::vector<int32> Counts(NumClasses());
	const FRegistryTables& Tables = Base->Image->GetTables();
	for (uint32 Class = 0; Class < Base->Image->NumClasses(); ++Class)
		Counts[Class] = static_cast<int32>(FRegistryTables::RangeOf(Tables.FirstClassAssets, Class).Num());
	if (!Overlay)
		return Counts;
	for (const uint32 Package : Overlay->Hidden)
	{
		const FRowRange Assets = FRegistryTables::RangeOf(Tables.FirstAssets, Package);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
			--Counts[Tables.AssetClasses[Asset]];
	}
	for (const uint32 Class : Overlay->Part->Image->GetTables().AssetClasses)
		++Counts[Overlay->Classes[Class]];
	return Counts;
}

int64 FRegistrySnapshot::NumDependencies() const
{
	const auto NumBase = static_cast<int64>(Base->Image->GetTables().DependencyTargets.size());
	return Overlay ? NumBase - Overlay->NumHiddenDependencies +
			static_cast<int64>(Overlay->Part->Image->GetTables().DependencyTargets.size())
				   : NumBase;
}
