#include "Quellar/Assets/ClassLookupUtils.h"

#include "Engine/Blueprint.h"
#include "Quellar/Assets/AssetRegistryUtils.h"

DEFINE_LOG_CATEGORY(LogClassLookupUtils);
DEFINE_LOG_CATEGORY(LogEditorClassViewer);

namespace
{
UClass* ResolveClass(const FString& NormalizedPath, const FString& Path)
{
	UClass* Class = FindClass(NormalizedPath);
	return Class ? Class : Cast<UClass>(StaticFindObject(UClass::StaticClass(), Path));
}

bool HasLoadedParent(const FAssetData& Asset, const FString& NormalizedPath, const FString& Path)
{
	const UBlueprint* Blueprint = Cast<UBlueprint>(Asset.GetAsset());
	const UClass* Parent = Blueprint ? Blueprint->ParentClass.Get() : nullptr;
	const UClass* Wanted = Parent ? ResolveClass(NormalizedPath, Path) : nullptr;
	return Wanted && Parent->IsChildOf(Wanted);
}
}

FString OrivaneClassLookupUtils::NormalizeClassPath(const FString& In)
{
	constexpr const char* WrapperStart = "Class'";
	constexpr const char* WrapperEnd = "'";
	FString Path = In;
	const int32 WrapperLength = FString(WrapperStart).Len();
	if (Path.StartsWith(WrapperStart) && Path.EndsWith(WrapperEnd) && Path.Len() > WrapperLength)
		Path = Path.Mid(WrapperLength, Path.Len() - WrapperLength - 1);
	const bool bNamesSomething = FTopLevelAssetPath(Path.View()).IsValid() || FSoftObjectPath(Path.View()).IsValid();
	return bNamesSomething ? Path : FString();
}

bool OrivaneClassLookupUtils::GetBlueprintNativeParent(const FString& BlueprintObjectPath, FString& OutNativeParentClassPath)
{
	const FAssetData Asset = OrivaneAssetRegistryUtils::GetAssetByPath(BlueprintObjectPath);
	return Asset.IsValid() && Asset.GetTagValue(FBlueprintTags::NativeParentClassPath, OutNativeParentClassPath);
}

int32 OrivaneClassLookupUtils::FindBlueprintsByNativeParent(
	const FString& NativeParentClassPath, TArray<FString>& OutBlueprintPaths, bool bRegistryOnly)
{
	OutBlueprintPaths.Empty();
	const FString Wanted = NormalizeClassPath(NativeParentClassPath);
	for (const FAssetData& Asset : OrivaneAssetRegistryUtils::FindAssetsByClass(UBlueprint::StaticClass(), false))
	{
		FString Tag;
		const bool bHasTag = Asset.GetTagValue(FBlueprintTags::NativeParentClassPath, Tag);
		const bool bMatches =
			bHasTag ? NormalizeClassPath(Tag) == Wanted : !bRegistryOnly && HasLoadedParent(Asset, Wanted, NativeParentClassPath);
		if (bMatches)
			OutBlueprintPaths.Add(Asset.GetObjectPathString());
	}
	return OutBlueprintPaths.Num();
}
