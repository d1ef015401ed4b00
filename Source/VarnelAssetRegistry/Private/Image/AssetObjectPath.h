#pragma once

#include "Core/Text/String.h"

/** Appends "/Game/A.A"; where Outer is given, the outer's path, ":" (or "." where that path has a ":") and the name. */
inline void AppendAssetObjectPath(FString& Out, FStringView PackageName, FStringView Outer, FStringView AssetName)
{
	const bool bOuterIsInside = Outer.find(':') != FStringView::npos;
	Out += Outer.empty() ? PackageName : Outer;
	Out += Outer.empty() || bOuterIsInside ? '.' : ':';
	Out += AssetName;
}
