#include "BlueprintIndex.h"
#include "Bodies.h"
#include "Vocabulary.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr std::string_view NativeParents[] = {"/Script/Engine.Actor", "/Script/Engine.Actor", "/Script/Engine.Actor",
	"/Script/Engine.Pawn", "/Script/Engine.Character", "/Script/Engine.Character", "/Script/Engine.Controller",
	"/Script/Engine.GameModeBase", "/Script/Engine.ActorComponent", "/Script/Engine.SceneComponent"};

constexpr std::string_view WidgetClasses[] = {"CanvasPanel", "VerticalBox", "HorizontalBox", "Overlay", "Border", "Button",
	"TextBlock", "TextBlock", "Image", "Image", "ProgressBar", "ListView"};

/** The native class, perhaps of the script module, that a Blueprint derives from through all its Blueprint parents. */
std::string_view NativeParentOf(const FPackageDraft& Draft)
{
	if (Draft.Class == EAssetClass::WidgetBlueprint)
		return "/Script/Engine.UserWidget";
	if (Draft.Class == EAssetClass::AnimBlueprint)
		return "/Script/Engine.AnimInstance";
	FRandom Random = Draft.Plan.MakeRandom(EPurpose::Variables, Draft.Picker.RootOf(Draft.Package));
	if (Random.Chance(80))
		return Random.Pick(Draft.Script.TypesFor(EScriptRole::Actor)).Path;
	return Random.Pick(NativeParents);
}

/** Appends the path of a class, with a link where it is not the engine's. */
void AppendParentClass(FPackageDraft& Draft, std::string& Out, std::optional<uint32> Parent, std::string_view NativeParent)
{
	if (Parent)
		return Draft.AppendReference(Out, *Parent, "_C");
	Out += NativeParent;
	if (!NativeParent.starts_with("/Script/Engine."))
		Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
}

/** Writes a class path as a tag: plain, or in the wrapped form that older versions wrote. */
template <class TAppend>
void WriteClassTag(FPackageDraft& Draft, std::string_view Name, bool bWrapped, TAppend&& Append)
{
	Draft.Tags.Key(Name);
	std::string& Text = Draft.Tags.OpenString();
	if (bWrapped)
		Text += "Class'";
	Append(Text);
	if (bWrapped)
		Text += '\'';
	Draft.Tags.CloseString();
}

void WriteTags(FPackageDraft& Draft, std::optional<uint32> Parent, std::string_view NativeParent)
{
	const bool bWrapped = Draft.Random.Chance(128);
	WriteClassTag(Draft, "GeneratedClass", bWrapped,
		[&Draft](std::string& Text)
		{
			Draft.Plan.AppendObjectPath(Text, Draft.Package);
			Text += "_C";
		});
	WriteClassTag(
		Draft, "ParentClass", bWrapped, [&](std::string& Text) { AppendParentClass(Draft, Text, Parent, NativeParent); });
	WriteClassTag(Draft, "NativeParentClass", bWrapped,
		[&](std::string& Text) { AppendParentClass(Draft, Text, std::nullopt, NativeParent); });
}

/** Words for variables that no Blueprint parent uses for its own: every depth of derivation has its share of the adjectives. */
std::vector<FVariable> MakeVariables(FPackageDraft& Draft)
{
	constexpr uint32 NumShares = 8;
	uint32 Depth = 0;
	for (auto Parent = Draft.Picker.ParentOf(Draft.Package); Parent; Parent = Draft.Picker.ParentOf(*Parent))
		++Depth;

	const uint32 NumAdjectives = static_cast<uint32>(Vocabulary::Adjectives.size()) / NumShares;
	FDistinctNumbers Words(Draft.Random, NumAdjectives * static_cast<uint32>(Vocabulary::Quantities.size()));
	std::vector<FVariable> Variables(std::min(Draft.Random.HeavyTailed(8 * 256), 80u));
	for (FVariable& Variable : Variables)
	{
		const uint32 Pair = Words.Next();
		Variable.Type = PickValueType(Draft.Random, static_cast<uint32>(EValue::Count));
		if (Variable.Type == EValue::Bool)
			Variable.Name += 'b';
		Variable.Name += Vocabulary::Adjectives[Pair % NumAdjectives * NumShares + Depth % NumShares];
		Variable.Name += Vocabulary::Quantities[Pair / NumAdjectives];
	}
	return Variables;
}

