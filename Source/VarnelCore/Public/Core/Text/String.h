#pragma once

#include "Core/Base/Types.h"

#include <string>
#include <string_view>

/** UTF-8 bytes, valid unless a function says otherwise; not terminated. */
using FStringView = std::string_view;

template <class T>
class TArray;

/**
 * Owned text. Holds valid UTF-8; bytes from outside the program come in through FromExternal, which repairs them.
 *
 * Lengths and positions count code points. Comparison with ==, <=>, Contains and the hash ignore case by simple case folding
 * (a code point never changes into two, so "ß" does not equal "ss"); Equals with ESearchCase::CaseSensitive is exact.
 * Distinct objects may be used from distinct threads.
 */
class FString
{
public:
	FString() = default;
	FString(const char* Utf8) : Data(Utf8 ? Utf8 : "") {}
	FString(FStringView Utf8) : Data(Utf8) {}
	FString(std::string&& Utf8) noexcept : Data(std::move(Utf8)) {}
	FString(const std::string& Utf8) : Data(Utf8) {}

	/** Copies bytes of unknown origin; every ill-formed sequence becomes one U+FFFD (maximal subpart rule). */
	static FString FromExternal(FStringView Bytes);
	static FString FromInt(int64 Value);
	/** Printf with C conversions; %s takes const char* (use *Text). */
	static FString Printf(const char* Format, ...) __attribute__((format(printf, 1, 2)));
	/** The texts in order, with the separator between each two. */
	static FString Join(const TArray<FString>& Texts, FStringView Separator);
	/** Six decimals at most, trailing zeros dropped down to MinFractionalDigits: 2.0, 0.25, 0.1. "nan", "inf", "-inf" as they
	 * are. */
	static FString SanitizeFloat(double Value, int32 MinFractionalDigits = 1);

	bool IsEmpty() const { return Data.empty(); }
	/** Code points. */
	int32 Len() const;
	int32 NumBytes() const { return static_cast<int32>(Data.size()); }
	FStringView View() const { return Data; }
	operator FStringView() const { return Data; }
	/** Zero-terminated bytes, valid until the text changes. */
	const char* operator*() const { return Data.c_str(); }
	const std::string& ToStdString() const { return Data; }

	void Empty() { Data.clear(); }
	void Reserve(int32 NumBytes) { Data.reserve(static_cast<std::size_t>(NumBytes)); }
	FString& Append(FStringView Text)
	{
		Data.append(Text);
		return *this;
	}
	FString& operator+=(FStringView Text) { return Append(Text); }
	FString& operator+=(char Character)
	{
		Data.push_back(Character);
		return *this;
	}

	bool Equals(FStringView Other, ESearchCase Case = ESearchCase::CaseSensitive) const;
	/** Negative, zero or positive: order of folded code points, or of bytes when case matters. */
	int32 Compare(FStringView Other, ESearchCase Case = ESearchCase::CaseSensitive) const;
	/** An empty Needle is contained in every text. */
	bool Contains(FStringView Needle, ESearchCase Case = ESearchCase::IgnoreCase) const;
	bool StartsWith(FStringView Prefix, ESearchCase Case = ESearchCase::IgnoreCase) const;
	bool EndsWith(FStringView Suffix, ESearchCase Case = ESearchCase::IgnoreCase) const;
	/** First position at or after Start, in code points; INDEX_NONE when there is none. */
	int32 Find(FStringView Needle, ESearchCase Case = ESearchCase::IgnoreCase, int32 Start = 0) const;

	FString ToLower() const;
	FString ToUpper() const;
	FString Replace(FStringView From, FStringView To, ESearchCase Case = ESearchCase::IgnoreCase) const;
	/** The first / last Count code points, or all of them. A negative count gives none. */
	FString Left(int32 Count) const;
	FString Right(int32 Count) const;
	/** Count code points from Start on. */
	FString Mid(int32 Start, int32 Count = INT32_MAX) const;
	FString TrimStartAndEnd() const;
	/** Without a double quote at the start and without one at the end, each where there is one. */
	FString TrimQuotes() const;
	/**
	 * The integer that the text starts with, after blanks and a sign; 0 where there are no digits. What is beyond the range
	 * becomes its nearest end.
	 */
	int32 ToInt() const;
	/** Pieces between separators; empty pieces are left out when bCullEmpty. */
	TArray<FString> ParseIntoArray(FStringView Separator, bool bCullEmpty = true) const;

	friend bool operator==(const FString& A, const FString& B) { return A.Equals(B.Data, ESearchCase::IgnoreCase); }
	friend bool operator<(const FString& A, const FString& B) { return A.Compare(B.Data, ESearchCase::IgnoreCase) < 0; }
	friend FString operator+(FString A, FStringView B)
	{
		A.Append(B);
		return A;
	}

private:
	std::string Data;
};

/** Hash without regard to case: equal for texts that operator== calls equal. */
uint64 GetTypeHash(const FString& Text);

/** Display text. The headless engine keeps one language, so this is a string that is not meant as a name. */
class FText
{
public:
	FText() = default;
	static FText FromString(FString Text) { return FText(std::move(Text)); }
	const FString& ToString() const { return Display; }
	bool IsEmpty() const { return Display.IsEmpty(); }

private:
	explicit FText(FString Text) : Display(std::move(Text)) {}
	FString Display;
};
