#include "Graph/ReportTree.h"

#include "Core/Base/Map.h"
#include "Tools/ToolOutput.h"

#include <vector>

namespace
{
using namespace ToolOutput;

constexpr int32 MaxDepth = 500; // further than any reader, and less than the stack

class FReportTree
{
public:
	explicit FReportTree(const FJsonObject& Content)
	{
		for (const FJsonValue& Row : GetArray(Content, "rows"))
			Add(*Row.AsObject());
	}

	TSharedPtr<FJsonObject> MakeContent(bool bReferencers) const
	{
		auto Content = MakeShared<FJsonObject>();
		Content->SetStringField("root", Nodes.empty() ? FString() : Nodes[0].Path);
		Content->SetStringField("direction", bReferencers ? "Referencers" : "Dependencies");
		Content->SetArrayField("relations", Nodes.empty() ? FJsonArray() : MakeRelations(Nodes[0]));
		Content->SetObjectField("summary", MakeSummary());
		return Content;
	}

	int32 NumTooDeep = 0;

private:
	struct FNode
	{
		FString Path;
		const FJsonObject* Row; // null for the root
		std::vector<std::size_t> Children;
	};

	void Add(const FJsonObject& Row)
	{
		int32 Depth = 0;
		Row.TryGetNumberField("depth", Depth);
		if (Depth > MaxDepth)
		{
			++NumTooDeep;
			return;
		}
		const FString Path = GetPrintable(Row, "path");
		if (Nodes.empty())
			AddNode(Depth == 0 ? Path : GetPrintable(Row, "via"), nullptr);
		if (Depth == 0)
			return;
		// The last place of a package is right for both: in a report on impact it has one only, and ways come depth first.
		FNode& Parent = Nodes[*PlaceOf.Find(GetPrintable(Row, "via"))];
		if (Parent.Children.empty() || Nodes[Parent.Children.back()].Path != Path)
		{
			Parent.Children.push_back(Nodes.size());
			AddNode(Path, &Row);
		}
	}

	void AddNode(const FString& Path, const FJsonObject* Row)
	{
		PlaceOf.Add(Path, Nodes.size());
		Nodes.push_back({Path, Row, {}});
	}

	FJsonArray MakeRelations(const FNode& Node) const
	{
		FJsonArray Relations;
		for (const std::size_t Place : Node.Children)
		{
			const FNode& Child = Nodes[Place];
			auto Relation = MakeShared<FJsonObject>();
			Relation->SetStringField("path", Child.Path);
			Relation->SetStringField("kind", GetPrintable(*Child.Row, "kind"));
			Relation->SetStringField("type", GetPrintable(*Child.Row, "type"));
			if (!Child.Children.empty())
				Relation->SetArrayField("relations", MakeRelations(Child));
			Relations.Add(Relation);
		}
		return Relations;
	}

	TSharedPtr<FJsonObject> MakeSummary() const
	{
		TMap<FString, TMap<FString, int32>> Counts;
		for (const FNode& Node : Nodes)
		{
			if (!Node.Row)
				continue;
			++Counts.FindOrAdd("by_kind").FindOrAdd(GetPrintable(*Node.Row, "kind"));
			++Counts.FindOrAdd("by_type").FindOrAdd(GetPrintable(*Node.Row, "type"));
		}
		auto Summary = MakeShared<FJsonObject>();
		Summary->SetNumberField("total", Nodes.empty() ? int64{0} : std::ssize(Nodes) - 1);
		for (const auto& [Key, Numbers] : Counts)
		{
			auto Object = MakeShared<FJsonObject>();
			for (const auto& [Name, Number] : Numbers)
				Object->SetNumberField(Name, Number);
			Summary->SetObjectField(Key, Object);
		}
		return Summary;
	}

	std::vector<FNode> Nodes; // the root first
	TMap<FString, std::size_t> PlaceOf;
};
}

FGraphAnswer MakeReportTree(const FGraphAnswer& Report)
{
	FGraphAnswer Answer = Report;
	const FReportTree Tree(*Report.Content);
	Answer.Content = Tree.MakeContent(GetPrintable(*Report.Content, "report") == "impact");
	if (Tree.NumTooDeep > 0)
		Answer.Notes.Add(FString::FromInt(Tree.NumTooDeep) + " more rows are too deep for a tree");
	return Answer;
}
