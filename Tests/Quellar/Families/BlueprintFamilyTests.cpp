#include "Support/TestProject.h"

#include "CoreObject/Objects/Object.h"

namespace
{
/** Entries as in a package's "blueprint_index". Without a body: nothing of these Blueprints can be loaded. */
void AddBlueprint(
	FTestProject& Project, const std::string& Path, const std::string& Entries, const std::string& Class = "Blueprint")
{
	const std::string Name = Path.substr(Path.rfind('/') + 1);
	Project.File("Content/" + Path + ".vasset",
		R"({"varnel_package":1,"assets":[{"name":")" + Name + R"(","class":"/Script/Engine.)" + Class +
			R"("}],"blueprint_index":[)" + Entries + R"(],"objects":7})");
}

/** Widgets as "Name Class". */
void AddWidgetBlueprint(FTestProject& Project, const std::string& Path,
	const std::vector<std::pair<std::string, std::string>>& Widgets, const std::vector<std::string>& Animations = {})
{
	const std::string Name = Path.substr(Path.rfind('/') + 1);
	std::string Objects;
	const auto AddObject = [&](const std::string& Below, const std::string& Class)
	{ Objects += R"(,{"path":")" + Name + ":" + Below + R"(","class":"/Script/Engine.)" + Class + R"(","properties":{}})"; };
	AddObject("WidgetTree", "WidgetTree");
	for (const auto& [Widget, Class] : Widgets)
		AddObject("WidgetTree." + Widget, Class);
	std::string List = "null"; // a slot whose animation is gone
	for (const std::string& Animation : Animations)
	{
		AddObject(Animation, "WidgetAnimation");
		List += ",\"" + Name + ":" + Animation + "\"";
	}
	Project.File("Content/" + Path + ".vasset",
		R"({"varnel_package":1,"assets":[{"name":")" + Name +
			R"(","class":"/Script/Engine.WidgetBlueprint"}],"blueprint_index":[],"objects":[{"path":")" + Name +
			R"(","class":"/Script/Engine.WidgetBlueprint","properties":{"WidgetTree":")" + Name +
			R"(:WidgetTree","Animations":[)" + List + "]}}" + Objects + "]}");
}

constexpr const char* HealthEntries = R"(
	{"category":"Var","text":"Health"},{"category":"Var","text":"MaxHealth"},{"category":"Var","text":"Speed"},
	{"category":"Graph","text":"EventGraph","children":[
		{"category":"Node","text":"Set Health","children":[{"category":"Pin","text":"Health"},{"category":"Pin","text":"Target"}]},
		{"category":"Node","text":"Set Health","children":[{"category":"Pin","text":"Health"}]},
		{"category":"Comment","text":"Regeneration","comment":"health comes back"}]})";
}

