#include "Commands/Commands.h"
#include "Project/HeadlessEngine.h"
#include "Project/NamedAsset.h"
#include "Show/ShowAssetTool.h"
#include "Terminal/ExitCode.h"
#include "Tools/HostTools.h"
#include "Tools/ToolOutput.h"

#include <algorithm>
#include <vector>

namespace
{
using namespace ToolOutput;

constexpr int32 MaxCellWidth = 48; // longer ones push what follows to the right
constexpr int32 MaxListWidth = 80; // longer lists stand below their line, an element a line

/** A section that is a list of objects, a line each. */
struct FTable
{
	const char* Section;
	std::vector<const char*> Columns; // keys of their fields
};

const std::vector<FTable> TablesBeforeTree = {
	{"properties", {"name", "value", "type", "default"}},
	{"entries", {"name", "value", "display"}},
	{"fields", {"name", "type", "default", "from", "tooltip"}},
	{"keys", {"name", "type", "from", "description"}},
	{"parameters", {"name", "value", "kind", "from"}},
	{"variables", {"name", "value", "type", "from", "tooltip"}},
	{"index", {"category", "text", "below", "comment"}},
};
const FTable ObjectTable = {"objects", {"object", "class", "only_in_file"}};

/** Text as it is, anything else as JSON. */
FString GetText(const FJsonValue& Value)
{
	FString Text;
	if (Value.Type() != EJson::String || !Value.TryGetString(Text))
		Text = Json::Write(Value);
	return Terminal::Sanitize(Text);
}

/** Marks say what they mean. */
FString GetCell(const FJsonObject& Object, FStringView Key)
{
	const FJsonValue* const Value = Object.FindField(Key);
	if (!Value)
		return {};
	if (Key == "only_in_file")
		return "only in the file";
	if (Key == "default" && Object.HasField("value"))
		return "default";
	return Key == "below" ? GetText(*Value) + " below" : GetText(*Value);
}

/** Elements of a list that is too long for a line; empty for any other value. */
TArray<FString> ListElements(const FJsonValue& Value)
{
	TArray<FString> Elements;
	const FJsonArray* const Array = Value.AsArray();
	if (Array && GetText(Value).Len() > MaxListWidth)
		for (const FJsonValue& Element : *Array)
			Elements.Add(GetText(Element));
	return Elements;
}

/** Cells, and what stands on lines of its own below them. */
struct FLine
{
	TArray<FString> Cells;
	TArray<FString> Below;
};

/** "WeaponData" of "/Script/Lantern.WeaponData". */
FString GetShortClass(const FString& Path)
{
	return Path.View().substr(Path.View().rfind('.') + 1);
}

class FShowPrinter
{
public:
	FShowPrinter(const FJsonObject& InContent, bool bColor) : Content(InContent), Paint(bColor) {}

	FString Print()
	{
		PrintHead();
		for (const FTable& Table : TablesBeforeTree)
		{
			PrintTable(Table);
			if (Table.Section == FStringView("properties"))
				PrintRows();
		}
		if (const FJsonArray& Tree = GetArray(Content, "tree"); !Tree.IsEmpty())
		{
			Out += Paint.Bold("tree") + "\n";
			PrintTree(Tree, "  ");
		}
		PrintTable(ObjectTable);
		TSharedPtr<FJsonObject> References;
		if (Content.TryGetObjectField("references", References))
		{
			PrintNeighbours(*References, "dependencies", "depends on");
			PrintNeighbours(*References, "referencers", "referred to by");
		}
		return Out;
	}

private:
	void PrintHead()
	{
		Out += Paint.Bold(GetPrintable(Content, "asset")) + "\n";
		TArray<FLine> Lines;
		Lines.Add({{"class", GetPrintable(Content, "class") + DescribeAncestors("class_parents", 0)}, {}});
		if (Content.HasField("parent"))
			Lines.Add({{"parent", GetPrintable(Content, "parent") + DescribeAncestors("parents", 1)}, {}});
		Lines.Add({{"file", GetPrintable(Content, "file")}, {}});
		if (Content.HasField("object"))
			Lines.Add(
				{{"object", GetPrintable(Content, "object") + "  " + Paint.Dim(GetPrintable(Content, "object_class"))}, {}});
		TSharedPtr<FJsonObject> Tags;
		if (Content.TryGetObjectField("tags", Tags))
			for (const FJsonObject::FField& Tag : Tags->GetFields())
				Lines.Add({{Terminal::Sanitize("tag " + Tag.Key), GetText(Tag.Value)}, {}});
		PrintLines(Lines);
	}

