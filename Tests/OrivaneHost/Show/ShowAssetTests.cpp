#include "Show/ShowAssetTool.h"

#include "Core/Threads/StopToken.h"
#include "CoreObject/Objects/Object.h"
#include "CoreObject/Packages/Loader.h"
#include "Project/ProjectRegistry.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"

#include <stop_token>

namespace
{
struct FShown
{
	std::string Errors;
	std::string Remarks;
	TSharedPtr<FJsonObject> Payload = MakeShared<FJsonObject>();

	/** A field as compact JSON; "" without it. */
	std::string Get(const char* Key) const
	{
		const FJsonValue* const Value = Payload->FindField(Key);
		return Value ? Json::Write(*Value).ToStdString() : "";
	}
};

/** Arguments: the members of a JSON object behind the asset's path. */
FShown Show(const std::string& Asset, const std::string& Arguments = "")
{
	TSharedPtr<FJsonObject> Args;
	EXPECT_TRUE(Json::ParseObject("{\"asset_path\":\"" + Asset + "\"" + Arguments + "}", Args)) << Arguments;
	Orivane::FToolResult Result({"1", ToolNames::ShowAsset, ""});
	ShowAssetTool::Execute(*Args, Result);
	FShown Shown{.Errors = Result.HasErrors() ? RenderMessages(Result) : "", .Remarks = RenderRemarks(Result)};
	if (const auto* Payload = Result.GetData().Find(ToolNames::ShowAsset))
		Shown.Payload = std::get<TSharedPtr<FJsonObject>>(*Payload);
	return Shown;
}

/** "Name=value" of each property, in order. */
std::string RenderProperties(const FShown& Shown)
{
	std::string Text;
	const FJsonArray* Properties = nullptr;
	Shown.Payload->TryGetArrayField("properties", Properties);
	for (const FJsonValue& Element : Properties ? *Properties : FJsonArray())
	{
		FString Name;
		Element.AsObject()->TryGetStringField("name", Name);
		Text += (Text.empty() ? "" : " ") + Name.ToStdString() + "=" +
			Json::Write(*Element.AsObject()->FindField("value")).ToStdString() +
			(Element.AsObject()->HasField("default") ? "!" : "");
	}
	return Text;
}

std::string InMemory()
{
	std::string Text;
	for (const FName Package : ListProjectPackages())
		if (FindPackage(Package))
			Text += Package.ToString().ToStdString() + " ";
	return Text;
}

constexpr const char* Tree = "BehaviorTree";
}

TEST(ShowAsset, FindsTheAssetThatATextNames)
{
	FTestProject Project;
	Project.Asset("/Game/AI/BT_A", Tree).Inner("Root", "BTComposite_Selector").Inner("Root.Deep", "BTTask_Wait");
	Project.Asset("/Game/Old/Twice", Tree);
	Project.Asset("/Game/New/Twice", Tree);
	Project.Links("/Game/Maps/L_A", {"Thing Texture", "L_A World", "Hidden World filtered"}, {});
	Project.Blueprint("/Game/BP_A", "");
	Project.Open();
	const std::pair<std::string, std::string> Cases[] = {
		{"/Game/AI/BT_A", "/Game/AI/BT_A.BT_A"},
		{"/game/ai/bt_a.BT_a", "/Game/AI/BT_A.BT_A"},
		{"BehaviorTree'/Game/AI/BT_A.BT_A'", "/Game/AI/BT_A.BT_A"},
		{"Content/AI/BT_A.vasset", "/Game/AI/BT_A.BT_A"},
		{"bt_a", "/Game/AI/BT_A.BT_A"},
		{"/Game/AI/BT_A.BT_A:Root.Deep", "/Game/AI/BT_A.BT_A object BT_A:Root.Deep"},
		{"/Game/Maps/L_A", "/Game/Maps/L_A.L_A"},
		{"/Game/Maps/L_A.Thing", "/Game/Maps/L_A.Thing"},
		{"/Game/Maps/L_A.Hidden", "/Game/Maps/L_A.Hidden"},
		{"Hidden", "/Game/Maps/L_A.Hidden"},
		{"/Game/BP_A.BP_A_C", "/Game/BP_A.BP_A"},
		{"twice", "Several assets are named 'twice': /Game/New/Twice.Twice, /Game/Old/Twice.Twice; give the path of one"},
		{"/Game/AI/BT_A.Other", "Asset does not exist: /Game/AI/BT_A.Other"},
		{"/Game/AI/BT_A.BT_A:None", "The asset /Game/AI/BT_A.BT_A has no object 'BT_A:None'"},
		{"/Game/AI", "Asset does not exist: /Game/AI"},
		{"nothing", "Asset does not exist: nothing"},
		{"../../etc/passwd", "Asset does not exist: ../../etc/passwd"},
		{"", "Asset does not exist: "},
		{"/", "Asset does not exist: /"},
		{"''", "Asset does not exist: ''"},
	};
	for (const auto& [Text, Expected] : Cases)
	{
		const FShown Shown = Show(Text);
		FString Path;
		FString Object;
		Shown.Payload->TryGetStringField("asset", Path);
		if (Shown.Payload->TryGetStringField("object", Object))
			Path += FString(" object ") + Object;
		EXPECT_EQ(Shown.Errors + Path.ToStdString(), Expected) << Text;
	}
}

