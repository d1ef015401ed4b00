#include "Graph/GraphPicture.h"

#include "Core/Base/Map.h"
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

	int32 AddRoot(const FString& Path)
	{
		const FString Class = Answer.FindClass(Path);
		return AddNode(Path, Class.IsEmpty() ? FString() : AssetTypeFromClassName(Class), 0);
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

FGraphAnswer MakeGraphAnswer(const Orivane::FToolResult& Result)
{
	FGraphAnswer Answer{.Content = ToolOutput::GetContent(Result),
		.FindClass =
			[](const FString& Package)
		{
			FAssetData Asset;
			return AssetPathUtils::GetRepresentativeAsset(Package, Asset) ? Asset.AssetClassPath.AssetName.ToString() : FString();
		},
		.Missing = {},
		.Notes = {}};
	for (const Orivane::FToolRemark& Remark : Result.GetRemarks())
	{
		Answer.Missing.Append(Remark.Names);
		Answer.Notes.Add(Terminal::Sanitize(DescribeRemarkForShell(Remark, *FindTool(ToolNames::AssetGraph))));
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
	const int32 Root = Builder.AddRoot(ToolOutput::GetPrintable(Content, "root"));
	const bool bReferencers = ToolOutput::GetPrintable(Content, "direction") == "Referencers";
	Builder.AddRelations(
		Root, 0, ToolOutput::GetArray(Content, "relations"), bReferencers ? EStep::ToReferencer : EStep::ToDependency);
	Builder.AddRelations(Root, 0, ToolOutput::GetArray(Content, "dependencies"), EStep::ToDependency);
	Builder.AddRelations(Root, 0, ToolOutput::GetArray(Content, "referencers"), EStep::ToReferencer);
	Picture.Notes = Answer.Notes;
	return Picture;
}
