#include "Packages/VassetHeader.h"

#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "Declarations/BlueprintClasses.h"
#include "Objects/PathText.h"

namespace
{
constexpr std::array<std::string_view, 5> AssetKeys{"name", "class", "tags", "outer", "registry_filtered"};
constexpr std::array<std::string_view, 3> DependencyKeys{"package", "hard", "game"};
constexpr std::array<std::string_view, 4> IndexEntryKeys{"category", "text", "comment", "children"};

constexpr std::size_t MaxKeptBuckets = 4096; // a table that one huge file has grown would make clearing slow for all later ones

template <class TTable>
void Clear(TTable& Table)
{
	if (Table.bucket_count() > MaxKeptBuckets)
		Table = TTable();
	else
		Table.clear();
}
}

bool HasWholeHeaderBeforeBody(const FJsonRef& Root)
{
	constexpr uint32 Whole = (1u << (VassetKeys::All.size() - 1)) - 1; // a bit for each member but the body
	uint32 Seen = 0;
	for (const FJsonRef Member : Root)
	{
		const auto Key = std::find(VassetKeys::All.begin(), VassetKeys::All.end(), Member.Key());
		if (Member.Key() == VassetKeys::Objects)
			break;
		if (Key != VassetKeys::All.end())
			Seen |= 1u << (Key - VassetKeys::All.begin());
	}
	return Seen == Whole;
}

std::size_t FVassetHeaderReader::FHashFolded::operator()(std::string_view Text) const
{
	return static_cast<std::size_t>(Unicode::HashFolded(Text));
}

std::size_t FVassetHeaderReader::FHashFolded::operator()(const FAssetKey& Key) const
{
	return SeededHash::MixHash((*this)(Key.Name), Key.Outer.empty() ? 0 : (*this)(Key.Outer));
}

bool FVassetHeaderReader::FEqualFolded::operator()(std::string_view A, std::string_view B) const
{
	return Unicode::EqualsFolded(A, B);
}

bool FVassetHeaderReader::FEqualFolded::operator()(const FAssetKey& A, const FAssetKey& B) const
{
	return (*this)(A.Name, B.Name) && (*this)(A.Outer, B.Outer);
}

void FVassetHeaderReader::Read(const FJsonRef& Root, FJsonFaults& InFaults, FPackageHeader& Out)
{
	Reset(InFaults, Out);
	const auto [Version, Assets, Dependencies, Index, Body] = Faults->TakeMembers(Root, VassetKeys::All);
	Faults->ReportRepeatedKeys();
	if (Faults->IsArray(Assets))
	{
		for (const FJsonRef Asset : Assets)
			ReadAsset(Asset);
	}
	if (Faults->IsArray(Dependencies))
	{
		for (const FJsonRef Dependency : Dependencies)
			ReadDependency(Dependency);
	}
	if (Faults->IsArray(Index))
	{
		ReadIndexEntries(Index, 0);
		CheckIndexOwner(Index);
	}
}

void FVassetHeaderReader::Reset(FJsonFaults& InFaults, FPackageHeader& Out)
{
	Faults = &InFaults;
	Header = &Out;
	Header->Reset();
	PackageName.Empty();
	Clear(AssetPlaces);
	Clear(DependencyPlaces);
	Clear(TagPlaces);
}

void FVassetHeaderReader::ReadAsset(const FJsonRef& Json)
{
	if (!Faults->IsObject(Json))
		return;
	const auto [Name, Class, Tags, Outer, Filtered] = Faults->TakeMembers(Json, AssetKeys);
	FPackageHeader::FAsset Asset;
	if (!Faults->RequireText(Json, Name, "name", Asset.Name) || !Faults->RequireText(Json, Class, "class", Asset.Class) ||
		!Faults->AcceptText(Outer, Asset.Outer) || !IsUsableAsset(Json, Asset))
		return;
	Faults->AcceptBool(Filtered, Asset.bRegistryFiltered);
	if (Faults->IsObject(Tags))
		ReadTags(Tags, Asset);
	Header->Assets.push_back(Asset);
}

bool FVassetHeaderReader::IsUsableAsset(const FJsonRef& Json, const FPackageHeader::FAsset& Asset)
{
	const auto Fail = [this, &Json](const char* Key, const char* Rule, const FString& Text)
	{
		Faults->Error(Json.Find(Key).Offset(), Rule, Text + "; the asset is left out");
		return false;
	};
	if (!PathText::IsObjectName(Asset.Name))
		return Fail("name", "bad-name", FJsonFaults::Quote(Asset.Name) + " is not a valid asset name");
	if (!PathText::IsTopLevelPath(Asset.Class))
		return Fail(
			"class", "bad-class", FJsonFaults::Quote(Asset.Class) + " is not a class path such as '/Script/Engine.DataTable'");
	if (!Asset.Outer.empty() && !(PathText::IsObjectPath(Asset.Outer) && IsInThisPackage(Asset.Outer)))
		return Fail("outer", "bad-outer", FJsonFaults::Quote(Asset.Outer) + " does not name an object in this package");
	if (!AssetPlaces.insert({FAssetKey{Asset.Outer, Asset.Name}, Header->Assets.size()}).second)
		return Fail("name", "repeated-asset", FJsonFaults::Quote(Asset.Name) + " is an asset of this package already");
	return true;
}

