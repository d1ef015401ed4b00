#include "CoreObject/ObjectPath.h"

#include <functional>

namespace
{
/** The path inside the export form Class'/Game/A.A', where the class may be a path too; anything else as it is. */
FStringView StripExportForm(FStringView Text)
{
	const std::size_t Quote = Text.find('\'');
	const bool bExportForm = Quote != FStringView::npos && Quote + 1 < Text.size() && Text.back() == '\'';
	return bExportForm ? Text.substr(Quote + 1, Text.size() - Quote - 2) : Text;
}

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
	if (Asset.empty() || Asset.find_first_of(".:/'") != FStringView::npos)
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
	return GetTypeHash(Path.PackageName) * 31 + GetTypeHash(Path.AssetName);
}

FSoftObjectPath::FSoftObjectPath(FStringView Text)
{
	Text = StripExportForm(Text);
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
