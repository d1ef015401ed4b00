#include "Core/Base/Map.h"
#include "CoreObject/Objects/PackageName.h"
#include "Graph/GraphPage.h"
#include "Graph/GraphPicture.h"
#include "Quellar/Families/AssetFamily.h"

namespace
{
constexpr const char* RuntimeColor = "#3b6fd4";
constexpr const char* EditorColor = "#c07a1e";
// What viewers take by default.
constexpr int32 MaxMermaidLinks = 500;
constexpr int64 MaxMermaidBytes = 50'000;
constexpr int64 MermaidTailBytes = 4'000; // for classes and notes

FString GetLabel(const FGraphPicture::FNode& Node)
{
	return FString(FPackageName::GetShortName(Node.Path));
}

/** Every character that Escapes has a text for, replaced by it. */
FString Escape(const FString& Text, std::initializer_list<std::pair<char, const char*>> Escapes)
{
	std::string Out;
	for (const char Character : Text.View())
	{
		const auto* Row = std::find_if(Escapes.begin(), Escapes.end(), [=](const auto& Pair) { return Pair.first == Character; });
		if (Row == Escapes.end())
			Out += Character;
		else
			Out += Row->second;
	}
	return Out;
}

FString EscapeDot(const FString& Text)
{
	return Escape(Text, {{'"', "\\\""}, {'\\', "\\\\"}});
}

FString EscapeMermaid(const FString& Text)
{
	return Escape(Text, {{'#', "#35;"}, {'"', "#quot;"}, {'<', "#lt;"}, {'>', "#gt;"}, {'&', "#amp;"}, {'`', "#96;"}});
}

FString NameOf(int32 Node)
{
	return FString("n") + FString::FromInt(Node);
}

TSharedPtr<FJsonObject> MakeNodeJson(const FGraphPicture::FNode& Node)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("path", Node.Path);
	Json->SetStringField("label", GetLabel(Node));
	Json->SetStringField("kind", Node.Kind);
	Json->SetStringField("described", DescribeKind(Node.Kind, Node.Class));
	Json->SetStringField("color", GetAssetTypeColor(Node.Kind));
	Json->SetNumberField("level", Node.Level);
	return Json;
}

TSharedPtr<FJsonObject> MakeLinkJson(const FGraphPicture::FLink& Link)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetNumberField("from", Link.From);
	Json->SetNumberField("to", Link.To);
	Json->SetStringField("type", Link.bRuntime ? "Runtime" : "Editor");
	return Json;
}

TSharedPtr<FJsonObject> MakePictureJson(const FGraphPicture& Picture)
{
	FJsonArray Nodes;
	for (const FGraphPicture::FNode& Node : Picture.Nodes)
		Nodes.Add(MakeNodeJson(Node));
	FJsonArray Links;
	for (const FGraphPicture::FLink& Link : Picture.Links)
		Links.Add(MakeLinkJson(Link));
	auto Json = MakeShared<FJsonObject>();
	Json->SetArrayField("nodes", std::move(Nodes));
	Json->SetArrayField("links", std::move(Links));
	FJsonArray Notes;
	for (const FString& Note : Picture.Notes)
		Notes.Add(Note);
	Json->SetArrayField("notes", std::move(Notes));
	return Json;
}
}

FString GraphDrawing::WriteDot(const FGraphPicture& Picture)
{
	FString Out = "digraph assets {\n"
				  "\trankdir=LR;\n"
				  "\tnode [shape=box, style=\"rounded,filled\", fontname=\"Helvetica\", color=\"#5a6472\"];\n"
				  "\tedge [fontname=\"Helvetica\", arrowsize=0.7];\n";
	for (int32 Index = 0; Index < Picture.Nodes.Num(); ++Index)
	{
		const FGraphPicture::FNode& Node = Picture.Nodes[Index];
		Out += FString("\t") + NameOf(Index) + " [label=\"" + EscapeDot(GetLabel(Node)) + "\\n" +
			EscapeDot(DescribeKind(Node.Kind, Node.Class)) + "\", tooltip=\"" + EscapeDot(Node.Path) + "\", fillcolor=\"" +
			GetAssetTypeColor(Node.Kind) + "\"" + (Index == 0 ? ", penwidth=3" : "") + "];\n";
	}
	for (const FGraphPicture::FLink& Link : Picture.Links)
	{
		Out += FString("\t") + NameOf(Link.From) + " -> " + NameOf(Link.To) + " [color=\"" +
			(Link.bRuntime ? RuntimeColor : EditorColor) + "\", style=" + (Link.bRuntime ? "solid" : "dashed") + "];\n";
	}
	if (!Picture.Notes.IsEmpty())
		Out += "\tlabel=\"" + EscapeDot(FString::Join(Picture.Notes, "; ")) + "\";\n";
	return Out + "}\n";
}

