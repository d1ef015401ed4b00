#include "Image/RegistryImage.h"

#include "Core/Base/Checksum.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/Tasks.h"
#include "Image/AssetObjectPath.h"
#include "Image/RegistryColumns.h"
#include "Image/TableChecks.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <type_traits>

namespace
{
constexpr std::array<char, 8> ImageMagic = {'V', 'A', 'R', 'N', 'R', 'E', 'G', '\n'};
constexpr uint32 ImageMeaning = 7; // counts up when what is stored means something else though the list of columns is the same
constexpr uint32 OwnByteOrder = 0x01020304;
constexpr std::size_t ColumnAlignment = 64;
constexpr std::size_t ParallelBytes = 4 * 1024 * 1024; // smaller images are not worth the threads

/** Changes with every change to the list of columns. */
constexpr uint32 MakeVersion()
{
	uint32 Version = ImageMeaning;
	const auto Mix = [&Version](std::size_t Value) { Version = (Version ^ static_cast<uint32>(Value)) * 0x01000193; };
	const TRegistryColumns<TColumnType> Columns = {};
	ForEachColumn(
		[&Mix]<class TElement>(const FColumn& Column, const TColumnType<TElement>&)
		{
			for (const char Character : Column.Name)
				Mix(static_cast<unsigned char>(Character));
			for (const std::size_t Part : {static_cast<std::size_t>(Column.Rows), static_cast<std::size_t>(Column.Kind),
					 static_cast<std::size_t>(Column.Into), sizeof(TElement)})
				Mix(Part);
		},
		Columns);
	return Version;
}
constexpr uint32 ImageVersion = MakeVersion();

struct FColumnPlace
{
	uint64 Offset = 0;
	uint64 NumBytes = 0;
	uint64 Hash = 0;
};

struct FImageHeader
{
	std::array<char, 8> Magic = ImageMagic;
	uint32 ByteOrder = OwnByteOrder;
	uint32 Version = ImageVersion;
	uint64 NumBytes = 0; // of the image
	uint64 Hash = 0;	 // of this header, with zero in this place
	FImageKey Key;
	FZoneStarts ZoneStarts = {};
	std::array<FColumnPlace, NumColumns> Columns = {};
};
static_assert(std::has_unique_object_representations_v<FImageHeader>, "no byte of the header may be left to chance");

static_assert(sizeof(FImageHeader) <= FRegistryImage::NumStartBytes);

uint64 AlignUp(uint64 Offset)
{
	return (Offset + ColumnAlignment - 1) / ColumnAlignment * ColumnAlignment;
}

uint64 HashHeader(FImageHeader Header)
{
	Header.Hash = 0;
	return ChecksumOf(std::string_view(reinterpret_cast<const char*>(&Header), sizeof(Header)));
}

/** Places the columns one after the other. */
void PlaceColumns(const FRegistryDraft& Draft, FImageHeader& Header)
{
	uint64 End = sizeof(FImageHeader);
	std::size_t Index = 0;
	ForEachColumn(
		[&](const FColumn&, const auto& Column)
		{
			FColumnPlace& Place = Header.Columns[Index++];
			Place.Offset = AlignUp(End);
			Place.NumBytes = Column.size() * sizeof(Column[0]);
			End = Place.Offset + Place.NumBytes;
		},
		Draft);
	Header.NumBytes = AlignUp(End);
}

/** Moves the columns to their places; what lies between them is zero. */
void CopyColumns(FRegistryDraft& Draft, FImageHeader& Header, char* Target)
{
	uint64 End = sizeof(FImageHeader);
	std::size_t Index = 0;
	ForEachColumn(
		[&](const FColumn&, auto& Column)
		{
			FColumnPlace& Place = Header.Columns[Index++];
			std::memset(Target + End, 0, Place.Offset - End);
			if (Place.NumBytes > 0)
				std::memcpy(Target + Place.Offset, Column.data(), Place.NumBytes);
			Place.Hash = ChecksumOf(std::string_view(Target + Place.Offset, Place.NumBytes));
			End = Place.Offset + Place.NumBytes;
			Column = {};
		},
		Draft);
	std::memset(Target + End, 0, Header.NumBytes - End);
}

/** Points the columns into the bytes of an image whose places are known to be right. */
void SetColumns(std::string_view Bytes, const FImageHeader& Header, FRegistryTables& Tables)
{
	std::size_t Index = 0;
	ForEachColumn(
		[&]<class TElement>(const FColumn&, std::span<const TElement>& Column)
		{
			const FColumnPlace& Place = Header.Columns[Index++];
			Column = {reinterpret_cast<const TElement*>(Bytes.data() + Place.Offset), Place.NumBytes / sizeof(TElement)};
		},
		Tables);
	Tables.ZoneStarts = Header.ZoneStarts;
}

bool ReadHeader(std::string_view Bytes, FImageHeader& Header)
{
	if (Bytes.size() < sizeof(Header))
		return false;
	std::memcpy(&Header, Bytes.data(), sizeof(Header));
	return Header.Magic == ImageMagic && Header.ByteOrder == OwnByteOrder && Header.Version == ImageVersion;
}

/** Every column lies where Build would have put it, and holds whole elements. */
bool ArePlacesSound(std::size_t NumBytes, const FImageHeader& Header)
{
	uint64 End = sizeof(FImageHeader);
	std::size_t Index = 0;
	bool bSound = Header.NumBytes == NumBytes;
	const TRegistryColumns<TColumnType> Columns = {};
	ForEachColumn(
		[&]<class TElement>(const FColumn&, const TColumnType<TElement>&)
		{
			const FColumnPlace& Place = Header.Columns[Index++];
			bSound = bSound && Place.Offset == AlignUp(End) && Place.Offset <= NumBytes &&
				Place.NumBytes <= NumBytes - Place.Offset && Place.NumBytes % sizeof(TElement) == 0;
			End = Place.Offset + Place.NumBytes;
		},
		Columns);
	return bSound && AlignUp(End) == NumBytes;
}

bool AreHashesRight(std::string_view Bytes, const FImageHeader& Header)
{
	std::atomic<bool> bRight = true;
	const auto Check = [&](int32 Column, int32, int32)
	{
		const FColumnPlace& Place = Header.Columns[static_cast<std::size_t>(Column)];
		if (ChecksumOf(Bytes.substr(Place.Offset, Place.NumBytes)) != Place.Hash)
			bRight = false;
	};
	ParallelFor(static_cast<int32>(NumColumns), 1, Check, Bytes.size() < ParallelBytes ? 1 : 0);
	return bRight;
}
}

