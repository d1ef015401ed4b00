#pragma once

#include "Core/Text/String.h"

/**
 * Interned text of 8 bytes: an id for comparison, without regard to case, and an id that keeps its own spelling, so that what is
 * printed never depends on what was interned before. The empty name prints "None". Any thread; interning never invalidates views.
 */
class FName
{
public:
	constexpr FName() = default;
	FName(FStringView Text);
	FName(const char* Text) : FName(FStringView(Text)) {}
	FName(const FString& Text) : FName(Text.View()) {}

	bool IsNone() const { return ComparisonId == 0; }
	FString ToString() const { return FString(View()); }
	/** Lives as long as the program. */
	FStringView View() const;

	friend bool operator==(FName A, FName B) { return A.ComparisonId == B.ComparisonId; }
	/** Alphabetic, without regard to case. */
	bool LexicalLess(FName Other) const;
	uint32 GetComparisonId() const { return ComparisonId; }
	/** Bytes that all names of the process take together; they never get fewer. */
	static int64 GetNumBytes();

private:
	uint32 ComparisonId = 0;
	uint32 DisplayId = 0;
};

inline uint64 GetTypeHash(FName Name)
{
	return Name.GetComparisonId() * 0x9E3779B97F4A7C15ull;
}
