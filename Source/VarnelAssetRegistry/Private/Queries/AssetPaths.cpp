#include "AssetRegistry/AssetPaths.h"

#include "Queries/OverlayMerge.h"
#include "Queries/PathSearch.h"

#include <algorithm>

namespace
{
uint32 ToRow(int32 Index)
{
	return static_cast<uint32>(Index);
}

int32 ToIndex(uint32 Row)
{
	return static_cast<int32>(Row);
}
}

void FAssetPathView::Find(const FAssetPathQuery& Query, const std::function<void(FRange)>& Visit) const
{
	if (!Snapshot)
		return;
	const auto VisitAll = [&Visit](FRowRange Assets)
	{
		Visit({ToIndex(Assets.Begin), ToIndex(Assets.End)});
		return true;
	};
	if (!Snapshot->Overlay)
		return FPathSearch(*Snapshot->Base->Image, Query, VisitAll).Run();
	std::vector<uint32> Added;
	FPathSearch(*Snapshot->Overlay->Part->Image, Query,
		[&Added](FRowRange Assets)
		{
			for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
				Added.push_back(Asset);
		})
		.Run();
	FOverlayMerge Merge(*Snapshot, std::move(Added), VisitAll);
	FPathSearch(*Snapshot->Base->Image, Query, [&Merge](FRowRange Assets) { Merge.Take(Assets); }).Run();
	Merge.Finish();
}

int32 FAssetPathView::NumAssets() const
{
	return Snapshot ? ToIndex(Snapshot->NumAssets()) : 0;
}

void FAssetPathView::AppendObjectPath(int32 Asset, FString& Out) const
{
	Snapshot->AppendObjectPath(ToRow(Asset), Out);
}

int32 FAssetPathView::NumFolders() const
{
	return Snapshot ? ToIndex(Snapshot->NumFolders()) : 0;
}

int32 FAssetPathView::GetFolder(int32 Asset) const
{
	return ToIndex(Snapshot->GetFolderOf(ToRow(Asset)));
}

FStringView FAssetPathView::GetFolderPath(int32 Folder) const
{
	return Snapshot->GetFolderPath(ToRow(Folder));
}

int32 FAssetPathView::FindEndOfFolder(FRange Assets) const
{
	const FRegistrySnapshot::FRow First = Snapshot->GetAsset(ToRow(Assets.Begin)); // a range lies in one part
	const FRegistryTables& Tables = First.GetTables();
	const uint32 NumBefore = ToRow(Assets.Begin) - First.Row;
	const uint32 End = Tables.AssetPackages[ToRow(Assets.End - 1) - NumBefore];
	uint32 Package = Tables.AssetPackages[First.Row];
	const uint32 Folder = Tables.PackageFolders[Package];
	while (Package <= End && Tables.PackageFolders[Package] == Folder)
		++Package;
	return std::min(Assets.End, ToIndex(Tables.FirstAssets[Package] + NumBefore));
}

int32 FAssetPathView::NumClasses() const
{
	return Snapshot ? ToIndex(Snapshot->NumClasses()) : 0;
}

int32 FAssetPathView::GetClass(int32 Asset) const
{
	return ToIndex(Snapshot->GetClassOf(ToRow(Asset)));
}

FTopLevelAssetPath FAssetPathView::GetClassPath(int32 Class) const
{
	return Snapshot->GetClassPath(ToRow(Class));
}
