#include "Graph/GraphPicture.h"

#include "Core/Base/Map.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Families/AssetFamily.h"
#include "Tools/HostTools.h"
#include "Tools/ToolOutput.h"
#include "Tools/ToolRemarks.h"

#include <cstdlib>

namespace
{
enum class EStep : int32
{
	ToDependency = 1,
	ToReferencer = -1,
};

class FPictureBuilder
{
public:
	FPictureBuilder(FGraphPicture& InPicture, const FGraphAnswer& InAnswer) : Picture(InPicture), Answer(InAnswer) {}

	/** Of the kind that its class says. */
	int32 AddPackage(const FString& Path, int32 Level)
	{
		const FString Class = Answer.FindClass(Path);
		return AddNode(Path, Class.IsEmpty() ? FString() : AssetTypeFromClassName(Class), Level);
	}

	int32 AddNode(const FString& Path, const FString& Kind, int32 Level)
	{
		if (const int32* Known = NodeByPath.Find(Path))
		{
			FGraphPicture::FNode& Node = Picture.Nodes[*Known];
			if (std::abs(Level) < std::abs(Node.Level))
				Node.Level = Level;
			return *Known;
		}
		NodeByPath.Add(Path, Picture.Nodes.Num());
		return Picture.Nodes.Add({Path, Kind, Answer.FindClass(Path), Level});
	}

	void AddRelations(int32 Parent, int32 ParentLevel, const FJsonArray& Relations, EStep Step)
	{
		for (const FJsonValue& Element : Relations)
		{
			const FJsonObject& Relation = *Element.AsObject();
			const int32 Level = ParentLevel + static_cast<int32>(Step);
			const int32 Node =
				AddNode(ToolOutput::GetPrintable(Relation, "path"), ToolOutput::GetPrintable(Relation, "kind"), Level);
			AddLink(Step == EStep::ToDependency ? Parent : Node, Step == EStep::ToDependency ? Node : Parent,
				ToolOutput::GetPrintable(Relation, "type") == "Runtime");
			AddRelations(Node, Level, ToolOutput::GetArray(Relation, "relations"), Step);
		}
	}

	/** A row of a report: a package, and the one that it was come to from. */
	void AddRow(const FString& Path, const FString& Before, EStep Step, bool bRuntime)
	{
		if (Before.IsEmpty())
		{
			AddPackage(Path, 0);
			return;
		}
		const auto* const Known = NodeByPath.Find(Before);
		const int32 From = Known ? *Known : AddPackage(Before, 0);
		const int32 To = AddPackage(Path, Picture.Nodes[From].Level + static_cast<int32>(Step));
		AddLink(Step == EStep::ToDependency ? From : To, Step == EStep::ToDependency ? To : From, bRuntime);
	}

private:
	void AddLink(int32 From, int32 To, bool bRuntime)
	{
		if (KnownLinks.Add(int64{From} << 32 | To))
			Picture.Links.Add({From, To, bRuntime});
	}

	FGraphPicture& Picture;
	const FGraphAnswer& Answer;
	TMap<FString, int32> NodeByPath;
	TSet<int64> KnownLinks; // a link found from both of its ends is the registry's one link
};
}

FString FindClassName(const FString& Package)
{
	FAssetData Asset;
	return AssetPathUtils::GetRepresentativeAsset(Package, Asset) ? Asset.AssetClassPath.AssetName.ToString() : FString();
}

FGraphAnswer MakeGraphAnswer(const Orivane::FToolResult& Result, const char* ToolName, const char* PayloadKey)
{
	FGraphAnswer Answer{.Content = ToolOutput::GetContent(Result, PayloadKey),
		.FindClass = FindClassName,
		.Root = {},
		.Missing = {},
		.Notes = {}};
	const FString Asked = ToolOutput::GetPrintable(*Answer.Content, "root");
	if (const FName Known = GetProjectRegistry().FindPackage(Asked); !Known.IsNone())
		Answer.Root = Known.ToString();
	for (const Orivane::FToolRemark& Remark : Result.GetRemarks())
	{
		Answer.Missing.Append(Remark.Names);
		Answer.Notes.Add(Terminal::Sanitize(DescribeRemarkForShell(Remark, *FindTool(ToolName))));
	}
	return Answer;
}

FString DescribeKind(const FString& Kind, const FString& Class)
{
	const bool bSaysNoMore = Class.EndsWith(Kind) || Class == Kind + "Data"; // "UserDefinedEnum", "BlackboardData"
	return bSaysNoMore || Class.IsEmpty() ? Kind : Kind + (Kind.IsEmpty() ? "" : " ") + "(" + Class + ")";
}

FGraphPicture MakeGraphPicture(const FGraphAnswer& Answer)
{
	const FJsonObject& Content = *Answer.Content;
	FGraphPicture Picture;
	FPictureBuilder Builder(Picture, Answer);
	const int32 Root = Builder.AddPackage(Answer.Root.IsEmpty() ? ToolOutput::GetPrintable(Content, "root") : Answer.Root, 0);
	const bool bReferencers = ToolOutput::GetPrintable(Content, "direction") == "Referencers";
	Builder.AddRelations(
		Root, 0, ToolOutput::GetArray(Content, "relations"), bReferencers ? EStep::ToReferencer : EStep::ToDependency);
	Builder.AddRelations(Root, 0, ToolOutput::GetArray(Content, "dependencies"), EStep::ToDependency);
	Builder.AddRelations(Root, 0, ToolOutput::GetArray(Content, "referencers"), EStep::ToReferencer);
	Picture.Notes = Answer.Notes;
	return Picture;
}

FGraphPicture MakeReportPicture(const FGraphAnswer& Answer)
{
	FGraphPicture Picture;
	FPictureBuilder Builder(Picture, Answer);
	const FString Report = ToolOutput::GetPrintable(*Answer.Content, "report");
	const char* const Before = Report == "cycles" ? "from" : "via";
	const EStep Step = Report == "impact" ? EStep::ToReferencer : EStep::ToDependency;
	for (const FJsonValue& Element : ToolOutput::GetArray(*Answer.Content, "rows"))
	{
		const FJsonObject& Row = *Element.AsObject();
		Builder.AddRow(ToolOutput::GetPrintable(Row, "path"), ToolOutput::GetPrintable(Row, Before), Step,
			ToolOutput::GetPrintable(Row, "type") == "Runtime");
	}
	Picture.Notes = Answer.Notes;
	return Picture;
}
