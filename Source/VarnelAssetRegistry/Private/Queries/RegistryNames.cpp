#include "Queries/RegistryNames.h"

#include <atomic>
#include <bit>
#include <cstdlib>
#include <new>

namespace
{
/** The name at Place, made from MakeText's text at the first call. Threads that come together make the same name. */
template <class TMakeText>
FName Take(FName& Place, TMakeText MakeText)
{
	static_assert(sizeof(FName) == std::atomic_ref<FName>::required_alignment);
	const std::atomic_ref<FName> Shared(Place);
	FName Name = Shared.load(std::memory_order_acquire);
	if (!Name.IsNone())
		return Name;
	Name = FName(MakeText());
	Shared.store(Name, std::memory_order_release);
	return Name;
}

std::size_t FirstSlot(FName Name, std::size_t NumSlots)
{
	return (GetTypeHash(Name) >> 32) & (NumSlots - 1);
}
}

void FRegistryNames::FFree::operator()(void* Memory) const
{
	std::free(Memory);
}

template <class T>
FRegistryNames::TLazyColumn<T> FRegistryNames::MakeColumn(std::size_t Num)
{
	// calloc leaves fresh pages of large blocks untouched; zero bytes are the empty name.
	void* const Memory = std::calloc(Num + 1, sizeof(T));
	if (!Memory)
		throw std::bad_alloc();
	return TLazyColumn<T>(static_cast<T*>(Memory));
}

FRegistryNames::FRegistryNames(const FRegistryImage& InImage)
	: Image(InImage)
	, NumSlots(std::bit_ceil(2 * std::size_t{InImage.NumNodes()} + 2))
	, Nodes(MakeColumn<FName>(InImage.NumNodes()))
	, Folders(MakeColumn<FName>(InImage.GetTables().NumTexts(EZone::Folders)))
	, AssetNames(MakeColumn<FName>(InImage.NumAssets()))
	, ClassPackages(MakeColumn<FName>(InImage.NumClasses()))
	, ClassNames(MakeColumn<FName>(InImage.NumClasses()))
	, Slots(MakeColumn<uint64>(NumSlots))
{
}

FName FRegistryNames::GetNode(uint32 Node) const
{
	return Take(Nodes[Node],
		[this, Node]
		{
			const FName Name(Image.GetTables().GetText(EZone::Nodes, Node));
			Remember(Name, Node);
			return Name;
		});
}

FName FRegistryNames::GetFolder(uint32 Package) const
{
	const uint32 Folder = Image.GetTables().PackageFolders[Package];
	return Take(Folders[Folder], [this, Folder] { return Image.GetTables().GetText(EZone::Folders, Folder); });
}

FName FRegistryNames::GetAssetName(uint32 Asset) const
{
	return Take(AssetNames[Asset], [this, Asset] { return Image.GetAssetName(Asset); });
}

FTopLevelAssetPath FRegistryNames::GetClass(uint32 Class) const
{
	const auto Parse = [this, Class] { return FTopLevelAssetPath(Image.GetTables().GetText(EZone::Classes, Class)); };
	return {Take(ClassPackages[Class], [&Parse] { return Parse().PackageName; }),
		Take(ClassNames[Class], [&Parse] { return Parse().AssetName; })};
}

uint32 FRegistryNames::FindNode(FName Name) const
{
	if (Name.IsNone())
		return NoId;
	for (std::size_t Index = FirstSlot(Name, NumSlots);; Index = (Index + 1) & (NumSlots - 1))
	{
		const uint64 Slot = std::atomic_ref<uint64>(Slots[Index]).load(std::memory_order_relaxed);
		if (Slot == 0)
			break;
		if (Slot >> 32 == Name.GetComparisonId())
			return static_cast<uint32>(Slot);
	}
	const uint32 Node = Image.FindNode(Name.View());
	if (Node != NoId)
		Remember(Name, Node);
	return Node;
}

uint32 FRegistryNames::FindPackage(FName Name) const
{
	const uint32 Node = FindNode(Name);
	return Node < Image.NumPackages() ? Node : NoId;
}

/** Lock-free. There are more than twice as many slots as nodes, and a node has one comparison id, so a free slot is always met.
 */
void FRegistryNames::Remember(FName Name, uint32 Node) const
{
	if (Name.IsNone())
		return;
	const uint64 New = uint64{Name.GetComparisonId()} << 32 | Node;
	for (std::size_t Index = FirstSlot(Name, NumSlots);; Index = (Index + 1) & (NumSlots - 1))
	{
		uint64 Slot = 0;
		if (std::atomic_ref<uint64>(Slots[Index]).compare_exchange_strong(Slot, New, std::memory_order_relaxed) ||
			Slot >> 32 == New >> 32)
			return;
	}
}