TSharedPtr<const FRegistryImage> FRegistryImage::Build(FRegistryDraft&& Draft, const FImageKey& Key)
{
	FImageHeader Header;
	Header.Key = Key;
	Header.ZoneStarts = Draft.ZoneStarts;
	PlaceColumns(Draft, Header);
	const auto Image = MakeShared<FRegistryImage>();
	Image->Bytes = FImageBytes::Allocate(Header.NumBytes);
	CopyColumns(Draft, Header, Image->Bytes.GetWritable());
	Header.Hash = HashHeader(Header);
	std::memcpy(Image->Bytes.GetWritable(), &Header, sizeof(Header));
	Image->Key = Key;
	SetColumns(Image->Bytes.View(), Header, Image->Tables);
	return Image;
}

EImageState FRegistryImage::LookAtStart(std::string_view Start, std::size_t NumFileBytes)
{
	FImageHeader Header;
	if (!ReadHeader(Start, Header))
		return EImageState::Foreign;
	const bool bSound = HashHeader(Header) == Header.Hash && ArePlacesSound(NumFileBytes, Header);
	return bSound ? EImageState::Sound : EImageState::Damaged;
}

TSharedPtr<const FRegistryImage> FRegistryImage::Open(FImageBytes Bytes, EImageState& OutState)
{
	OutState = LookAtStart(Bytes.View(), Bytes.View().size());
	if (OutState != EImageState::Sound)
		return nullptr;
	OutState = EImageState::Damaged;
	FImageHeader Header;
	if (!ReadHeader(Bytes.View(), Header) || !AreHashesRight(Bytes.View(), Header))
		return nullptr;
	const auto Image = MakeShared<FRegistryImage>();
	Image->Bytes = std::move(Bytes);
	Image->Key = Header.Key;
	SetColumns(Image->Bytes.View(), Header, Image->Tables);
	if (!AreTablesSound(Image->Tables))
		return nullptr;
	OutState = EImageState::Sound;
	return Image;
}

TSharedPtr<const FRegistryImage> FRegistryImage::MakeEmpty()
{
	FRegistryDraft Draft;
	ForEachColumn([](const FColumn& Column, auto& Elements) { Elements.resize(Column.HasEnd() ? 1 : 0); }, Draft);
	return Build(std::move(Draft), {});
}

uint32 FRegistryImage::FindNode(std::string_view Name) const
{
	const std::string Folded = Unicode::Fold(Name);
	const uint32 Package = FindSorted(EZone::Nodes, {0, NumPackages()}, Folded);
	return Package != NoId ? Package : FindSorted(EZone::Nodes, {NumPackages(), NumNodes()}, Folded);
}