TEST(BlueprintFamily, ReportsEntriesWithWhatLeadsToThem)
{
	FTestProject Project;
	AddBlueprint(Project, "AI/BP_Guard", HealthEntries);
	AddBlueprint(Project, "UI/ABP_Guard", R"({"category":"Graph","text":"Health"})", "AnimBlueprint");
	const char* const Guard = "/Game/AI/BP_Guard: Blueprint /Game/AI/BP_Guard.BP_Guard; ";
	const auto GuardHits = [&](const char* Hits) { return Guard + std::string(Hits); };
	const TCase<FAssetSearchParams, std::string> Cases[] = {
		{"the same kind, name and container twice is one hit with a count; the container is the parent's text",
			{.Term = "health", .PathContains = "/AI/"},
			GuardHits("Var Health @/Game/AI/BP_Guard.BP_Guard; Var MaxHealth @/Game/AI/BP_Guard.BP_Guard; "
					  "Graph EventGraph @/Game/AI/BP_Guard.BP_Guard; Node Set Health @EventGraph x2; Pin Health @Set Health x2; "
					  "Comment Regeneration @EventGraph")},
		{"the index has matched: neither mode nor case is asked again",
			{.Term = "TARGET", .bExact = true, .bCaseSensitive = true},
			GuardHits("Graph EventGraph @/Game/AI/BP_Guard.BP_Guard; Node Set Health @EventGraph; Pin Target @Set Health")},
		{"the path filter looks at the object path", {.Term = "speed", .PathContains = "bp_guard.BP"},
			GuardHits("Var Speed @/Game/AI/BP_Guard.BP_Guard")},
		{"with the search's case", {.Term = "speed", .bCaseSensitive = true, .PathContains = "bp_guard.BP"}, ""},
		{"contains, also in exact mode", {.Term = "speed", .bExact = true, .PathContains = "Guard"},
			GuardHits("Var Speed @/Game/AI/BP_Guard.BP_Guard")},
		{"kinds do not select entries", {.Term = "speed", .IncludeKinds = {"Node"}},
			GuardHits("Var Speed @/Game/AI/BP_Guard.BP_Guard")},
		{"an animation Blueprint is a Blueprint here", {.Term = "health", .PathContains = "UI"},
			"/Game/UI/ABP_Guard: AnimBlueprint /Game/UI/ABP_Guard.ABP_Guard; Graph Health @/Game/UI/ABP_Guard.ABP_Guard"},
		{"a kind is capped per asset", {.Term = "health", .PathContains = "/AI/", .MaxHitsPerKind = 1},
			GuardHits("Var Health @/Game/AI/BP_Guard.BP_Guard; Graph EventGraph @/Game/AI/BP_Guard.BP_Guard; "
					  "Node Set Health @EventGraph x2; Pin Health @Set Health x2; Comment Regeneration @EventGraph (truncated)")},
		{"the hit cap ends the pass, before repeats are counted", {.Term = "health", .MaxTotalHits = 6},
			GuardHits("Var Health @/Game/AI/BP_Guard.BP_Guard; Var MaxHealth @/Game/AI/BP_Guard.BP_Guard; "
					  "Graph EventGraph @/Game/AI/BP_Guard.BP_Guard; Node Set Health @EventGraph; Pin Health @Set Health")},
		{"a cap below one is one", {.Term = "health", .MaxTotalHits = 0},
			"/Game/AI/BP_Guard: Blueprint /Game/AI/BP_Guard.BP_Guard"},
		{"nothing", {.Term = "absent"}, ""},
	};
	for (auto Case : Traced(Cases))
	{
		Case.Given.IncludeAssetFamilies = {"blueprint"};
		EXPECT_EQ(Render(Project.Search(Case.Given)), Case.Expected);
	}
	EXPECT_EQ(FindPackage("/Game/AI/BP_Guard"), nullptr) << "the index answers, nothing is loaded";
}

TEST(BlueprintFamily, ReadsWidgetTrees)
{
	FTestProject Project;
	Project.Settings("+ExcludedDirectories=Saved");
	AddWidgetBlueprint(Project, "UI/WBP_HUD", {{"HealthBar", "ProgressBar"}, {"Ammo", "TextBlock"}, {"Mana", "ProgressBar"}},
		{"HealthPulse", "FadeIn"});
	AddWidgetBlueprint(Project, "UI/wbp_bar", {{"healthFill", "Image"}});
	AddWidgetBlueprint(Project, "Saved/WBP_Old", {{"HealthBar", "Image"}});
	AddWidgetBlueprint(Project, "DevelopeRed/Sub/WBP_Try", {{"HealthBar", "Image"}});
	AddWidgetBlueprint(Project, "Developed/WBP_Done", {{"HealthDone", "Image"}});
	AddBlueprint(Project, "UI/WBP_Broken", "", "WidgetBlueprint");
	const TCase<FAssetSearchParams> Cases[] = {
		{"widgets, classes and animations; left-out folders by setting and by rule; one that does not load costs nothing",
			{.Term = "health"},
			"WBP_Done: Widget HealthDone @WidgetTree | wbp_bar: Widget healthFill @WidgetTree | "
			"WBP_HUD: Widget HealthBar @WidgetTree; WidgetAnimation HealthPulse @WidgetTree"},
		{"a class once, with a count", {.Term = "progressbar", .bExact = true},
			"WBP_HUD: WidgetClass ProgressBar @WidgetTree x2"},
		{"case", {.Term = "health", .bCaseSensitive = true}, "wbp_bar: Widget healthFill @WidgetTree"},
		{"path filter on the folder", {.Term = "health", .PathContains = "/game/ui"},
			"wbp_bar: Widget healthFill @WidgetTree | WBP_HUD: Widget HealthBar @WidgetTree; WidgetAnimation HealthPulse "
			"@WidgetTree"},
		{"and not on the name", {.Term = "health", .PathContains = "WBP_HUD"}, ""},
		{"any widget kind asks for the pass, in any case", {.Term = "healthfill", .IncludeKinds = {"Node", "widgetCLASS"}},
			"wbp_bar: Widget healthFill @WidgetTree"},
		{"other kinds do not", {.Term = "healthfill", .IncludeKinds = {"Node", "Widgets"}}, ""},
		{"the hit cap ends the pass, in order of object paths", {.Term = "health", .MaxTotalHits = 3},
			"WBP_Done: Widget HealthDone @WidgetTree | wbp_bar: Widget healthFill @WidgetTree | WBP_HUD: Widget HealthBar "
			"@WidgetTree"},
	};
	for (auto Case : Traced(Cases))
	{
		Case.Given.IncludeAssetFamilies = {"Blueprint"};
		EXPECT_EQ(Render(Project.Search(Case.Given)), Case.Expected);
	}
}

