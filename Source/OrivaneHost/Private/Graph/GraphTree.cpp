#include "Graph/GraphTree.h"

#include "Quellar/Families/AssetFamily.h"

namespace
{
using namespace ToolOutput;

class FTreePrinter
{
public:
	FTreePrinter(const FGraphAnswer& InAnswer, const FPainter& InPaint) : Answer(InAnswer), Paint(InPaint) {}

	void PrintRoot()
	{
		const FString Root = Answer.Root.IsEmpty() ? GetPrintable(*Answer.Content, "root") : Terminal::Sanitize(Answer.Root);
		const FString Class = Answer.FindClass(Root);
		Out += Paint.Bold(Root) + "  " + Paint.Dim(DescribeKind(Class.IsEmpty() ? Class : AssetTypeFromClassName(Class), Class)) +
			"\n";
	}
	void PrintDependencies(const char* RelationsKey, const char* SummaryKey)
	{
		PrintHeading("depends on", SummaryKey);
		PrintRelations(GetArray(*Answer.Content, RelationsKey), "", Answer.Missing);
	}
	void PrintReferencers(const char* RelationsKey, const char* SummaryKey)
	{
		PrintHeading("referred to by", SummaryKey);
		PrintRelations(GetArray(*Answer.Content, RelationsKey), "", {});
	}
	void PrintNotes()
	{
		for (const FString& Note : Answer.Notes)
			Out += Paint.Yellow(Note) + "\n";
	}

	FString Out;

private:
	void PrintHeading(const char* Heading, const char* SummaryKey)
	{
		auto Summary = MakeShared<FJsonObject>();
		Answer.Content->TryGetObjectField(SummaryKey, Summary);
		Out += Paint.Bold(Heading) + ": " + DescribeSummary(*Summary) + "\n";
	}

	void PrintRelations(const FJsonArray& Relations, const FString& Indent, const TArray<FString>& Missing)
	{
		const int32 Num = Relations.Num() + Missing.Num();
		for (int32 Index = 0; Index < Num; ++Index)
		{
			const bool bLast = Index == Num - 1;
			Out += Paint.Dim(Indent + (bLast ? "└─ " : "├─ "));
			if (Index < Relations.Num())
				PrintRelation(*Relations[Index].AsObject(), Indent + (bLast ? "   " : "│  "));
			else
				Out += Terminal::Sanitize(Missing[Index - Relations.Num()]) + "  " + Paint.Red("missing") + "\n";
		}
	}

	void PrintRelation(const FJsonObject& Relation, const FString& Indent)
	{
		const FString Path = GetPrintable(Relation, "path");
		const FString Type = GetPrintable(Relation, "type");
		Out += Path + "  " + Paint.Dim(DescribeKind(GetPrintable(Relation, "kind"), Answer.FindClass(Path))) + "  " +
			(Type == "Runtime" ? Type : Paint.Yellow(Type)) + "\n";
		PrintRelations(GetArray(Relation, "relations"), Indent, {});
	}

	/** "12 relations (Blueprint 7, Enum 5; Runtime 10, Editor 2)" */
	static FString DescribeSummary(const FJsonObject& Summary)
	{
		int32 Total = 0;
		Summary.TryGetNumberField("total", Total);
		const FString Number = FString::Printf("%d %s", Total, Total == 1 ? "relation" : "relations");
		return Total == 0 ? Number
						  : Number + " (" + DescribeCounts(Summary, "by_kind") + "; " + DescribeCounts(Summary, "by_type") + ")";
	}

	static FString DescribeCounts(const FJsonObject& Summary, const char* Key)
	{
		TArray<FString> Texts;
		TSharedPtr<FJsonObject> Counts;
		if (!Summary.TryGetObjectField(Key, Counts))
			return {};
		for (const FJsonObject::FField& Field : Counts->GetFields())
		{
			int32 Count = 0;
			Field.Value.TryGetNumber(Count);
			Texts.Add(Field.Key + " " + FString::FromInt(Count));
		}
		return FString::Join(Texts, ", ");
	}

	const FGraphAnswer& Answer;
	const FPainter& Paint;
};
}

FString RenderGraphTree(const FGraphAnswer& Answer, const FPainter& Paint)
{
	FTreePrinter Printer(Answer, Paint);
	Printer.PrintRoot();
	const FString Direction = GetPrintable(*Answer.Content, "direction");
	if (Direction == "Both")
	{
		Printer.PrintDependencies("dependencies", "dependencies_summary");
		Printer.PrintReferencers("referencers", "referencers_summary");
	}
	else if (Direction == "Referencers")
		Printer.PrintReferencers("relations", "summary");
	else
		Printer.PrintDependencies("relations", "summary");
	Printer.PrintNotes();
	return Printer.Out;
}
