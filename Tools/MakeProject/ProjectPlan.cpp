#include "ProjectPlan.h"
#include "Names.h"

#include <algorithm>
#include <numeric>

FProjectPlan::FProjectPlan(const FProjectOptions& InOptions)
	: Options(InOptions)
	, Tree(InOptions.NumAssets, MakeRandom(EPurpose::Features, 0).Next64())
{
	CountClasses();
	PlacePackages();
	SortByFolder();
	NamePackages();
}

FRange FProjectPlan::PackagesOf(EAssetClass Class) const
{
	const uint32 Index = static_cast<uint32>(Class);
	return {Index == 0 ? 0 : ClassEnd[Index - 1], ClassEnd[Index]};
}

EAssetClass FProjectPlan::ClassOf(uint32 Package) const
{
	return static_cast<EAssetClass>(std::upper_bound(std::begin(ClassEnd), std::end(ClassEnd), Package) - std::begin(ClassEnd));
}

std::string_view FProjectPlan::NameOf(uint32 Package) const
{
	return std::string_view(Names).substr(NameBegin[Package], NameBegin[Package + 1] - NameBegin[Package]);
}

void FProjectPlan::AppendLongName(std::string& Out, uint32 Package) const
{
	Out += FolderOf(Package).LongPath;
	Out += '/';
	Out += NameOf(Package);
}

void FProjectPlan::AppendObjectPath(std::string& Out, uint32 Package) const
{
	AppendLongName(Out, Package);
	Out += '.';
	Out += NameOf(Package);
}

void FProjectPlan::CountClasses()
{
	uint32 Counts[NumAssetClasses] = {};
	uint32 Shares[NumAssetClasses] = {};
	for (uint32 Class = 0; Class < NumAssetClasses; ++Class)
	{
		const FAssetClassRow& Row = RowOf(static_cast<EAssetClass>(Class));
		Shares[Class] = Options.Families.test(static_cast<std::size_t>(Row.Family)) ? Row.PerThousand : 0;
	}
	const uint32 AllShares = std::accumulate(std::begin(Shares), std::end(Shares), 0u);
	for (uint32 Class = 0; Class < NumAssetClasses; ++Class)
		Counts[Class] = static_cast<uint32>(static_cast<uint64>(Options.NumAssets) * Shares[Class] / AllShares);

	// Small projects show every class too; what rounding gains or loses, the largest classes pay or get.
	if (Options.NumAssets >= NumAssetClasses)
	{
		for (uint32 Class = 0; Class < NumAssetClasses; ++Class)
			Counts[Class] = std::max(Counts[Class], Shares[Class] == 0 ? 0u : 1u);
	}
	while (std::accumulate(std::begin(Counts), std::end(Counts), 0u) > Options.NumAssets)
		--*std::max_element(std::begin(Counts), std::end(Counts));
	const auto Largest = std::max_element(std::begin(Shares), std::end(Shares)) - std::begin(Shares);
	Counts[Largest] += Options.NumAssets - std::accumulate(std::begin(Counts), std::end(Counts), 0u);
	std::partial_sum(std::begin(Counts), std::end(Counts), std::begin(ClassEnd));
}

void FProjectPlan::PlacePackages()
{
	std::vector<bool> bSlotUsed(Tree.GetFeatures().size() * NumFolderKinds, false);
	FolderIndex.resize(Options.NumAssets);
	for (uint32 Package = 0; Package < Options.NumAssets; ++Package)
	{
		const FAssetClassRow& Row = RowOf(ClassOf(Package));
		FRandom Random = MakeRandom(EPurpose::Places, Package);
		const uint32 Feature = Tree.Pick(Random, Row.Area);
		const EFolderKind Kind = Tree.GetFeatures()[Feature].bSortedByKind ? Row.Kind : EFolderKind::Unsorted;
		FolderIndex[Package] = Feature * NumFolderKinds + static_cast<uint32>(Kind);
		bSlotUsed[FolderIndex[Package]] = true;
	}
	MakeFolders(bSlotUsed);
}

void FProjectPlan::MakeFolders(const std::vector<bool>& bSlotUsed)
{
	std::vector<uint32> FolderOfSlot(bSlotUsed.size());
	for (uint32 Slot = 0; Slot < bSlotUsed.size(); ++Slot)
	{
		if (!bSlotUsed[Slot])
			continue;
		const FFeature& Feature = Tree.GetFeatures()[Slot / NumFolderKinds];
		const std::string_view Kind = FolderNameOf(static_cast<EFolderKind>(Slot % NumFolderKinds));
		const std::string Below = Kind.empty() ? std::string() : "/" + std::string(Kind);
		FolderOfSlot[Slot] = static_cast<uint32>(Folders.size());
		Folders.push_back({Feature.LongPath + Below, Feature.DiskPath + Below, Slot / NumFolderKinds, {}, {}});
	}

	for (uint32& Index : FolderIndex)
		Index = FolderOfSlot[Index];
}

void FProjectPlan::SortByFolder()
{
	std::vector<uint32> Next(Folders.size() + 1, 0);
	for (const uint32 Folder : FolderIndex)
		++Next[Folder + 1];
	std::partial_sum(Next.begin(), Next.end(), Next.begin());
	for (uint32 Folder = 0; Folder < Folders.size(); ++Folder)
		Folders[Folder].Packages = {Next[Folder], Next[Folder + 1]};

	PackagesByFolder.resize(Options.NumAssets);
	for (uint32 Package = 0; Package < Options.NumAssets; ++Package)
		PackagesByFolder[Next[FolderIndex[Package]]++] = Package;
	FindNeighbours();
}

void FProjectPlan::FindNeighbours()
{
	for (uint32 First = 0; First < Folders.size();)
	{
		uint32 End = First + 1;
		while (End < Folders.size() && Folders[End].Feature == Folders[First].Feature)
			++End;
		const FRange Neighbours = {Folders[First].Packages.Begin, Folders[End - 1].Packages.End};
		for (; First < End; ++First)
			Folders[First].Neighbours = Neighbours;
	}
}

void FProjectPlan::NamePackages()
{
	FNameBook Book(Options.NumAssets);
	Names.reserve(static_cast<std::size_t>(Options.NumAssets) * 24);
	NameBegin.reserve(Options.NumAssets + 1);
	for (uint32 Package = 0; Package < Options.NumAssets; ++Package)
	{
		NameBegin.push_back(static_cast<uint32>(Names.size()));
		FRandom Random = MakeRandom(EPurpose::Names, Package);
		const FFeature& Feature = Tree.GetFeatures()[FolderOf(Package).Feature];
		Book.AppendNew(Names, RowOf(ClassOf(Package)), FolderIndex[Package], Feature.Subject, Random);
	}
	NameBegin.push_back(static_cast<uint32>(Names.size()));
}
