#include "Tools/SearchOutput.h"

#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "Quellar/Families/TextSearch.h"
#include "Terminal/Terminal.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr int32 MaxLines = 200;	   // of text files, each of which is read once more
constexpr int32 MaxNameWidth = 60; // of the column; longer names push what follows

/** One line of a block, before it is painted. */
struct FRow
{
	FString Kind;
	FString Name; // indented
	FString Container;
	int32 Count = 1;
};

/** Object paths and package names of one asset come from different families. */
FString GetPackage(const FAssetResult& Result)
{
	return Result.AssetPath.StartsWith("/") ? FPackageName::ObjectPathToPackageName(Result.AssetPath) : Result.AssetPath;
}

class FSearchPrinter
{
public:
	explicit FSearchPrinter(const FSearchView& InView) : View(InView), Paint(InView.Paint), Finder(InView.Term, InView.Case) {}

	void PrintBlock(std::span<const FAssetResult> Results)
	{
		if (PrintTextFile(Results.front()))
			return;
		TArray<FString> Classes;
		for (const FAssetResult& Result : Results)
		{
			if (!Result.AssetClass.IsEmpty() && !Classes.Contains(Result.AssetClass)) // none for what was not loaded
				Classes.Add(Result.AssetClass);
		}
		Out += Paint.Bold(Terminal::Sanitize(GetPackage(Results.front()))) + (Classes.IsEmpty() ? "" : "  ") +
			Paint.Dim(Terminal::Sanitize(FString::Join(Classes, ", "))) + "\n";
		std::vector<FRow> Rows;
		bool bTruncated = false;
		for (const FAssetResult& Result : Results)
		{
			AddRows(Result, Rows);
			bTruncated |= Result.bTruncated;
		}
		PrintRows(Rows);
		if (bTruncated)
			Out += Paint.Dim("  (more hits of a kind were left out; raise --max-hits-per-kind)") + "\n";
	}
	FString Out;

private:
	bool PrintTextFile(const FAssetResult& Result)
	{
		bool bPrinted = false;
		for (const Orivane::FToolPlace& Place : View.TextPlaces)
		{
			if (Result.AssetClass != "TextFile" || Place.Asset != FPackageName::ObjectPathToPackageName(Result.AssetPath) ||
				Printed.Contains(Place.File))
				continue;
			Printed.Add(Place.File);
			const FString File = Terminal::Sanitize(Place.File);
			const FString Line = Place.Line > 0 ? FString::Printf(":%d", Place.Line) : FString();
			const FString Text = Shorten(Terminal::Sanitize(Place.Text), View.Width - File.Len() - Line.Len() - 2);
			Out += Paint.Bold(File) + Paint.Dim(Line + ": ") + Highlight(Text) + "\n";
			bPrinted = true;
			break;
		}
		return bPrinted;
	}

	/** A hit whose container is a hit before it is its child. */
	void AddRows(const FAssetResult& Result, std::vector<FRow>& Rows) const
	{
		TArray<FString> Parents; // of the next hit, outermost first
		for (const FAssetHit& Hit : Result.Hits)
		{
			while (!Parents.IsEmpty() && Parents[Parents.Num() - 1] != Hit.Container)
				Parents.SetNum(Parents.Num() - 1);
			const bool bIsAssetItself = Hit.Container.IsEmpty() && GetPackage({.AssetPath = Hit.Name}) == GetPackage(Result);
			if (!bIsAssetItself)
				Rows.push_back({.Kind = Terminal::Sanitize(Hit.Kind),
					.Name = ToolOutput::Pad("", 2 * std::max(Parents.Num() - 1, 0)) + Terminal::Sanitize(Hit.Name),
					.Container = Parents.IsEmpty() ? Terminal::Sanitize(Hit.Container) : FString(),
					.Count = Hit.Count});
			Parents.Add(Hit.Name);
		}
	}