TEST(ShowAsset, WritesValuesOfEveryKind)
{
	FTestProject Project;
	Project.Script("T", R"("enums":[{"name":"EMood","entries":[{"name":"Calm"},{"name":"Cross"}]}],
		"structs":[{"name":"Pair","properties":[{"name":"A","type":"int","default":1},{"name":"B","type":"name"}]}],
		"classes":[{"name":"Base","super":"/Script/Engine.DataAsset","properties":[{"name":"Word","type":"string","default":"Hi"}]},
		{"name":"Thing","super":"/Script/T.Base","properties":[
			{"name":"Float","type":"float"},{"name":"Big","type":"uint64"},{"name":"Long","type":"int64"},{"name":"Flag","type":"bool"},
			{"name":"Mood","type":"enum</Script/T.EMood>"},{"name":"Byte","type":"byte</Script/T.EMood>"},
			{"name":"One","type":"struct</Script/T.Pair>"},{"name":"List","type":"array<struct</Script/T.Pair>>"},
			{"name":"Map","type":"map<name,int>"},{"name":"Keyed","type":"map<struct</Script/T.Pair>,int>"},{"name":"Set","type":"set<int>"},
			{"name":"Ref","type":"soft_object</Script/Engine.World>"},{"name":"Odd","type":"object</Script/Nowhere.Class>"},
			{"name":"Event","type":"delegate"},{"name":"Kept","type":"int","default":7}]}])");
	Project.Asset("/Game/D", "/Script/T.Thing")
		.Set("Float", "0.1")
		.Set("Big", "18446744073709551615")
		.Set("Long", "-9007199254740993")
		.Set("Flag", "true")
		.Set("Mood", "\"Cross\"")
		.Set("Byte", "\"Cross\"")
		.Set("One", R"({"B":"x"})")
		.Set("List", R"([{"A":2},{}])")
		.Set("Map", R"({"k":1})")
		.Set("Keyed", R"([[{"A":3},4]])")
		.Set("Set", "[3,1]")
		.Set("Ref", "\"/Game/Nowhere.Nowhere\"")
		.Set("Kept", "7")
		.Set("Word", "\"hi\"");
	Project.Open();
	EXPECT_EQ(RenderProperties(Show("D")),
		R"(Float=0.1 Big=18446744073709551616 Long=-9007199254740993 Flag=true Mood="Cross" Byte="Cross" One={"A":1,"B":"x"} )"
		R"(List=[{"A":2,"B":"None"},{"A":1,"B":"None"}] Map={"k":1} Keyed=[[{"A":3,"B":"None"},4]] Set=[3,1] )"
		R"(Ref="/Game/Nowhere.Nowhere" Kept=7! Word="hi")")
		<< "stored values, those that equal the default marked; case counts";
	EXPECT_EQ(Show("D").Remarks, "2 more properties not stored, so with the defaults of the class [include_defaults=true]\n");
	EXPECT_TRUE(
		RenderProperties(Show("D", R"(,"include_defaults":true)")).ends_with(R"(Odd=null! Event=null! Kept=7! Word="hi")"));
}

