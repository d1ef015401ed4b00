#include "Packages/PackageEviction.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
using FPlaces = std::vector<int32>;

template <class T>
auto& At(T& List, int32 Place)
{
	return List[static_cast<std::size_t>(Place)];
}

/** Pinned ones, then the others, each last used first. */
FPlaces OrderByWorth(const std::vector<FLoadedPackageUse>& Packages)
{
	FPlaces Order(Packages.size());
	std::iota(Order.begin(), Order.end(), 0);
	std::stable_sort(Order.begin(), Order.end(),
		[&Packages](int32 A, int32 B)
		{
			const FLoadedPackageUse& First = At(Packages, A);
			const FLoadedPackageUse& Second = At(Packages, B);
			return First.bPinned != Second.bPinned ? First.bPinned : First.LastUse > Second.LastUse;
		});
	return Order;
}

/** Lists packages after what they refer to; members of a cycle stand in any order. */
class FReferenceOrder
{
public:
	explicit FReferenceOrder(const std::vector<FLoadedPackageUse>& InPackages) : Packages(InPackages), Reached(InPackages.size())
	{
	}

	void Add(int32 Root)
	{
		Enter(Root);
		while (!Line.empty())
		{
			auto& [Place, NumSeen] = Line.back();
			const FPlaces& References = At(Packages, Place).References;
			if (NumSeen < References.size())
			{
				Enter(References[NumSeen++]);
				continue;
			}
			Order.push_back(Place);
			Line.pop_back();
		}
	}
	const FPlaces& Get() const { return Order; }

private:
	struct FVisit
	{
		int32 Place;
		std::size_t NumSeen; // references
	};
	void Enter(int32 Place)
	{
		if (At(Reached, Place))
			return;
		At(Reached, Place) = true;
		Line.push_back({Place, 0});
	}

	const std::vector<FLoadedPackageUse>& Packages;
	std::vector<uint8> Reached;
	std::vector<FVisit> Line;
	FPlaces Order;
};
}

std::vector<uint8> ChooseKeptPackages(const std::vector<FLoadedPackageUse>& Packages, int64 MaxBytes)
{
	FReferenceOrder Order(Packages);
	std::size_t NumHeld = 0; // pinned ones and what they refer to
	for (const int32 Place : OrderByWorth(Packages))
	{
		Order.Add(Place);
		if (At(Packages, Place).bPinned)
			NumHeld = Order.Get().size();
	}

	std::vector<uint8> Kept(Packages.size());
	int64 NumBytes = 0;
	std::size_t NumKept = 0;
	for (const int32 Place : Order.Get())
	{
		NumBytes += At(Packages, Place).NumBytes;
		if (NumKept++ >= NumHeld && NumBytes > MaxBytes)
			break;
		At(Kept, Place) = true;
	}
	DropReferencers(Packages, Kept); // where a cycle was cut, members that stayed refer to one that went
	return Kept;
}

void DropReferencers(const std::vector<FLoadedPackageUse>& Packages, std::vector<uint8>& Kept)
{
	std::vector<FPlaces> Referencers(Packages.size());
	FPlaces Gone;
	for (int32 Place = 0; Place < static_cast<int32>(Packages.size()); ++Place)
	{
		for (const int32 Reference : At(Packages, Place).References)
			At(Referencers, Reference).push_back(Place);
		if (!At(Kept, Place))
			Gone.push_back(Place);
	}
	while (!Gone.empty())
	{
		const int32 Place = Gone.back();
		Gone.pop_back();
		for (const int32 Referencer : At(Referencers, Place))
		{
			if (std::exchange(At(Kept, Referencer), uint8{false}))
				Gone.push_back(Referencer);
		}
	}
}