	/** " < DataAsset < Object" */
	FString DescribeAncestors(const char* Key, int32 First)
	{
		FString Text;
		const FJsonArray& Ancestors = GetArray(Content, Key);
		for (int32 Index = First; Index < Ancestors.Num(); ++Index)
		{
			FString Path;
			Ancestors[Index].TryGetString(Path);
			Text += " < " + Terminal::Sanitize(GetShortClass(Path));
		}
		return Paint.Dim(Text);
	}

	void PrintTable(const FTable& Table)
	{
		const FJsonArray& Elements = GetArray(Content, Table.Section);
		if (Elements.IsEmpty())
			return;
		Out += Paint.Bold(Table.Section) + "\n";
		TArray<FLine> Lines;
		for (const FJsonValue& Element : Elements)
		{
			FLine& Line = Lines.Emplace_GetRef();
			for (const char* Column : Table.Columns)
				AddCell(Line, *Element.AsObject(), Column);
		}
		PrintLines(Lines);
	}

	static void AddCell(FLine& Line, const FJsonObject& Object, const char* Key)
	{
		const FJsonValue* const Value = Object.FindField(Key);
		Line.Below = Value && Line.Below.IsEmpty() ? ListElements(*Value) : Line.Below;
		const bool bListed = Value && Value->AsArray() && !Line.Below.IsEmpty();
		Line.Cells.Add(bListed ? FString::Printf("%d:", Line.Below.Num()) : GetCell(Object, Key));
	}

	/** A line for each row, under the names of the columns. */
	void PrintRows()
	{
		const FJsonArray& Rows = GetArray(Content, "rows");
		if (Rows.IsEmpty())
			return;
		TArray<FString> Columns;
		for (const FJsonValue& Row : Rows)
			for (const FJsonObject::FField& Cell : GetCells(Row)->GetFields())
				if (!Columns.Contains(Cell.Key))
					Columns.Add(Cell.Key);
		TArray<FLine> Lines = {{{"row"}, {}}};
		for (const FString& Column : Columns)
			Lines.Last().Cells.Add(Terminal::Sanitize(Column));
		for (const FJsonValue& Row : Rows)
		{
			FLine& Line = Lines.Emplace_GetRef(FLine{{GetPrintable(*Row.AsObject(), "name")}, {}});
			for (const FString& Column : Columns)
				Line.Cells.Add(GetCellOfRow(Row, Column));
		}
		Out += Paint.Bold("rows") + "\n";
		PrintLines(Lines);
	}

	static FString GetCellOfRow(const FJsonValue& Row, const FString& Column)
	{
		const TSharedPtr<FJsonObject> Cells = GetCells(Row);
		const FJsonValue* const Value = Cells->FindField(Column);
		return Value ? GetText(*Value) : FString();
	}

	static TSharedPtr<FJsonObject> GetCells(const FJsonValue& Row)
	{
		auto Cells = MakeShared<FJsonObject>();
		Row.AsObject()->TryGetObjectField("cells", Cells);
		return Cells;
	}

	/** Aligned; columns that are empty throughout are left out. */
	void PrintLines(const TArray<FLine>& Lines)
	{
		TArray<int32> Widths;
		for (const FLine& Line : Lines)
		{
			for (int32 Column = 0; Column < Line.Cells.Num(); ++Column)
			{
				if (Column == Widths.Num())
					Widths.Add(0);
				Widths[Column] = std::max(Widths[Column], std::min(Line.Cells[Column].Len(), MaxCellWidth));
			}
		}
		for (const FLine& Line : Lines)
		{
			FString Text;
			for (int32 Column = 0; Column < Line.Cells.Num(); ++Column)
				if (Widths[Column] > 0)
					Text += "  " + Pad(Line.Cells[Column], Widths[Column]);
			Out += Text.View().substr(0, Text.View().find_last_not_of(' ') + 1);
			Out += "\n";
			for (const FString& Below : Line.Below)
				Out += "      " + Below + "\n";
		}
	}