TEST(ShowAsset, StaysWithinItsBytes)
{
	FTestProject Project;
	Project.Script("T", R"("structs":[{"name":"Row","properties":[{"name":"Text","type":"string"}]}],
		"classes":[{"name":"Thing","super":"/Script/Engine.DataAsset","properties":[
		{"name":"Text","type":"string"},{"name":"Numbers","type":"array<int>"},{"name":"Deep","type":"array<array<array<array<array<array<array<int>>>>>>>"}]}])");
	std::string Numbers = "0";
	std::string Rows = R"("R0":{"Text":"x"})";
	for (int32 Index = 1; Index < 20000; ++Index)
	{
		Numbers += "," + std::to_string(Index);
		Rows += ",\"R" + std::to_string(Index) + "\":{\"Text\":\"\u00e4\u00e4\u00e4\u00e4\u00e4\"}";
	}
	std::string Text;
	for (int32 Index = 0; Index < 50000; ++Index)
		Text += "\u00e4";
	FTestAsset& Thing = Project.Asset("/Game/D", "/Script/T.Thing");
	Thing.Set("Text", "\"" + Text + "\"").Set("Numbers", "[" + Numbers + "]").Set("Deep", "[[[[[[[" + Numbers + "]]]]]]]");
	for (int32 Index = 0; Index < 500; ++Index)
		Thing.Inner("N" + std::to_string(Index), "BTTask_Wait", R"("NodeName":"some node of some name")");
	Project.Asset("/Game/DT", "DataTable").Set("RowStruct", "\"/Script/T.Row\"").Set("Rows", "{" + Rows + "}");
	Project.Open();
	for (const int64 MaxBytes : {1024, 5000, 32768})
	{
		for (const char* Asset : {"D", "DT"})
		{
			const FShown Shown = Show(Asset, ",\"max_rows\":100000,\"max_bytes\":" + std::to_string(MaxBytes));
			EXPECT_LE(Json::Measure(Shown.Payload).NumBytes, MaxBytes) << Asset;
			EXPECT_NE(Shown.Remarks.find("[max_bytes=" + std::to_string(MaxBytes) + "]"), std::string::npos) << Shown.Remarks;
		}
	}
	EXPECT_EQ(Show("DT", R"(,"max_rows":2,"sections":["rows"])").Remarks, "19998 more rows [max_rows=2]\n");
	EXPECT_EQ(Show("DT", R"(,"row_names":["r19999","none"],"sections":["rows"])").Get("rows"),
		"[{\"name\":\"R19999\",\"cells\":{\"Text\":\"\u00e4\u00e4\u00e4\u00e4\u00e4\"}}]");
	EXPECT_EQ(Show("DT", R"(,"row_names":["none"])").Errors, "The asset /Game/DT.DT has no row 'none'");
}

TEST(ShowAsset, ShowsEachObjectOnceWhateverRefersToIt)
{
	FTestProject Project;
	constexpr const char* Selector = "BTComposite_Selector";
	Project.Asset("/Game/Ring", Tree)
		.Set("RootNode", "\"^A\"")
		.Inner("A", Selector, R"("Children":[{"ChildComposite":"^B"},{"ChildComposite":"^A"}])")
		.Inner("B", Selector, R"("Children":[{"ChildComposite":"^A"},{"ChildTask":"^Alone"}])")
		.Inner("Alone", "BTTask_Wait")
		.Inner("A.Service", "BTService", R"("NodeName":"S")");
	FTestAsset& Chain = Project.Asset("/Game/Chain", Tree).Set("RootNode", "\"^N0\"");
	for (int32 Index = 0; Index < 3000; ++Index)
		Chain.Inner(
			"N" + std::to_string(Index), Selector, R"("Children":[{"ChildComposite":"^N)" + std::to_string(Index + 1) + "\"}]");
	Project.Open();
	EXPECT_EQ(Show("Ring").Get("tree"),
		R"([{"object":"A","class":"BTComposite_Selector","as":"RootNode","children":[)"
		R"({"object":"B","class":"BTComposite_Selector","as":"Children","children":[{"object":"Alone","class":"BTTask_Wait","as":"Children"}]},)"
		R"({"object":"A.Service","class":"BTService","values":{"NodeName":"S"}}]}])");
	EXPECT_EQ(Show("Ring", R"(,"object":"alone")").Get("object"), R"("Ring:Alone")");
	const std::string Long = Show("Chain", R"(,"max_bytes":10000000)").Get("tree");
	TSharedPtr<FJsonObject> Parsed;
	EXPECT_TRUE(Json::ParseObject("{\"tree\":" + Long + "}", Parsed)) << "messages nest no deeper";
	int32 NumObjects = 0;
	for (std::size_t At = Long.find("\"object\":"); At != std::string::npos; At = Long.find("\"object\":", At + 1))
		++NumObjects;
	EXPECT_EQ(NumObjects, 3000);
}