namespace
{
/** A flow chart within the limits of viewers: the nodes first, each with the links to those before it, as far as they fit. */
class FMermaidWriter
{
public:
	explicit FMermaidWriter(const FGraphPicture& InPicture) : Picture(InPicture) {}

	FString Write()
	{
		int32 NumNodes = 0;
		while (NumNodes < Picture.Nodes.Num() && AddNode(NumNodes))
			++NumNodes;
		Out += Links;
		TArray<FString> Notes = Picture.Notes;
		if (NumNodes < Picture.Nodes.Num())
			Notes.Add(FString::Printf(
				"%d more assets do not fit into a flow chart; --format html or dot draws them", Picture.Nodes.Num() - NumNodes));
		for (const auto& [Kind, Class] : ClassOfKind)
			Out += FString("\tclassDef ") + Class + " fill:" + GetAssetTypeColor(Kind) + ",stroke:#5a6472,color:#16202b\n";
		Out += "\tstyle n0 stroke-width:3px\n";
		if (!Notes.IsEmpty())
			Out += "\tnotes[\"" + EscapeMermaid(FString::Join(Notes, "; ")) + "\"]\n";
		return Out;
	}

private:
	/** False where it does not fit. */
	bool AddNode(int32 Index)
	{
		const FGraphPicture::FNode& Node = Picture.Nodes[Index];
		FString& Class = ClassOfKind.FindOrAdd(Node.Kind);
		if (Class.IsEmpty())
			Class = FString("kind") + FString::FromInt(ClassOfKind.Num());
		const FString Line = FString("\t") + NameOf(Index) + "[\"" + EscapeMermaid(GetLabel(Node)) + "<br/>" +
			EscapeMermaid(DescribeKind(Node.Kind, Node.Class)) + "\"]:::" + Class + "\n";
		FString NewLinks;
		int32 NumNewLinks = 0;
		for (const FGraphPicture::FLink& Link : Picture.Links)
		{
			if (std::max(Link.From, Link.To) != Index)
				continue;
			NewLinks += FString("\t") + NameOf(Link.From) + (Link.bRuntime ? " --> " : " -.-> ") + NameOf(Link.To) + "\n";
			++NumNewLinks;
		}
		const int64 NumBytes = int64{Out.NumBytes()} + Links.NumBytes() + Line.NumBytes() + NewLinks.NumBytes();
		if (NumLinks + NumNewLinks > MaxMermaidLinks || NumBytes > MaxMermaidBytes - MermaidTailBytes)
			return false;
		NumLinks += NumNewLinks;
		Out += Line;
		Links += NewLinks;
		return true;
	}

	const FGraphPicture& Picture;
	FString Out = "flowchart LR\n";
	FString Links;
	int32 NumLinks = 0;
	TMap<FString, FString> ClassOfKind;
};
}

FString GraphDrawing::WriteMermaid(const FGraphPicture& Picture)
{
	return FMermaidWriter(Picture).Write();
}

FString GraphDrawing::WriteHtml(const FGraphPicture& Picture)
{
	// "</script>" inside of a name must not end the script that holds the data.
	const FString Data = Escape(Json::Write(*MakePictureJson(Picture)), {{'<', "\\u003c"}, {'>', "\\u003e"}, {'&', "\\u0026"}});
	const FStringView Page = GetGraphPage();
	const std::size_t Place = Page.find(GraphPagePlaceholder);
	return FString(Page.substr(0, Place)) + Data + Page.substr(Place + GraphPagePlaceholder.size());
}
