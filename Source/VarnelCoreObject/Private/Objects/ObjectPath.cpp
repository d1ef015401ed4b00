#include "CoreObject/Objects/ObjectPath.h"

#include "Core/Base/SeededHash.h"
#include "CoreObject/Objects/PackageName.h"

namespace
{
bool NamesPackage(FStringView Text)
{
	return Text.size() > 1 && Text.front() == '/' && Text.back() != '/';
}

FString Join(FStringView Left, char Separator, FStringView Right)
{
	FString Joined(Left);
	Joined.Reserve(static_cast<int32>(Left.size() + 1 + Right.size()));
	Joined += Separator;
	Joined += Right;
	return Joined;
}
}

FTopLevelAssetPath::FTopLevelAssetPath(FStringView Text)
{
	const std::size_t Dot = Text.find('.');
	if (Dot == FStringView::npos || !NamesPackage(Text.substr(0, Dot)))
		return;
	const FStringView Asset = Text.substr(Dot + 1);
	if (Asset.empty() || Asset.find_first_of(".:/") != FStringView::npos)
		return;
	PackageName = FName(Text.substr(0, Dot));
	AssetName = FName(Asset);
}

FString FTopLevelAssetPath::ToString() const
{
	return IsValid() ? Join(PackageName.View(), '.', AssetName.View()) : FString();
}

uint64 GetTypeHash(const FTopLevelAssetPath& Path)
{
	return SeededHash::MixHash(GetTypeHash(Path.PackageName), GetTypeHash(Path.AssetName));
}

FSoftObjectPath::FSoftObjectPath(FStringView Text)
{
	Text = FPackageName::ExportTextPathToObjectPath(Text);
	const FStringView PackagePart = Text.substr(0, Text.find_first_of(".:"));
	if (!NamesPackage(PackagePart))
		return;
	if (PackagePart.size() == Text.size())
	{
		Asset.PackageName = FName(PackagePart);
		return;
	}
	const std::size_t Colon = Text.find(':');
	if (Colon != FStringView::npos && Colon + 1 == Text.size())
		return;
	Asset = FTopLevelAssetPath(Text.substr(0, Colon));
	if (Asset.IsValid() && Colon != FStringView::npos)
		SubPath = FString(Text.substr(Colon + 1));
}

FString FSoftObjectPath::ToString() const
{
	if (!Asset.IsValid())
		return IsNull() ? FString() : Asset.PackageName.ToString();
	return SubPath.IsEmpty() ? Asset.ToString() : Join(Asset.ToString(), ':', SubPath);
}