TEST(ShowAsset, SaysWhatCannotBeShown)
{
	FTestProject Project;
	Project.File("Content/Broken.vasset", R"({"varnel_package":1,
"assets":[{"name":"Broken","class":"/Script/Engine.DataTable","tags":{"RowStructure":"/Script/T.Row"}}],
"dependencies":[{"package":"/Game/Nowhere","hard":true,"game":false}],
"objects":[{"path":"Broken", oops]})");
	Project.Asset("/Game/Strange", "/Script/Nowhere.Class").Set("Secret", R"({"deep":[1,"two"]})");
	Project.Asset("/Game/Faulty", "BehaviorTree").Set("RootNode", "\"^Gone\"").Set("BlackboardAsset", "5");
	Project.Open();

	const FShown Broken = Show("Broken");
	EXPECT_EQ(Broken.Get("tags"), R"({"RowStructure":"/Script/T.Row"})");
	EXPECT_EQ(Broken.Get("references"),
		R"({"dependencies":{"count":1,"first":[{"path":"/Game/Nowhere","kind":"missing","type":"Editor"}]},"referencers":{"count":0,"first":[]}})");
	EXPECT_EQ(Broken.Remarks.find("Content/Broken.vasset:4:"), 0U) << Broken.Remarks;
	EXPECT_EQ(Broken.Remarks, Show("Broken").Remarks) << "also once the loader has given up on it";

	const FShown Strange = Show("Strange");
	EXPECT_EQ(RenderProperties(Strange), R"(Secret={"deep":[1,"two"]})");
	EXPECT_NE(Strange.Remarks.find("warning: class /Script/Nowhere.Class is not known"), std::string::npos) << Strange.Remarks;

	const FShown Faulty = Show("Faulty");
	EXPECT_NE(Faulty.Remarks.find("not a number"), std::string::npos) << Faulty.Remarks;
	EXPECT_NE(Faulty.Remarks.find("Faulty:Gone"), std::string::npos) << Faulty.Remarks;
}

TEST(ShowAsset, LeavesMemoryAsItWas)
{
	FTestProject Project;
	Project.NiagaraSystem("/Game/FX/NS_A");
	Project.Asset("/Game/Child", "Blueprint").Set("ParentClass", "\"/Game/Parent.Parent_C\"");
	Project.Asset("/Game/Parent", "Blueprint").Set("ParentClass", "\"/Script/Engine.Actor\"");
	Project.Open();
	for (const char* Before : {"", "/Game/Parent", "/Game/FX/NS_A", "/Game/Child"})
	{
		UnloadAllLoadedPackages();
		if (*Before)
			LoadPackage(Before);
		const std::string Loaded = InMemory();
		for (const char* Asset : {"NS_A", "Child", "Parent", "NS_A"})
		{
			EXPECT_EQ(Show(Asset).Remarks, "") << Asset;
			EXPECT_EQ(InMemory(), Loaded) << Asset << " after " << Before;
		}
	}
}

TEST(ShowAsset, EndsSoonWhenItIsNotWantedAnyMore)
{
	FTestProject Project;
	Project.Asset("/Game/BT_A", Tree).Set("RootNode", "\"^Root\"").Inner("Root", "BTComposite_Selector");
	Project.Open();
	std::stop_source Source;
	Source.request_stop();
	const FStopScope Scope(Source.get_token());
	EXPECT_EQ(Show("/Game/BT_A").Get("tree"), "");
}
