#include "Core/Program/Config.h"

#include "Core/Base/Map.h"
#include "Core/Text/Unicode.h"

#include <utility>
#include <vector>

namespace
{
constexpr FStringView ByteOrderMark = "\xEF\xBB\xBF";
constexpr FStringView Blanks = " \t\r\v\f";

FStringView Trim(FStringView Text)
{
	const std::size_t First = Text.find_first_not_of(Blanks);
	if (First == FStringView::npos)
		return Text.substr(Text.size());
	return Text.substr(First, Text.find_last_not_of(Blanks) - First + 1);
}

FStringView TakeLine(FStringView& Rest)
{
	const FStringView Line = Rest.substr(0, Rest.find('\n'));
	Rest.remove_prefix(std::min(Line.size() + 1, Rest.size()));
	return Line;
}

FStringView Unquote(FStringView Value)
{
	const bool bIsQuoted = Value.size() >= 2 && Value.front() == '"' && Value.back() == '"';
	return bIsQuoted ? Value.substr(1, Value.size() - 2) : Value;
}

TOptional<FConfigLine::EOperation> OperationOf(char Sign)
{
	switch (Sign)
	{
		case '+':
			return FConfigLine::EOperation::Append;
		case '-':
			return FConfigLine::EOperation::Remove;
		case '!':
			return FConfigLine::EOperation::Clear;
		default:
			return {};
	}
}

/** A list of which values go again, without a look at all others for each. */
class FValueList
{
public:
	void Add(const FString& Value)
	{
		PlacesOf.FindOrAdd(Value).Add(Values.Num());
		Values.Add(Value);
	}
	/** Wherever it is, without regard to case. */
	void Remove(const FString& Value)
	{
		if (TArray<int32>* const Places = PlacesOf.Find(Value))
			Removed.Append(std::exchange(*Places, {}));
	}
	TArray<FString> Take() const
	{
		std::vector<bool> IsRemoved(static_cast<std::size_t>(Values.Num()));
		for (const int32 Place : Removed)
			IsRemoved[static_cast<std::size_t>(Place)] = true;
		TArray<FString> Left;
		for (int32 Place = 0; Place < Values.Num(); ++Place)
		{
			if (!IsRemoved[static_cast<std::size_t>(Place)])
				Left.Add(Values[Place]);
		}
		return Left;
	}

private:
	TArray<FString> Values;
	TMap<FString, TArray<int32>> PlacesOf;
	TArray<int32> Removed;
};

/** Goes through a file line by line. All views are parts of the line at hand, so that a column follows from a position. */
class FConfigReader
{
public:
	FConfigReader(TMap<FString, TArray<FConfigLine>>& InSections, const FString& InFileName, FDiagnosticSink* InDiagnostics)
		: Sections(InSections)
		, FileName(InFileName)
		, Diagnostics(InDiagnostics)
	{
	}

	void Read(FStringView Rest)
	{
		while (!Rest.empty())
		{
			++LineNumber;
			Line = TakeLine(Rest);
			const FStringView Content = Trim(Line);
			if (Content.empty() || IsComment(Content))
				continue;
			if (Content.front() == '[')
				ReadSection(Content);
			else
				ReadKey(Content);
		}
	}

private:
	enum class EPlace : uint8
	{
		BeforeSections,
		InSection,
		InBrokenSection, // its name could not be read, and its lines must not end up in the section before
	};

	static bool IsComment(FStringView Content) { return Content.front() == ';' || Content.front() == '#'; }

	void ReadSection(FStringView Content)
	{
		Place = EPlace::InBrokenSection;
		const std::size_t Close = Content.find(']');
		if (Close == FStringView::npos)
			return Report(Content, "the section's ']' is missing; the lines up to the next section are skipped");
		const FStringView Name = Trim(Content.substr(1, Close - 1));
		if (Name.empty())
			return Report(Content, "the section has no name; the lines up to the next section are skipped");
		const FStringView Behind = Trim(Content.substr(Close + 1));
		if (!Behind.empty() && !IsComment(Behind))
			return Report(Behind, "nothing may follow the section's ']'; the lines up to the next section are skipped");
		Place = EPlace::InSection;
		Section = FString::FromExternal(Name);
		Sections.FindOrAdd(Section);
	}