TEST(BlueprintFamily, ReportsNames)
{
	FTestProject Project;
	AddBlueprint(Project, "A/BP_Lamp", "");
	AddBlueprint(Project, "B/ABP_Lamp", "", "AnimBlueprint");
	AddBlueprint(Project, "Saved/BP_LampOld", "");
	AddBlueprint(Project, "__Trash__/Sub/BP_LampGone", "");
	AddBlueprint(Project, "Intermediate/BP_LampStays", "");
	AddBlueprint(Project, "A/BP_Door", R"({"category":"Var","text":"Lamp"})");
	AddWidgetBlueprint(Project, "A/WBP_LampPost", {{"Frame", "Border"}});
	AddWidgetBlueprint(Project, "C/WBP_Lamp", {{"LampIcon", "Image"}});
	Project.Header("/Game/C/DA_Lamp", "/Script/Engine.DataAsset");
	const TCase<FAssetSearchParams> Cases[] = {
		{"of all three classes; settings leave nothing out here, but folders below generated ones are; beside the widget hits of "
		 "the same asset",
			{.Term = "lamp"},
			"/Game/A/BP_Door: Blueprint /Game/A/BP_Door.BP_Door; Var Lamp @/Game/A/BP_Door.BP_Door | "
			"BP_Lamp: AssetName BP_Lamp | WBP_LampPost: AssetName WBP_LampPost | ABP_Lamp: AssetName ABP_Lamp | "
			"WBP_Lamp: Widget LampIcon @WidgetTree; AssetName WBP_Lamp | BP_LampStays: AssetName BP_LampStays | BP_LampOld: "
			"AssetName BP_LampOld"},
		{"exact, case, folder", {.Term = "BP_Lamp", .bExact = true, .bCaseSensitive = true, .PathContains = "/A"},
			"BP_Lamp: AssetName BP_Lamp"},
		{"the folder alone is filtered", {.Term = "BP_Lamp", .PathContains = "Lamp"}, ""},
		{"capped by assets, also where hits have reached the cap", {.Term = "lamp", .MaxTotalHits = 2},
			"/Game/A/BP_Door: Blueprint /Game/A/BP_Door.BP_Door; Var Lamp @/Game/A/BP_Door.BP_Door | "
			"BP_Lamp: AssetName BP_Lamp (truncated)"},
	};
	for (auto Case : Traced(Cases))
	{
		Case.Given.IncludeAssetFamilies = {"Blueprint"};
		EXPECT_EQ(Render(Project.Search(Case.Given)), Case.Expected);
	}
	FAssetSearchParams Params{.Term = "lamp", .IncludeAssetFamilies = {"Blueprint"}, .MaxHitsPerAssetType = 2};
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "/Game/A/BP_Door WBP_Lamp (truncated)")
		<< "all Blueprints share one budget; those with widgets that match come before those found by their names alone";
}
