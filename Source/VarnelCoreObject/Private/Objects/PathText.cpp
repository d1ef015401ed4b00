#include "Objects/PathText.h"

#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "Objects/ByteSet.h"

#include <algorithm>

namespace
{
constexpr FStringView Separators = ".:";

constexpr FRefusedBytes RefusedInNames(".:/\\\"");
}

bool PathText::IsObjectName(FStringView Text)
{
	// "None" is how the empty name reads, so nothing could ever be found under it.
	return !Text.empty() && !RefusedInNames.AreIn(Text) && !Unicode::EqualsFolded(Text, "None");
}

bool PathText::IsTopLevelPath(FStringView Text)
{
	const std::size_t Dot = Text.find('.');
	return Dot != FStringView::npos && FPackageName::IsValidLongPackageName(Text.substr(0, Dot)) &&
		IsObjectName(Text.substr(Dot + 1));
}

bool PathText::IsInnerPath(FStringView Text)
{
	const std::size_t Colon = Text.find(':');
	if (!IsObjectName(Text.substr(0, Colon)))
		return false;
	for (std::size_t Start = Colon; Start != FStringView::npos;)
	{
		const std::size_t End = Text.find('.', Start + 1);
		if (!IsObjectName(Text.substr(Start + 1, End - Start - 1)))
			return false;
		Start = End;
	}
	return true;
}

bool PathText::IsObjectPath(FStringView Text)
{
	const std::size_t Dot = Text.find('.');
	return Dot != FStringView::npos && FPackageName::IsValidLongPackageName(Text.substr(0, Dot)) &&
		IsInnerPath(Text.substr(Dot + 1));
}

bool PathText::IsScriptPath(FStringView Path)
{
	return Unicode::SkipFoldedPrefix(Path, "/Script/");
}

FStringView PathText::PackageOf(FStringView ObjectPath)
{
	return ObjectPath.substr(0, ObjectPath.find('.'));
}

FStringView PathText::LastSegment(FStringView InnerPath)
{
	return InnerPath.substr(InnerPath.find_last_of(Separators) + 1); // npos + 1 is the start
}

FStringView PathText::OuterOf(FStringView InnerPath)
{
	const std::size_t Separator = InnerPath.find_last_of(Separators);
	return Separator == FStringView::npos ? FStringView() : InnerPath.substr(0, Separator);
}

int32 PathText::CountSegments(FStringView InnerPath)
{
	return 1 +
		static_cast<int32>(std::count_if(
			InnerPath.begin(), InnerPath.end(), [](char Character) { return Separators.find(Character) != FStringView::npos; }));
}