	void PrintRows(const std::vector<FRow>& Rows)
	{
		int32 KindWidth = 0;
		int32 NameWidth = 0;
		for (const FRow& Row : Rows)
		{
			KindWidth = std::max(KindWidth, Row.Kind.Len());
			NameWidth = std::max(NameWidth, Row.Container.IsEmpty() ? 0 : Row.Name.Len());
		}
		NameWidth = std::min(NameWidth, MaxNameWidth);
		for (const FRow& Row : Rows)
		{
			const int32 Room = View.Width - KindWidth - 4;
			const FString Name = Shorten(Row.Container.IsEmpty() ? Row.Name : ToolOutput::Pad(Row.Name, NameWidth), Room);
			const FString Container = Shorten(Row.Container, Room - Name.Len() - 2);
			Out += "  " + Paint.Cyan(ToolOutput::Pad(Row.Kind, KindWidth)) + "  " + Highlight(Name) +
				(Container.IsEmpty() ? "" : "  ") + Paint.Dim(Container) +
				(Row.Count > 1 ? FString::Printf("  x%d\n", Row.Count) : FString("\n"));
		}
	}

	FString Shorten(const FString& Text, int32 Room) const
	{
		const bool bFits = View.Width <= 0 || Text.Len() <= std::max(Room, 1);
		return bFits ? Text : Text.Mid(0, std::max(Room, 1) - 1) + "\u2026";
	}

	/** The places that the search found, however they are spelled. */
	FString Highlight(const FString& Text) const
	{
		if (View.Term.IsEmpty())
			return Text;
		FString Painted;
		std::size_t Done = 0;
		for (std::size_t At = Finder.Find(Text.View()); At != std::string_view::npos; At = Finder.Find(Text.View(), Done))
		{
			std::string_view Rest = Text.View().substr(At);
			const std::size_t NumLeft = Rest.size();
			if (!Unicode::SkipFoldedPrefix(Rest, View.Term.View()))
				break;
			Painted += FString(Text.View().substr(Done, At - Done)) +
				Paint.Match(FString(Text.View().substr(At, NumLeft - Rest.size())));
			Done = At + NumLeft - Rest.size();
		}
		return Painted + FString(Text.View().substr(Done));
	}

	const FSearchView& View;
	const FPainter& Paint;
	const FTextFinder Finder;
	TArray<FString> Printed; // files
};
}

TArray<Orivane::FToolPlace> FindLines(TArray<Orivane::FToolPlace> Places, const FAssetSearchParams& Params)
{
	for (int32 Index = 0; Index < std::min(Places.Num(), MaxLines); ++Index)
	{
		FTextLine Line = FindFirstTextLine(Places[Index].File, Params);
		Places[Index].Line = Line.Number;
		Places[Index].Text = std::move(Line.Text);
	}
	return Places;
}

FAssetSearchResult ReadSearchPayload(const FJsonObject& Content)
{
	FAssetSearchResult Found;
	for (const FJsonValue& Element : ToolOutput::GetArray(Content, "assets"))
	{
		const FJsonObject& Asset = *Element.AsObject();
		FAssetResult& Result = Found.Results.Emplace_GetRef();
		Asset.TryGetStringField("asset", Result.AssetPath);
		Asset.TryGetStringField("class", Result.AssetClass);
		Asset.TryGetBoolField("truncated", Result.bTruncated);
		for (const FJsonValue& HitElement : ToolOutput::GetArray(Asset, "hits"))
		{
			FAssetHit& Hit = Result.Hits.Emplace_GetRef();
			HitElement.AsObject()->TryGetStringField("kind", Hit.Kind);
			HitElement.AsObject()->TryGetStringField("name", Hit.Name);
			HitElement.AsObject()->TryGetStringField("container", Hit.Container);
			HitElement.AsObject()->TryGetNumberField("count", Hit.Count);
		}
	}
	return Found;
}

std::vector<std::span<const FAssetResult>> GroupByAsset(const FAssetSearchResult& Found)
{
	const std::span<const FAssetResult> All(Found.Results.begin(), Found.Results.end());
	std::vector<std::span<const FAssetResult>> Groups;
	for (std::size_t Begin = 0; Begin < All.size(); Begin += Groups.back().size())
	{
		std::size_t End = Begin + 1;
		while (All[Begin].AssetClass != "TextFile" && End < All.size() &&
			Unicode::EqualsFolded(GetPackage(All[End]), GetPackage(All[Begin])))
			++End;
		Groups.push_back(All.subspan(Begin, End - Begin));
	}
	return Groups;
}

FString RenderSearchResults(const FAssetSearchResult& Found, const FSearchView& View)
{
	FSearchPrinter Printer(View);
	for (const std::span<const FAssetResult> Group : GroupByAsset(Found))
		Printer.PrintBlock(Group);
	return Printer.Out;
}
