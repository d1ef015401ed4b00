#include "AssetRegistry/AssetPaths.h"

#include "Queries/PathSearch.h"
#include "Queries/RegistrySnapshot.h"

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
	if (Snapshot)
		FPathSearch(*Snapshot->Image, Query,
			[&](FRowRange Assets) {
				Visit({ToIndex(Assets.Begin), ToIndex(Assets.End)});
			})
			.Run();
}

int32 FAssetPathView::NumAssets() const
{
	return Snapshot ? ToIndex(Snapshot->Image->NumAssets()) : 0;
}

void FAssetPathView::AppendObjectPath(int32 Asset, FString& Out) const
{
	Snapshot->Image->AppendObjectPath(ToRow(Asset), Out);
}

int32 FAssetPathView::NumFolders() const
{
	return Snapshot ? ToIndex(Snapshot->Image->GetTables().NumTexts(EZone::Folders)) : 0;
}

int32 FAssetPathView::GetFolder(int32 Asset) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	return ToIndex(Tables.PackageFolders[Tables.AssetPackages[ToRow(Asset)]]);
}

FStringView FAssetPathView::GetFolderPath(int32 Folder) const
{
	return Snapshot->Image->GetTables().GetText(EZone::Folders, ToRow(Folder));
}

int32 FAssetPathView::FindEndOfFolder(FRange Assets) const
{
	const FRegistryTables& Tables = Snapshot->Image->GetTables();
	const uint32 End = Tables.AssetPackages[ToRow(Assets.End - 1)];
	uint32 Package = Tables.AssetPackages[ToRow(Assets.Begin)];
	const uint32 Folder = Tables.PackageFolders[Package];
	while (Package <= End && Tables.PackageFolders[Package] == Folder)
		++Package;
	return std::min(Assets.End, ToIndex(Tables.FirstAssets[Package]));
}

int32 FAssetPathView::NumClasses() const
{
	return Snapshot ? ToIndex(Snapshot->Image->NumClasses()) : 0;
}

int32 FAssetPathView::GetClass(int32 Asset) const
{
	return ToIndex(Snapshot->Image->GetTables().AssetClasses[ToRow(Asset)]);
}

FTopLevelAssetPath FAssetPathView::GetClassPath(int32 Class) const
{
	return Snapshot->Names.GetClass(ToRow(Class));
}
