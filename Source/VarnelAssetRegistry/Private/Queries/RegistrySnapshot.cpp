#include "Queries/RegistrySnapshot.h"

#include "Image/FolderText.h"

FRegistrySnapshot::FRegistrySnapshot(TSharedPtr<const FRegistryImage> InImage, const FRegistryScanOptions& Options)
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

FAssetData FRegistrySnapshot::MakeAssetData(uint32 Asset) const
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
