#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/** What is told of a class, a structure or a property, by key, such as "ToolTip". A handful of entries; case of keys is ignored.
 */
class FMetaData
{
public:
	/** Null when there is none. */
	const FString* Find(const FString& Key) const
	{
		const FEntry* const Entry = Entries.FindByPredicate([&](const FEntry& Each) { return Each.Key == Key; });
		return Entry ? &Entry->Value : nullptr;
	}
	/** Adds or replaces. */
	void Set(FString Key, FString Value)
	{
		if (FEntry* const Entry = Entries.FindByPredicate([&](const FEntry& Each) { return Each.Key == Key; }))
			Entry->Value = std::move(Value);
		else
			Entries.Add({std::move(Key), std::move(Value)});
	}

private:
	struct FEntry
	{
		FString Key;
		FString Value;
	};
	TArray<FEntry> Entries;
};
