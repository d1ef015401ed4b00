#pragma once

#include "Core/Threads/StopToken.h"
#include "Show/ShowAssetTool.h"
#include "Show/ValueWriter.h"

/** A payload under construction: what fits into the bytes that the caller has asked for, and what had to be left out. */
class FShowPage
{
public:
	FShowPage(const FShowAssetParams& InParams, Orivane::FToolResult& InResult)
		: Params(InParams)
		, Values(InParams.MaxBytes / ValuesPerPage)
		, Result(InResult)
		, Room(InParams.MaxBytes - BytesOfSections)
	{
	}

	const FShowAssetParams& Params;
	FValueWriter Values;
	const TSharedPtr<FJsonObject> Payload = MakeShared<FJsonObject>();

	bool Wants(const char* Section) const { return Params.Sections.IsEmpty() || Params.Sections.Contains(Section); }
	/** False, and nothing taken, where there is no room for that. Once something had no room, nothing has. */
	bool Take(const FJsonValue& Value, FStringView Key = {})
	{
		const int64 NumBytes = Json::Measure(Value).NumBytes + static_cast<int64>(Key.size()) + BytesAround;
		bFull = bFull || NumBytes > Room;
		Room -= bFull ? 0 : NumBytes;
		return !bFull;
	}
	/** A field of the payload, where there is room for it. */
	void Set(const char* Key, FJsonValue Value)
	{
		const int64 NumBytes = Json::Measure(Value).NumBytes + static_cast<int64>(FStringView(Key).size()) + BytesAround;
		if (NumBytes > Room)
			return Remark(FString(Key) + " left out for lack of room", "max_bytes", FString::FromInt(Params.MaxBytes));
		Room -= NumBytes;
		Payload->SetField(Key, std::move(Value));
	}
	/** A list of the payload with as many of Num elements as there is room for; Make(Index) gives each. No list without elements.
	 */
	template <class TMake>
	void SetList(const char* Key, const char* Noun, int32 Num, TMake Make)
	{
		if (Num == 0)
			return;
		FJsonArray Elements;
		for (int32 Index = 0; Index < Num && !IsStopRequested(); ++Index)
		{
			FJsonValue Element = Make(Index);
			if (!Take(Element))
				break;
			Elements.Add(std::move(Element));
		}
		NoteCut(Num - Elements.Num(), Noun);
		Payload->SetArrayField(Key, std::move(Elements));
	}
	/** That so many more had no room. */
	void NoteCut(int32 Num, const char* Noun)
	{
		if (Num > 0)
			Result.AddRemark({.Text = Count(Num, Noun) + " left out for lack of room",
				.Argument = "max_bytes",
				.Value = FString::FromInt(Params.MaxBytes)});
	}
	void Remark(FString Text, const char* Argument = "", FString Value = {})
	{
		Result.AddRemark({.Text = std::move(Text), .Argument = Argument, .Value = std::move(Value)});
	}
	/** "1 row", "3 rows". */
	static FString Count(int32 Num, const char* Noun)
	{
		const FString Several = FStringView(Noun).ends_with('y')
			? FString(FStringView(Noun).substr(0, FStringView(Noun).size() - 1)) + "ies"
			: FString(Noun) + "s";
		return FString::FromInt(Num) + " " + (Num == 1 ? FString(Noun) : Several);
	}

private:
	static constexpr int32 ValuesPerPage = 8;	  // of those that are as long as a value may be
	static constexpr int64 BytesAround = 4;		  // a comma, a colon, quotes of the key
	static constexpr int64 BytesOfSections = 200; // their keys and brackets, all of them

	Orivane::FToolResult& Result;
	int64 Room;
	bool bFull = false;
};