bool FVassetHeaderReader::IsInThisPackage(std::string_view ObjectPath)
{
	const FStringView Outer = PathText::PackageOf(ObjectPath);
	if (PackageName.IsEmpty())
		FPackageName::TryConvertFilenameToLongPackageName(Faults->GetFileName(), PackageName);
	if (PackageName.IsEmpty()) // no mounted folder holds the file: its name is all that is known
		return Unicode::EqualsFolded(FPackageName::GetShortName(Outer), FPaths::GetBaseFilename(Faults->GetFileName()));
	return Unicode::EqualsFolded(Outer, PackageName);
}

void FVassetHeaderReader::ReadTags(const FJsonRef& Json, FPackageHeader::FAsset& Asset)
{
	Asset.FirstTag = static_cast<uint32>(Header->Tags.size());
	for (const FJsonRef Member : Json)
	{
		FPackageHeader::FTag Tag{Member.Key(), {}};
		if (Faults->AcceptText(Member, Tag.Value))
			AddTag(Tag);
	}
	Asset.NumTags = static_cast<uint32>(Header->Tags.size()) - Asset.FirstTag;
}

void FVassetHeaderReader::AddTag(const FPackageHeader::FTag& Tag)
{
	if (!Faults->GetDocument().GetRepeatedKeys().empty())
	{
		const auto [Place, bIsNew] = TagPlaces.insert({FTagKey{Header->Assets.size(), Tag.Key}, Header->Tags.size()});
		if (!bIsNew)
		{
			Header->Tags[Place->second].Value = Tag.Value;
			return;
		}
	}
	Header->Tags.push_back(Tag);
}

void FVassetHeaderReader::ReadDependency(const FJsonRef& Json)
{
	if (!Faults->IsObject(Json))
		return;
	const auto [Package, Hard, Game] = Faults->TakeMembers(Json, DependencyKeys);
	FPackageHeader::FDependency Dependency;
	if (!Faults->RequireText(Json, Package, "package", Dependency.Package))
		return;
	if (!FPackageName::IsValidLongPackageName(Dependency.Package))
		return Faults->Error(Package.Offset(), "bad-package",
			FJsonFaults::Quote(Dependency.Package) + " is not a long package name such as '/Game/AI/BT_Guard'");
	bool bHard = true;
	bool bGame = true;
	Faults->AcceptBool(Hard, bHard);
	Faults->AcceptBool(Game, bGame);
	Dependency.Flags = static_cast<uint8>((bHard ? EDependencyFlags::Hard : 0) | (bGame ? EDependencyFlags::Game : 0));
	const auto [Place, bIsNew] = DependencyPlaces.insert({Dependency.Package, Header->Dependencies.size()});
	if (bIsNew)
		return Header->Dependencies.push_back(Dependency);
	Header->Dependencies[Place->second].Flags |= Dependency.Flags;
	if (Faults->IsHeard())
		Faults->Warn(Package.Offset(), "repeated-dependency",
			FJsonFaults::Quote(Dependency.Package) + " is listed before; the flags of both count");
}

void FVassetHeaderReader::ReadIndexEntries(const FJsonRef& Json, uint32 Depth)
{
	for (const FJsonRef Element : Json)
	{
		if (!Faults->IsObject(Element))
			continue;
		const auto [Category, Text, Comment, Children] = Faults->TakeMembers(Element, IndexEntryKeys);
		FPackageHeader::FIndexEntry Entry;
		Entry.Depth = Depth;
		if (!Faults->RequireText(Element, Category, "category", Entry.Category) ||
			!Faults->RequireText(Element, Text, "text", Entry.Text))
			continue;
		Faults->AcceptText(Comment, Entry.Comment);
		Header->IndexEntries.push_back(Entry);
		if (Faults->IsArray(Children))
			ReadIndexEntries(Children, Depth + 1);
	}
}

void FVassetHeaderReader::CheckIndexOwner(const FJsonRef& Index)
{
	if (!Faults->IsHeard() || Header->IndexEntries.empty())
		return;
	for (const FPackageHeader::FAsset& Asset : Header->Assets)
	{
		if (BlueprintClasses::Contains(Asset.Class))
			return;
	}
	Faults->Warn(Index.KeyOffset(), "index-without-blueprint",
		"no asset of the package is of a Blueprint class, so its search entries are ignored");
}
