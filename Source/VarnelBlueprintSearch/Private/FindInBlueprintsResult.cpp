#include "BlueprintSearch/FindInBlueprintsResult.h"

#include "IndexMatches.h"

FString FFindInBlueprintsResult::GetDisplayString() const
{
	if (Entry == INDEX_NONE)
		return Owner->GetObjectPath();
	return FString(Owner->GetIndex().GetText(Owner->GetIndex().GetEntry(Entry).Text));
}

FString FFindInBlueprintsResult::GetCategory() const
{
	if (Entry == INDEX_NONE)
		return Owner->GetIndex().GetBlueprint(Owner->GetBlueprint()).AssetClassPath.AssetName.ToString();
	return FString(Owner->GetIndex().GetText(Owner->GetIndex().GetEntry(Entry).Category));
}

FString FFindInBlueprintsResult::GetCommentText() const
{
	const int32 Comment = Entry == INDEX_NONE ? INDEX_NONE : Owner->GetIndex().GetEntry(Entry).Comment;
	return Comment == INDEX_NONE ? FString() : FString(Owner->GetIndex().GetText(Comment));
}

const FFindInBlueprintsResult* FFindInBlueprintsResult::GetParent() const
{
	if (Entry == INDEX_NONE)
		return nullptr;
	return Parent == INDEX_NONE ? &Owner->Top : &Owner->Lines[static_cast<std::size_t>(Parent)];
}

FFindInBlueprintsResult::FChildren FFindInBlueprintsResult::GetChildren() const
{
	if (Entry == INDEX_NONE)
		Owner->ExpandAllChildren();
	const FFindInBlueprintsResult* const Begin = Entry == INDEX_NONE ? Owner->Lines.data() : this + 1;
	return {Begin, Begin + NumBelow};
}

FString FImaginaryFiBData::GetObjectPath() const
{
	return GetIndex().GetBlueprint(GetBlueprint()).GetObjectPathString();
}

TSharedPtr<FFindInBlueprintsResult> FImaginaryFiBData::GetSharedResult()
{
	return {Owner->shared_from_this(), &Top};
}

const FBlueprintIndexView& FImaginaryFiBData::GetIndex() const
{
	return Owner->Index;
}

int32 FImaginaryFiBData::GetBlueprint() const
{
	return Owner->Blueprints[Place];
}

std::span<const uint32> FImaginaryFiBData::GetMatches() const
{
	return std::span(Owner->Entries)
		.subspan(Owner->FirstEntries[Place], Owner->FirstEntries[Place + 1] - Owner->FirstEntries[Place]);
}

void FImaginaryFiBData::ExpandAllChildren()
{
	if (bExpanded)
		return;
	const std::lock_guard Guard(Owner->ExpandLock);
	if (bExpanded)
		return;
	Lines = MakeLines();
	Top.NumBelow = static_cast<int32>(Lines.size());
	bExpanded = true;
}

std::vector<FFindInBlueprintsResult> FImaginaryFiBData::MakeLines()
{
	std::vector<FFindInBlueprintsResult> Made;
	struct FOpenEntry
	{
		int32 Entry;
		int32 Depth;
		int32 Line; // INDEX_NONE while nothing below has matched
	};
	std::vector<FOpenEntry> Open; // from the Blueprint down to the current entry
	const FBlueprintIndexView& Index = GetIndex();
	int32 Entry = Index.GetEntries(GetBlueprint()).Begin;
	for (const uint32 Match : GetMatches())
	{
		for (; Entry <= static_cast<int32>(Match); ++Entry)
		{
			const int32 Depth = Index.GetEntry(Entry).Depth;
			while (!Open.empty() && Open.back().Depth >= Depth)
				Open.pop_back();
			Open.push_back({Entry, Depth, INDEX_NONE});
		}
		int32 Parent = INDEX_NONE;
		for (FOpenEntry& Ancestor : Open)
		{
			if (Ancestor.Line == INDEX_NONE)
			{
				Ancestor.Line = static_cast<int32>(Made.size());
				Made.emplace_back(*this, Ancestor.Entry, Parent);
			}
			Parent = Ancestor.Line;
		}
	}
	for (std::size_t Line = Made.size(); Line-- > 0;)
	{
		if (const int32 Parent = Made[Line].Parent; Parent != INDEX_NONE)
			Made[static_cast<std::size_t>(Parent)].NumBelow += 1 + Made[Line].NumBelow;
	}
	return Made;
}