	void PrintTree(const FJsonArray& Nodes, const FString& Indentation)
	{
		for (const FJsonValue& Element : Nodes)
		{
			const FJsonObject& Node = *Element.AsObject();
			const FString Property = GetPrintable(Node, "as");
			Out += Indentation + (Property.IsEmpty() ? FString() : Paint.Dim(Property + ": ")) + GetPrintable(Node, "object") +
				"  " + Paint.Dim(GetPrintable(Node, "class")) + DescribeValues(Node) + "\n";
			PrintTree(GetArray(Node, "children"), Indentation + "  ");
		}
	}

	static FString DescribeValues(const FJsonObject& Node)
	{
		TArray<FString> Texts;
		TSharedPtr<FJsonObject> Values;
		if (Node.TryGetObjectField("values", Values))
			for (const FJsonObject::FField& Value : Values->GetFields())
				Texts.Add(Terminal::Sanitize(Value.Key) + "=" + Terminal::Sanitize(Json::Write(Value.Value)));
		return Texts.IsEmpty() ? FString() : "  " + FString::Join(Texts, " ");
	}

	void PrintNeighbours(const FJsonObject& References, const char* Key, const char* Heading)
	{
		TSharedPtr<FJsonObject> Neighbours;
		int32 Count = 0;
		if (!References.TryGetObjectField(Key, Neighbours) || !Neighbours->TryGetNumberField("count", Count))
			return;
		const FJsonArray& First = GetArray(*Neighbours, "first");
		Out += Paint.Bold(Heading) + ": " + FString::FromInt(Count) +
			(First.Num() < Count ? FString::Printf(", the first %d:", First.Num()) : FString()) + "\n";
		TArray<FLine> Lines;
		for (const FJsonValue& Neighbour : First)
			Lines.Add({{GetPrintable(*Neighbour.AsObject(), "path"), GetPrintable(*Neighbour.AsObject(), "kind"),
						   GetPrintable(*Neighbour.AsObject(), "type")},
				{}});
		PrintLines(Lines);
	}

	const FJsonObject& Content;
	FPainter Paint;
	FString Out;
};

/** A word that no section has is wrong use, at a shell. */
bool AreSectionsKnown(const FJsonObject& ToolArguments)
{
	TArray<FString> Sections;
	for (const FJsonValue& Element : GetArray(ToolArguments, "sections"))
		Element.TryGetString(Sections.Emplace_GetRef());
	const FString Error = DescribeUnknownSection(Sections);
	if (!Error.IsEmpty())
		Terminal::PrintError("orivane show: " + Terminal::Sanitize(Error) + "\n");
	return Error.IsEmpty();
}

void PrintSuggestionsIfMissing(const FString& Asset)
{
	FString Error;
	const bool bSeveral = !FindAssetsByName(Asset, 1).IsEmpty(); // and the error has named them
	if (!FindNamedAsset(Asset, Error) && !bSeveral)
		PrintSuggestions(Asset);
}

int PrintResult(const Orivane::FToolResult& Result, const FShowArguments& Arguments)
{
	PrintProblems("show", Result);
	const TSharedPtr<FJsonObject> Content = GetContent(Result, ToolNames::ShowAsset);
	if (!Content)
	{
		FString Asset;
		Arguments.Tool->TryGetStringField("asset_path", Asset);
		PrintSuggestionsIfMissing(Asset);
		return EExitCode::NotFound;
	}
	if (Arguments.bJson)
		Terminal::Print(Json::Write(*Content) + "\n");
	else
		Terminal::Print(FShowPrinter(*Content, Terminal::UsesColor(Arguments.Color)).Print());
	Terminal::PrintError(DescribeRemarks(ToolNames::ShowAsset, Result));
	return EExitCode::Found;
}
}

int RunShow(const FShowArguments& Arguments)
{
	if (!AreSectionsKnown(*Arguments.Tool))
		return EExitCode::WrongUse;
	const FHeadlessEngine Engine;
	RegisterHostTools();
	return CallToolOfProject(Arguments.Project, Arguments.TimeLimit, ToolNames::ShowAsset, Json::Write(*Arguments.Tool),
		[&](const Orivane::FToolResult& Result) { return PrintResult(Result, Arguments); });
}
