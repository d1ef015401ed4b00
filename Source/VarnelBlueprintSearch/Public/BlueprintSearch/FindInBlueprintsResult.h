#pragma once

#include "AssetRegistry/BlueprintIndex.h"

#include <atomic>
#include <span>

class FImaginaryFiBData;
struct FIndexMatches;

/**
 * One line of a search's result: a Blueprint, or below it an entry that matches or that leads to one that does. Belongs to its
 * FImaginaryFiBData; pointers to it keep that alive.
 */
class FFindInBlueprintsResult
{
public:
	/** The lines directly below one, in file order. Iterates over `const FFindInBlueprintsResult&`. */
	class FChildren
	{
	public:
		class FIterator
		{
		public:
			explicit FIterator(const FFindInBlueprintsResult* InAt) : At(InAt) {}
			const FFindInBlueprintsResult& operator*() const { return *At; }
			FIterator& operator++()
			{
				At += 1 + At->NumBelow;
				return *this;
			}
			friend bool operator==(FIterator, FIterator) = default;

		private:
			const FFindInBlueprintsResult* At;
		};

		FChildren(const FFindInBlueprintsResult* InBegin, const FFindInBlueprintsResult* InEnd) : Begin(InBegin), End(InEnd) {}
		FIterator begin() const { return FIterator(Begin); }
		FIterator end() const { return FIterator(End); }

	private:
		const FFindInBlueprintsResult* Begin;
		const FFindInBlueprintsResult* End;
	};

	FFindInBlueprintsResult(FImaginaryFiBData& InOwner, int32 InEntry, int32 InParent)
		: Owner(&InOwner)
		, Entry(InEntry)
		, Parent(InParent)
	{
	}

	/** An entry's text; a Blueprint's object path. */
	FString GetDisplayString() const;
	/** What kind of thing the entry is, as its package says it ("Var", "Node"); a Blueprint's class without its package. */
	FString GetCategory() const;
	/** "" without one. Kept for callers. */
	FString GetCommentText() const;
	/** Null for a Blueprint. */
	const FFindInBlueprintsResult* GetParent() const;
	FChildren GetChildren() const;

private:
	friend class FImaginaryFiBData;

	FImaginaryFiBData* Owner;
	int32 Entry;		// of the index; INDEX_NONE for the Blueprint
	int32 Parent;		// place among the owner's lines; INDEX_NONE directly below the Blueprint, and for it
	int32 NumBelow = 0; // all lines below this one; they follow it
};

/** What a search found in one Blueprint, read from the index: nothing is loaded. Made by the search; lies beside those of the
 * other Blueprints, which pointers to it keep alive too. Any thread. */
class FImaginaryFiBData
{
public:
	FImaginaryFiBData() = default;
	FImaginaryFiBData(const FImaginaryFiBData&) = delete;
	FImaginaryFiBData& operator=(const FImaginaryFiBData&) = delete;

	/** "/Game/UI/WBP_HUD.WBP_HUD" */
	FString GetObjectPath() const;
	/** The entries that matched. */
	int32 NumMatches() const { return static_cast<int32>(GetMatches().size()); }
	/** The Blueprint's own line. */
	const FFindInBlueprintsResult& GetResult() const { return Top; }
	TSharedPtr<FFindInBlueprintsResult> GetSharedResult();

private:
	friend class FFindInBlueprintsResult;
	friend struct FIndexMatches;

	const FBlueprintIndexView& GetIndex() const;
	int32 GetBlueprint() const;
	std::span<const uint32> GetMatches() const;
	/** Makes the lines below the Blueprint when somebody first looks at them: most searches look at the first few Blueprints. */
	void ExpandAllChildren();
	std::vector<FFindInBlueprintsResult> MakeLines();

	const FIndexMatches* Owner = nullptr;
	std::size_t Place = 0; // among the owner's Blueprints
	FFindInBlueprintsResult Top = FFindInBlueprintsResult(*this, INDEX_NONE, INDEX_NONE);
	std::vector<FFindInBlueprintsResult> Lines; // parents before children
	std::atomic<bool> bExpanded = false;		// set when the lines are there
};