uint32 FRegistryImage::FindPackage(std::string_view Name) const
{
	return FindSorted(EZone::Nodes, {0, NumPackages()}, Unicode::Fold(Name));
}

/** First of a zone's sorted texts that is not below a folded text; the end of the range when all are. */
uint32 FRegistryImage::LowerBound(EZone Zone, FRowRange Sorted, std::string_view Folded) const
{
	uint32 Begin = Sorted.Begin;
	for (uint32 Num = Sorted.Num(); Num > 0;)
	{
		const uint32 Half = Num / 2;
		const bool bBelow = Tables.GetFolded(Zone, Begin + Half) < Folded;
		Begin = bBelow ? Begin + Half + 1 : Begin;
		Num = bBelow ? Num - Half - 1 : Half;
	}
	return Begin;
}

uint32 FRegistryImage::FindSorted(EZone Zone, FRowRange Sorted, std::string_view Folded) const
{
	const uint32 Found = LowerBound(Zone, Sorted, Folded);
	return Found < Sorted.End && Tables.GetFolded(Zone, Found) == Folded ? Found : NoId;
}

uint32 FRegistryImage::FindClass(std::string_view Path) const
{
	return FindSorted(EZone::Classes, {0, NumClasses()}, Unicode::Fold(Path));
}

FRowRange FRegistryImage::FindPackagesBelow(std::string_view Folder) const
{
	std::string Prefix = Unicode::Fold(Folder) + '/';
	const FRowRange Packages = {0, NumPackages()};
	const uint32 Begin = LowerBound(EZone::Nodes, Packages, Prefix);
	Prefix.back() = '/' + 1;
	return {Begin, std::max(Begin, LowerBound(EZone::Nodes, Packages, Prefix))};
}

FRowRange FRegistryImage::FindFolders(std::string_view Folder) const
{
	const std::string Folded = Unicode::Fold(Folder);
	const uint32 NumFolders = Tables.NumTexts(EZone::Folders);
	const uint32 Begin = LowerBound(EZone::Folders, {0, NumFolders}, Folded);
	uint32 End = Begin;
	while (End < NumFolders && Tables.GetFolded(EZone::Folders, End) == Folded)
		++End;
	return {Begin, End};
}

void FRegistryImage::GatherDerivedClasses(uint32 Class, std::vector<uint32>& OutClasses) const
{
	std::size_t Next = OutClasses.size();
	OutClasses.push_back(Class);
	for (; Next < OutClasses.size(); ++Next)
	{
		const FRowRange Children = FRegistryTables::RangeOf(Tables.FirstClassChildren, OutClasses[Next]);
		OutClasses.insert(
			OutClasses.end(), Tables.ClassChildren.begin() + Children.Begin, Tables.ClassChildren.begin() + Children.End);
	}
}

std::string_view FRegistryImage::GetAssetName(uint32 Asset) const
{
	if (const uint32 Name = Tables.AssetNames[Asset]; Name != NoId)
		return Tables.GetText(EZone::Names, Name);
	const std::string_view PackageName = Tables.GetText(EZone::Nodes, Tables.AssetPackages[Asset]);
	return PackageName.substr(PackageName.rfind('/') + 1); // npos + 1 is the start
}

std::string_view FRegistryImage::GetAssetOuter(uint32 Asset) const
{
	const uint32 Outer = Tables.AssetOuters[Asset];
	return Outer == NoId ? std::string_view() : Tables.GetText(EZone::Names, Outer);
}

void FRegistryImage::AppendObjectPath(uint32 Asset, FString& Out) const
{
	const std::string_view PackageName = Tables.GetText(EZone::Nodes, Tables.AssetPackages[Asset]);
	AppendAssetObjectPath(Out, PackageName, GetAssetOuter(Asset), GetAssetName(Asset));
}

uint32 FRegistryImage::GetRootOfFile(uint32 File) const
{
	const auto Above = std::upper_bound(Tables.FirstRootFiles.begin(), Tables.FirstRootFiles.end(), File);
	return static_cast<uint32>(Above - Tables.FirstRootFiles.begin()) - 1;
}

std::string FRegistryImage::GetRelativePath(uint32 File) const
{
	const std::string_view Root = Tables.GetText(EZone::Files, Tables.RootNames[GetRootOfFile(File)]);
	std::string_view Path = Tables.GetText(EZone::Nodes, Tables.FilePackages[File]);
	Path.remove_prefix(std::min(Path.size(), Root.size() + 1));
	return std::string(Path).append(Tables.GetText(EZone::Files, Tables.FileExtensions[File]));
}
