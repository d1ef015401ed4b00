#include "CoreObject/Objects/PackageName.h"
#include "Graph/GraphPage.h"
#include "Graph/GraphPicture.h"
#include "Quellar/Families/AssetFamily.h"

namespace
{
constexpr const char* RuntimeColor = "#3b6fd4";
constexpr const char* EditorColor = "#c07a1e";

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
	Json->SetBoolField("truncated", Picture.bTruncated);
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
		Out += FString("\t") + NameOf(Index) + " [label=\"" + EscapeDot(GetLabel(Node)) + "\\n" + EscapeDot(Node.Kind) +
			"\", tooltip=\"" + EscapeDot(Node.Path) + "\", fillcolor=\"" + GetAssetTypeColor(Node.Kind) + "\"" +
			(Index == 0 ? ", penwidth=3" : "") + "];\n";
	}
	for (const FGraphPicture::FLink& Link : Picture.Links)
	{
		Out += FString("\t") + NameOf(Link.From) + " -> " + NameOf(Link.To) + " [color=\"" +
			(Link.bRuntime ? RuntimeColor : EditorColor) + "\", style=" + (Link.bRuntime ? "solid" : "dashed") + "];\n";
	}
	if (Picture.bTruncated)
		Out += "\tlabel=\"truncated: more relations qualify\";\n";
	return Out + "}\n";
}

FString GraphDrawing::WriteMermaid(const FGraphPicture& Picture)
{
	FString Out = "flowchart LR\n";
	TMap<FString, FString> ClassOfKind;
	for (int32 Index = 0; Index < Picture.Nodes.Num(); ++Index)
	{
		const FGraphPicture::FNode& Node = Picture.Nodes[Index];
		FString& Class = ClassOfKind.FindOrAdd(Node.Kind);
		if (Class.IsEmpty())
			Class = FString("kind") + FString::FromInt(ClassOfKind.Num());
		Out += FString("\t") + NameOf(Index) + "[\"" + EscapeMermaid(GetLabel(Node)) + "<br/>" + EscapeMermaid(Node.Kind) +
			"\"]:::" + Class + "\n";
	}
	for (const FGraphPicture::FLink& Link : Picture.Links)
		Out += FString("\t") + NameOf(Link.From) + (Link.bRuntime ? " --> " : " -.-> ") + NameOf(Link.To) + "\n";
	for (const auto& [Kind, Class] : ClassOfKind)
		Out += FString("\tclassDef ") + Class + " fill:" + GetAssetTypeColor(Kind) + ",stroke:#5a6472,color:#16202b\n";
	Out += "\tstyle n0 stroke-width:3px\n";
	if (Picture.bTruncated)
		Out += "\ttruncated[\"truncated: more relations qualify\"]\n";
	return Out;
}

FString GraphDrawing::WriteHtml(const FGraphPicture& Picture)
{
	// "</script>" inside of a name must not end the script that holds the data.
	const FString Data = Escape(Json::Write(*MakePictureJson(Picture)), {{'<', "\\u003c"}, {'>', "\\u003e"}, {'&', "\\u0026"}});
	const FStringView Page = GetGraphPage();
	const std::size_t Place = Page.find(GraphPagePlaceholder);
	return FString(Page.substr(0, Place)) + Data + Page.substr(Place + GraphPagePlaceholder.size());
}
