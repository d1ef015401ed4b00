#include "Graph/GraphTree.h"

namespace
{
using namespace ToolOutput;

class FTreePrinter
{
public:
	explicit FTreePrinter(const FPainter& InPaint) : Paint(InPaint) {}

	void PrintDirection(const char* Heading, const FJsonArray& Relations, const TSharedPtr<FJsonObject>& Summary)
	{
		Out += Paint.Bold(Heading) + ": " + DescribeSummary(*Summary) + "\n";
		PrintRelations(Relations, "");
	}

	FString Out;

private:
	void PrintRelations(const FJsonArray& Relations, const FString& Indent)
	{
		for (int32 Index = 0; Index < Relations.Num(); ++Index)
		{
			const FJsonObject& Relation = *Relations[Index].AsObject();
			const bool bLast = Index == Relations.Num() - 1;
			const FString Type = GetPrintable(Relation, "type");
			Out += Paint.Dim(Indent + (bLast ? "└─ " : "├─ ")) + GetPrintable(Relation, "path") + "  " +
				Paint.Dim(GetPrintable(Relation, "kind")) + "  " + (Type == "Runtime" ? Type : Paint.Yellow(Type)) + "\n";
			PrintRelations(GetArray(Relation, "relations"), Indent + (bLast ? "   " : "│  "));
		}
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

	const FPainter& Paint;
};

TSharedPtr<FJsonObject> GetSummary(const FJsonObject& Content, const char* Key)
{
	auto Summary = MakeShared<FJsonObject>();
	Content.TryGetObjectField(Key, Summary);
	return Summary;
}
}

FString RenderGraphTree(const FJsonObject& Content, const FString& RootKind, int32 MaxNodes, const FPainter& Paint)
{
	FTreePrinter Printer(Paint);
	const FString Direction = GetPrintable(Content, "direction");
	Printer.Out += Paint.Bold(GetPrintable(Content, "root")) + "  " + Paint.Dim(RootKind) + "\n";
	if (Direction == "Both")
	{
		Printer.PrintDirection("depends on", GetArray(Content, "dependencies"), GetSummary(Content, "dependencies_summary"));
		Printer.PrintDirection("referred to by", GetArray(Content, "referencers"), GetSummary(Content, "referencers_summary"));
	}
	else
	{
		Printer.PrintDirection(Direction == "Referencers" ? "referred to by" : "depends on", GetArray(Content, "relations"),
			GetSummary(Content, "summary"));
	}
	bool bTruncated = false;
	Content.TryGetBoolField("truncated", bTruncated);
	if (bTruncated)
		Printer.Out +=
			Paint.Yellow(FString::Printf("truncated at %d relations; more qualify, raise --max-nodes", MaxNodes)) + "\n";
	return Printer.Out;
}
