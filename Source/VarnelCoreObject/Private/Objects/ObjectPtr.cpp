#include "CoreObject/Objects/ObjectPtr.h"

#include "Core/Base/SeededHash.h"
#include "CoreObject/Reflection/Class.h"
#include "Objects/ObjectLoading.h"
#include "Objects/ObjectTable.h"
#include "Objects/PathText.h"

FObjectPtr::FObjectPtr(const UObject* Object)
{
	if (!Object || FObjectTable::GetIndex(*Object) == INDEX_NONE)
		return;
	Index = FObjectTable::GetIndex(*Object);
	Serial = FObjectTable::Get().GetSerial(Index);
}

FObjectPtr::FObjectPtr(const FSoftObjectPath& InPath) : Package(InPath.Asset.PackageName), Inside(InPath.Asset.AssetName)
{
	if (!InPath.SubPath.IsEmpty())
		Inside = FName(Inside.ToString() + ":" + InPath.SubPath);
}

UObject* FObjectPtr::GetIfLoaded() const
{
	const FObjectTable& Table = FObjectTable::Get();
	if (UObject* const Object = Table.Resolve(Index, Serial))
		return Object;
	const UPackage* const Found = FindPackage(Package);
	UObject* const Object = Found && !Inside.IsNone() ? Found->FindInside(Inside.View()) : nullptr;
	if (!Object)
		return nullptr;
	Index = FObjectTable::GetIndex(*Object);
	Serial = Table.GetSerial(Index);
	return Object;
}

UObject* FObjectPtr::Get() const
{
	if (UObject* const Object = GetIfLoaded())
		return Object;
	if (Package.IsNone() || Inside.IsNone())
		return nullptr;
	const UPackage* const Found = FindPackage(Package);
	if (!Found || !Found->IsFullyLoaded())
		ObjectLoading::Load(UObject::StaticClass(), GetPath().ToString());
	return GetIfLoaded();
}

FSoftObjectPath FObjectPtr::GetPath() const
{
	if (Package.IsNone())
	{
		const UObject* const Object = FObjectTable::Get().Resolve(Index, Serial);
		return Object ? FSoftObjectPath(Object->GetPathName().View()) : FSoftObjectPath();
	}
	const FStringView Text = Inside.View();
	const std::size_t Colon = Text.find(':');
	FTopLevelAssetPath Asset(Package, Inside);
	if (Colon == FStringView::npos)
		return FSoftObjectPath(Asset, FString());
	Asset.AssetName = FName(Text.substr(0, Colon));
	return FSoftObjectPath(Asset, FString(Text.substr(Colon + 1)));
}

FName FObjectPtr::GetFName() const
{
	if (!Package.IsNone())
		return Inside.IsNone() ? FName() : FName(PathText::LastSegment(Inside.View()));
	const UObject* const Object = FObjectTable::Get().Resolve(Index, Serial);
	return Object ? Object->GetFName() : FName();
}

uint64 GetTypeHash(const FObjectPtr& Reference)
{
	const FSoftObjectPath Path = Reference.GetPath();
	return SeededHash::MixHash(GetTypeHash(Path.Asset), GetTypeHash(Path.SubPath));
}
