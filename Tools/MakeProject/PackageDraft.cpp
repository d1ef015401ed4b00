#include "PackageDraft.h"
#include "Vocabulary.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr uint32 MissingOneIn = 2000; // links to a package that was deleted
constexpr uint32 SoftOf256 = 38;
constexpr uint32 EditorOnlyOneIn = 20;
}

FPackageDraft::FPackageDraft(const FProjectPlan& InPlan, const FLinkPicker& InPicker, const FScriptModule& InScript)
	: Plan(InPlan)
	, Picker(InPicker)
	, Script(InScript)
	, LinkedBy(InPlan.NumPackages(), 0)
{
}

void FPackageDraft::Begin(uint32 InPackage)
{
	Package = InPackage;
	Class = Plan.ClassOf(Package);
	Random = Plan.MakeRandom(EPurpose::Package, Package);
	AssetClassPath = "/Script/Engine.";
	AssetClassPath += RowOf(Class).Name;
	Tags.Text.clear();
	Index.Text.clear();
	Objects.Text.clear();
	Links.clear();
	bLinksScript = false;
	NumLinksWanted = Picker.PickNumLinks(Random, Class);
}

const std::string& FPackageDraft::Finish()
{
	AddFurtherLinks();
	File.Text.clear();
	File.BeginObject();
	WriteHeader();
	File.BeginArray("blueprint_index");
	File.Raw(Index.Text);
	File.EndArray();
	File.BeginArray("objects");
	File.Raw(Objects.Text);
	File.EndArray();
	File.EndObject();
	return File.Text;
}

void FPackageDraft::BeginAssetObject()
{
	Objects.BeginObject();
	Objects.Field("path", Plan.NameOf(Package));
	Objects.Field("class", AssetClassPath);
	Objects.BeginObject("properties");
}

void FPackageDraft::BeginPart(std::string_view Part, std::string_view ClassPath)
{
	Objects.BeginObject();
	Objects.Key("path");
	WritePartPath(Objects, Part);
	Objects.Field("class", ClassPath);
	Objects.BeginObject("properties");
}

void FPackageDraft::EndPart()
{
	Objects.EndObject();
	Objects.EndObject();
}

void FPackageDraft::WritePartPath(FJsonText& Json, std::string_view Part)
{
	std::string& Text = Json.OpenString();
	Text += Plan.NameOf(Package);
	Text += ':';
	Text += Part;
	Json.CloseString();
}

void FPackageDraft::WriteReference(FJsonText& Json, uint32 Target, ELinkKind Kind)
{
	AppendReference(Json.OpenString(), Target, "", Kind);
	Json.CloseString();
}

void FPackageDraft::WriteAnyReference(FJsonText& Json, EAssetClass TargetClass, ELinkKind Kind)
{
	const auto Target = HasRoomForLink() ? Picker.PickOfClass(Random, TargetClass, Package) : std::nullopt;
	if (Target)
		WriteReference(Json, *Target, Kind);
	else
		Json.Raw("null");
}

void FPackageDraft::WriteScriptPath(FJsonText& Json, std::string_view Path)
{
	Json.String(Path);
	LinkTo(ScriptTarget, ELinkKind::Hard);
}

void FPackageDraft::AppendReference(std::string& Out, uint32 Target, std::string_view Behind, ELinkKind Kind)
{
	Plan.AppendObjectPath(Out, Target);
	Out += Behind;
	LinkTo(Target, Kind);
}

void FPackageDraft::WriteValue(FJsonText& Json, EValue Type)
{
	switch (Type)
	{
		case EValue::StaticMesh:
			return WriteAnyReference(Json, EAssetClass::StaticMesh, ELinkKind::Soft);
		case EValue::Texture2D:
			return WriteAnyReference(Json, EAssetClass::Texture2D, ELinkKind::Soft);
		case EValue::SoundWave:
			return WriteAnyReference(Json, EAssetClass::SoundWave, ELinkKind::Soft);
		default:
			return WritePlainValue(Json, Type, Random);
	}
}

void FPackageDraft::WriteType(FJsonText& Json, EValue Type)
{
	if (IsDeclaredByScript(Type))
		return WriteScriptPath(Json, TypeTextOf(Type));
	if (Type != EValue::UserEnum)
		return Json.String(TypeTextOf(Type));

	const auto Target = Picker.PickOfClass(Random, EAssetClass::UserDefinedEnum, Package);
	std::string& Text = Json.OpenString();
	Text += Target ? "byte<" : "byte";
	if (Target)
		AppendReference(Text, *Target, ">");
	Json.CloseString();
}

void FPackageDraft::LinkTo(uint32 Target, ELinkKind Kind)
{
	const bool bHard = Kind == ELinkKind::Hard;
	bool bKnown = false;
	if (Target == ScriptTarget)
		bKnown = std::exchange(bLinksScript, true);
	else if (Target < LinkedBy.size())
		bKnown = std::exchange(LinkedBy[Target], Package + 1) == Package + 1 || Target == Package;

	// One link a target: a hard reference makes it hard, wherever it stands.
	if (!bKnown)
		Links.push_back({Target, bHard, true});
	else if (bHard && Target != Package)
		std::find_if(Links.begin(), Links.end(), [Target](const FLink& Link) { return Link.Target == Target; })->bHard = true;
}

void FPackageDraft::AddFurtherLinks()
{
	for (uint32 TriesLeft = NumLinksWanted * 4; HasRoomForLink() && TriesLeft != 0; --TriesLeft)
	{
		if (Random.OneIn(MissingOneIn))
		{
			Links.push_back({MissingTarget, Random.Chance(128), true});
			continue;
		}
		const auto Target = Picker.PickFurther(Random, Package);
		const std::size_t NumBefore = Links.size();
		if (Target)
			LinkTo(*Target, ELinkKind::Soft);
		if (Links.size() == NumBefore)
			continue;
		Links.back().bHard = !Random.Chance(SoftOf256);
		Links.back().bGame = !Random.OneIn(EditorOnlyOneIn);
	}
}

void FPackageDraft::WriteHeader()
{
	File.Field("varnel_package", 1u);
	File.BeginArray("assets");
	File.BeginObject();
	File.Field("name", Plan.NameOf(Package));
	File.Field("class", AssetClassPath);
	File.BeginObject("tags");
	File.Raw(Tags.Text);
	File.EndObject();
	File.EndObject();
	File.EndArray();
	File.BeginArray("dependencies");
	for (const FLink& Link : Links)
		WriteLink(Link);
	File.EndArray();
}

void FPackageDraft::WriteLink(const FLink& Link)
{
	File.BeginObject();
	File.Key("package");
	std::string& Text = File.OpenString();
	if (Link.Target == ScriptTarget)
		Text += "/Script/Generated";
	else if (Link.Target == MissingTarget)
	{
		// No generated folder has this name.
		Text += "/Game/Obsolete/";
		Text += Random.Pick(Vocabulary::Subjects);
		Text += Random.Pick(Vocabulary::Parts);
		FJsonText::AppendNumber(Text, Random.Below(1000));
	}
	else
		Plan.AppendLongName(Text, Link.Target);
	File.CloseString();
	File.Field("hard", Link.bHard);
	File.Field("game", Link.bGame);
	File.EndObject();
}
