#pragma once

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"

/**
 * Of a package's assets, whose names GetName(0..Num-1) gives, the first one named like the package without regard to case, else
 * the first one; INDEX_NONE when there is none.
 */
template <class TGetName>
int32 FindRepresentative(FStringView PackageName, int32 Num, TGetName&& GetName)
{
	const FStringView ShortName = FPackageName::GetShortName(PackageName);
	for (int32 Index = 0; Index < Num; ++Index)
	{
		if (Unicode::EqualsFolded(GetName(Index), ShortName))
			return Index;
	}
	return Num > 0 ? 0 : INDEX_NONE;
}
