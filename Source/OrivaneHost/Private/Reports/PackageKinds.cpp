#include "Reports/PackageKinds.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Packages/PackageSource.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Families/AssetFamily.h"

#include <algorithm>

const FString& FPackageKinds::GetOfClass(uint32 Class)
{
	FString& Kind = Kinds[Class];
	if (Kind.IsEmpty())
		Kind = AssetTypeFromClassName(Graph.GetClassPath(Class).AssetName);
	return Kind;
}

FString FPackageKinds::Get(FPackageGraphView::FNode Package)
{
	const TOptional<uint32> Asset = AssetPathUtils::FindRepresentativeAsset(Graph, Package);
	return Asset ? GetOfClass(Graph.GetClassNumber(*Asset)) : FString();
}

bool FKindCount::Add(FPackageGraphView::FNode Package)
{
	const TOptional<uint32> Asset = AssetPathUtils::FindRepresentativeAsset(Graph, Package);
	if (Asset)
		++NumByClass[Graph.GetClassNumber(*Asset)];
	return Asset.has_value();
}

TMap<FString, int64> FKindCount::Get(FPackageKinds& Kinds) const
{
	TMap<FString, int64> Numbers;
	for (uint32 Class = 0; Class < NumByClass.size(); ++Class)
	{
		if (NumByClass[Class] > 0)
			Numbers.FindOrAdd(Kinds.GetOfClass(Class)) += NumByClass[Class];
	}
	std::vector<std::pair<FString, int64>> Sorted(Numbers.begin(), Numbers.end());
	std::sort(Sorted.begin(), Sorted.end(),
		[](const auto& A, const auto& B) { return A.second != B.second ? A.second > B.second : A.first < B.first; });
	TMap<FString, int64> Counts;
	for (auto& [Kind, Number] : Sorted)
		Counts.Add(std::move(Kind), Number);
	return Counts;
}

bool IsBefore(const FPackageGraphView& Graph, FPackageGraphView::FNode A, FPackageGraphView::FNode B)
{
	const FStringView NameA = Graph.GetPackageName(A);
	const FStringView NameB = Graph.GetPackageName(B);
	const int32 Order = Unicode::CompareFolded(NameA, NameB);
	return Order != 0 ? Order < 0 : NameA < NameB;
}

void PutFirst(const FPackageGraphView& Graph, std::vector<FPackageGraphView::FNode>& Packages, int32 Num)
{
	const auto End = Packages.begin() + std::min<std::ptrdiff_t>(Num, std::ssize(Packages));
	std::partial_sort(Packages.begin(), End, Packages.end(), [&](auto A, auto B) { return IsBefore(Graph, A, B); });
}

FString DescribeLinkType(uint8 Flags)
{
	return (Flags & EDependencyFlags::Game) != 0 ? "Runtime" : "Editor";
}

FString CountThings(int64 Number, const char* One, const char* Several)
{
	return FString::FromInt(Number) + " " + (Number == 1 ? One : Several);
}