void WriteVariables(FPackageDraft& Draft, const std::vector<FVariable>& Variables)
{
	FJsonText& Json = Draft.Objects;
	Json.BeginArray("NewVariables");
	for (const FVariable& Variable : Variables)
	{
		Json.BeginObject();
		Json.Field("name", Variable.Name);
		Json.Key("type");
		Draft.WriteType(Json, Variable.Type);
		if (static_cast<uint32>(Variable.Type) < NumPlainValues && Draft.Random.Chance(128))
		{
			Json.Key("default");
			WritePlainValue(Json, Variable.Type, Draft.Random);
		}
		Json.EndObject();
	}
	Json.EndArray();
}

void WriteAnimations(FPackageDraft& Draft, uint32 NumAnimations)
{
	Draft.Objects.BeginArray("Animations");
	for (uint32 Animation = 0; Animation < NumAnimations; ++Animation)
		Draft.WritePartPath(Draft.Objects, "Fade_" + std::to_string(Animation));
	Draft.Objects.EndArray();
}

/** A widget of the engine, or an instance of another widget Blueprint. */
void WriteWidget(FPackageDraft& Draft, uint32 Index)
{
	std::string ClassPath = "/Script/Engine.";
	std::string Name = "WidgetTree.";
	const auto Nested = Index != 0 && Draft.Random.OneIn(8)
		? Draft.Picker.PickOfClass(Draft.Random, EAssetClass::WidgetBlueprint, Draft.Package)
		: std::nullopt;
	if (Nested)
	{
		ClassPath.clear();
		Draft.AppendReference(ClassPath, *Nested, "_C");
		Name += Draft.Random.Pick(Vocabulary::Subjects);
	}
	else
	{
		const std::string_view Class = Index == 0 ? WidgetClasses[0] : Draft.Random.Pick(WidgetClasses);
		ClassPath += Class;
		Name += Draft.Random.Chance(128) ? Class : Draft.Random.Pick(Vocabulary::Parts);
	}
	Draft.BeginPart(Index == 0 ? "WidgetTree.Root" : Name + "_" + std::to_string(Index), ClassPath);
	Draft.EndPart();
}

void WriteWidgetParts(FPackageDraft& Draft, uint32 NumAnimations)
{
	Draft.BeginPart("WidgetTree", "/Script/Engine.WidgetTree");
	Draft.Objects.Key("RootWidget");
	Draft.WritePartPath(Draft.Objects, "WidgetTree.Root");
	Draft.EndPart();

	const uint32 NumWidgets = std::min(3 + Draft.Random.HeavyTailed(15 * 256), 400u);
	for (uint32 Widget = 0; Widget < NumWidgets; ++Widget)
		WriteWidget(Draft, Widget);
	for (uint32 Animation = 0; Animation < NumAnimations; ++Animation)
	{
		Draft.BeginPart("Fade_" + std::to_string(Animation), "/Script/Engine.WidgetAnimation");
		Draft.EndPart();
	}
}
}

void WriteBlueprint(FPackageDraft& Draft)
{
	const auto Parent = Draft.Picker.ParentOf(Draft.Package);
	const std::string_view NativeParent = NativeParentOf(Draft);
	const std::vector<FVariable> Variables = MakeVariables(Draft);
	WriteTags(Draft, Parent, NativeParent);
	WriteIndex(Draft.Index, Draft.Random, Variables, Draft.Plan.GetOptions().BlueprintEntries);

	const bool bWidget = Draft.Class == EAssetClass::WidgetBlueprint;
	const uint32 NumAnimations = bWidget ? Draft.Random.Doublings(100, 6) : 0;
	Draft.BeginAssetObject();
	Draft.Objects.Key("ParentClass");
	AppendParentClass(Draft, Draft.Objects.OpenString(), Parent, NativeParent);
	Draft.Objects.CloseString();
	WriteVariables(Draft, Variables);
	if (bWidget)
	{
		Draft.Objects.Key("WidgetTree");
		Draft.WritePartPath(Draft.Objects, "WidgetTree");
		WriteAnimations(Draft, NumAnimations);
	}
	Draft.EndPart();
	if (bWidget)
		WriteWidgetParts(Draft, NumAnimations);
}