	void ReadKey(FStringView Content)
	{
		if (Place == EPlace::InBrokenSection)
			return;
		if (Place == EPlace::BeforeSections)
			return Report(Content, "a setting must stand below a [section]");
		const std::size_t Equals = Content.find('=');
		if (Equals == FStringView::npos)
			return Report(Content, "a '=' is missing; a setting reads Key=Value");
		const TOptional<FConfigLine::EOperation> Operation = OperationOf(Content.front());
		const std::size_t KeyAt = Operation ? 1 : 0;
		const FStringView Key = Trim(Content.substr(KeyAt, Equals - KeyAt));
		if (Key.empty())
			return Report(Content.substr(Equals), "a key is missing before the '='");
		const FStringView Value = Unquote(Trim(Content.substr(Equals + 1)));
		AddLine({.Operation = Operation.value_or(FConfigLine::EOperation::Set),
					.Key = FString::FromExternal(Key),
					.Value = FString::FromExternal(Value),
					.Line = LineNumber,
					.ValueColumn = ColumnOf(Value)},
			Value);
	}

	void AddLine(FConfigLine Setting, FStringView Value)
	{
		if (Setting.Operation == FConfigLine::EOperation::Clear && !Setting.Value.Equals("ClearArray", ESearchCase::IgnoreCase))
			return Report(Value, "a '!' line empties a list and reads !Key=ClearArray");
		Sections.FindOrAdd(Section).Add(std::move(Setting));
	}

	int32 ColumnOf(FStringView Part) const
	{
		return 1 + Unicode::CountCodePoints(Line.substr(0, static_cast<std::size_t>(Part.data() - Line.data())));
	}

	void Report(FStringView Part, const char* Text) const
	{
		if (Diagnostics)
			Diagnostics->Add(
				{.File = FileName, .Line = LineNumber, .Column = ColumnOf(Part), .Text = Text, .Rule = "settings-syntax"});
	}

	TMap<FString, TArray<FConfigLine>>& Sections;
	const FString& FileName;
	FDiagnosticSink* Diagnostics;
	FStringView Line;
	int32 LineNumber = 0;
	FString Section;
	EPlace Place = EPlace::BeforeSections;
};
}

FConfigFile FConfigFile::Parse(FStringView Text, const FString& FileName, FDiagnosticSink* Diagnostics)
{
	if (Text.starts_with(ByteOrderMark))
		Text.remove_prefix(ByteOrderMark.size());
	FConfigFile File;
	FConfigReader(File.Sections, FileName, Diagnostics).Read(Text);
	return File;
}

TArray<FString> FConfigFile::ApplyToArray(const TArray<FConfigLine>& Lines, const FString& Key, TArray<FString> Defaults)
{
	FValueList Values;
	bool bIsMentioned = false;
	for (const FConfigLine& Line : Lines)
	{
		if (!(Line.Key == Key))
			continue;
		bIsMentioned = true;
		if (Line.Operation == FConfigLine::EOperation::Clear)
			Values = {};
		else if (Line.Operation == FConfigLine::EOperation::Remove)
			Values.Remove(Line.Value);
		else
			Values.Add(Line.Value);
	}
	return bIsMentioned ? Values.Take() : Defaults;
}

const FConfigLine* FConfigFile::FindValue(const TArray<FConfigLine>& Lines, const FString& Key)
{
	const FConfigLine* Found = nullptr;
	for (const FConfigLine& Line : Lines)
	{
		if (Line.Operation == FConfigLine::EOperation::Set && Line.Key == Key)
			Found = &Line;
	}
	return Found;
}
