#include "Assets/ReferencedName.h"

#include "Engine/Blueprint.h"
#include "Quellar/Assets/AssetRegistryUtils.h"

namespace
{
constexpr const char* ScriptRoot = "/Script/";
constexpr const char* GeneratedSuffix = "_C";

bool IsBelowScript(FName PackageName)
{
	return PackageName.ToString().StartsWith(ScriptRoot);
}

FName NameIfOfClass(const UObject* Object, const UClass& Class)
{
	return Object && Object->IsA(&Class) ? Object->GetFName() : FName();
}

bool IsBlueprint(const FAssetData& Asset)
{
	const UClass* const Class =
		IsBelowScript(Asset.AssetClassPath.PackageName) ? FindClass(Asset.AssetClassPath.ToString()) : nullptr;
	return Class && Class->IsChildOf(UBlueprint::StaticClass()) && Asset.OuterPath.IsNone();
}

/** The class's name as the file of its Blueprint spells it; None where no Blueprint makes such a class. */
FName FindGeneratedClass(const IAssetRegistry& Registry, const FTopLevelAssetPath& Path)
{
	TArray<FAssetData> Assets;
	Registry.GetAssetsByPackageName(Path.PackageName, Assets, false, false);
	for (const FAssetData& Asset : Assets)
	{
		const FName ClassName(Asset.AssetName.ToString() + GeneratedSuffix);
		if (ClassName == Path.AssetName && IsBlueprint(Asset))
			return ClassName;
	}
	return {};
}

/** Objects of the class can be made, and are objects of Wanted. */
bool MakesObjectsOf(const IAssetRegistry& Registry, const FTopLevelAssetPath& Class, const UClass& Wanted)
{
	if (IsBelowScript(Class.PackageName))
	{
		const UClass* const Declared = FindClass(Class.ToString());
		return Declared && !Declared->IsAbstract() && Declared->IsChildOf(&Wanted);
	}
	TArray<FTopLevelAssetPath> Ancestors = {UObject::StaticClass()->GetStructPathName()};
	Registry.GetAncestorClasses(Class, Ancestors);
	return !FindGeneratedClass(Registry, Class).IsNone() && Ancestors.Contains(Wanted.GetStructPathName());
}

FName FindListedName(const FSoftObjectPath& Path, const UClass& Class)
{
	const IAssetRegistry* const Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	if (!Registry)
		return {};
	const FAssetData Asset = Registry->GetAssetByObjectPath(Path, false, false);
	if (Asset.IsValid())
		return MakesObjectsOf(*Registry, Asset.AssetClassPath, Class) ? Asset.AssetName : FName();
	const bool bMayBeClass = Path.SubPath.IsEmpty() && UClass::StaticClass()->IsChildOf(&Class);
	return bMayBeClass ? FindGeneratedClass(*Registry, Path.Asset) : FName();
}
}

FName FindReferencedName(const FObjectPtr& Reference, const UObject& Holder, const UClass& Class)
{
	const FSoftObjectPath Path = Reference.GetPath();
	const FName Package = Path.Asset.PackageName;
	if (IsBelowScript(Package) || Package == Holder.GetPackage()->GetFName())
		return NameIfOfClass(Reference.GetIfLoaded(), Class);
	return Path.IsValid() ? FindListedName(Path, Class) : FName();
}
