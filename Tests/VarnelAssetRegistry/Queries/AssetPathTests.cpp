#include "AssetRegistry/AssetPaths.h"
#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "RegistryFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <random>

namespace
{
constexpr ESearchCase AnyCase = ESearchCase::IgnoreCase;
constexpr ESearchCase OwnCase = ESearchCase::CaseSensitive;

std::string GetPath(const FAssetPathView& View, int32 Asset)
{
	FString Path;
	View.AppendObjectPath(Asset, Path);
	return Path.ToStdString();
}

/** Object paths in the order in which they are visited. */
std::vector<std::string> Find(const FRegistryProject& Project, const FAssetPathQuery& Query)
{
	const FAssetPathView View = Project.Registry.GetAssetPaths();
	std::vector<std::string> Found;
	int32 Next = 0;
	View.Find(Query,
		[&](FAssetPathView::FRange Range)
		{
			EXPECT_LE(Next, Range.Begin) << "ascending, each once";
			EXPECT_LT(Range.Begin, Range.End);
			for (Next = Range.Begin; Next < Range.End; ++Next)
				Found.push_back(GetPath(View, Next));
		});
	return Found;
}

std::string Join(const std::vector<std::string>& Texts)
{
	std::string Joined;
	for (const std::string& Text : Texts)
		Joined += (Joined.empty() ? "" : " ") + Text;
	return Joined;
}

/** The same by looking at every asset. */
std::vector<std::string> FindSlowly(const FRegistryProject& Project, const FAssetPathQuery& Query)
{
	TArray<FAssetData> Assets;
	Project.Registry.GetAssets({}, Assets, false);
	std::vector<std::string> Found;
	for (const FAssetData& Asset : Assets)
	{
		const FString Path = Asset.GetSoftObjectPath().ToString();
		const FString Name = Asset.AssetName.ToString();
		const bool bMatches = Query.bExact ? Path.Equals(Query.Text, Query.Case) || Name.Equals(Query.Text, Query.Case)
										   : Path.Contains(Query.Text, Query.Case) || Name.Contains(Query.Text, Query.Case);
		if (bMatches && !Query.Text.IsEmpty())
			Found.push_back(Path.ToStdString());
	}
	return Found;
}
}

TEST(AssetPaths, FindsByAnyPartOfAnObjectPath)
{
	FRegistryProject Project;
	Project.Package("UI/W_Menu", "asset W_Menu /Script/E.W");
	Project.Package("UI/W_Menu2", "asset W_Menu2 /Script/E.W filtered");
	Project.Package("ui/B",
		"asset Own /Script/E.W\nasset B /Script/E.W\nasset Inner /Script/E.W in=/Game/ui/B.Own\nasset Deep "
		"/Script/E.W in=/Game/ui/B.Own:Inner");
	Project.Package("Gr\u00f6\u00dfe", "asset Gr\u00f6\u00dfe /Script/E.W");
	Project.ScanAll();

	const TCase<FAssetPathQuery> Cases[] = {
		{"part of a name, filtered assets too", {"w_menu"}, "/Game/UI/W_Menu.W_Menu /Game/UI/W_Menu2.W_Menu2"},
		{"case of names", {"w_menu", false, OwnCase}, ""},
		{"a folder holds all below it", {"/game/ui/b"},
			"/Game/ui/B.Own /Game/ui/B.B /Game/ui/B.Own:Inner /Game/ui/B.Own:Inner.Deep"},
		{"case of folders", {"/UI/", false, OwnCase}, "/Game/UI/W_Menu.W_Menu /Game/UI/W_Menu2.W_Menu2"},
		{"a name of its own, and what lies in it", {"own"}, "/Game/ui/B.Own /Game/ui/B.Own:Inner /Game/ui/B.Own:Inner.Deep"},
		{"across the dot", {"menu.w_"}, "/Game/UI/W_Menu.W_Menu"},
		{"across the colon", {"own:in"}, "/Game/ui/B.Own:Inner /Game/ui/B.Own:Inner.Deep"},
		{"only separators", {":"}, "/Game/ui/B.Own:Inner /Game/ui/B.Own:Inner.Deep"},
		{"folding of letters beyond ASCII", {"GR\u00d6"}, "/Game/Gr\u00f6\u00dfe.Gr\u00f6\u00dfe"},
		{"exactly a name", {"w_menu", true}, "/Game/UI/W_Menu.W_Menu"},
		{"exactly a path", {"/game/ui/b.own:inner", true}, "/Game/ui/B.Own:Inner"},
		{"exactly, in its case", {"/Game/ui/b.own", true, OwnCase}, ""},
		{"a package is not its asset", {"/Game/UI/W_Menu", true}, ""},
		{"over the end of a text", {std::string("W_Menu\0/Game", 12)}, ""},
		{"nothing asked", {""}, ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Join(Find(Project, Case.Given)), Case.Expected);
}

TEST(AssetPaths, FindsWhatALookAtEveryAssetFinds)
{
	std::mt19937 Random(GetSeed());
	const auto Pick = [&](const std::vector<std::string>& Words) { return Words[Random() % Words.size()]; };
	FRegistryProject Project;
	for (int32 Index = 0; Index < 1500; ++Index) // some dozen blocks of packages
	{
		const std::string Name =
			Pick({"BP_", "bp_", "W", "\u00c4"}) + std::to_string(Random() % 3000) + Pick({"", "Door", "door"});
		std::string Lines = "asset " + Name + " /Script/E.W";
		if (Random() % 8 == 0)
			Lines += "\nasset Own" + std::to_string(Random() % 50) + " /Script/E.W";
		const std::string Folder = Pick({"Maps", "Maps/Door", "maps", "UI/Menu", "UI"}) + "/" + Pick({"A", "B", "a"}) + "/";
		if (Random() % 8 == 0)
			Lines += "\nasset Inside /Script/E.W in=/Game/" + Folder + Name + "." + Name;
		Project.Package(Folder + Name, Lines);
	}
	Project.ScanAll();

	std::vector<std::string> Terms = {"a", "oo", "door", "/maps/", "Maps/Door/A", "W2999Door", "zzz", ".", ".B", "Own7", "inside",
		"\u00e4", "UI/Menu/B/BP_", "r.", "Door:In"};
	const FAssetPathView View = Project.Registry.GetAssetPaths();
	for (int32 Index = 0; Index < 60; ++Index)
	{
		const FString Path = GetPath(View, static_cast<int32>(Random() % static_cast<uint32>(View.NumAssets())));
		const int32 Start = static_cast<int32>(Random() % static_cast<uint32>(Path.Len()));
		Terms.push_back(Path.Mid(Start, 1 + static_cast<int32>(Random() % 12)).ToStdString());
		const FString Name(FPaths::GetCleanFilename(Path.View()));
		Terms.push_back(Name.Left(1 + static_cast<int32>(Random() % 12)).ToStdString());
		Terms.push_back(Path.ToStdString());
	}
	for (const std::string& Term : Terms)
	{
		for (const bool bExact : {false, true})
		{
			for (const ESearchCase Case : {AnyCase, OwnCase})
			{
				SCOPED_TRACE(Term + (bExact ? " exact" : "") + (Case == OwnCase ? " own case" : ""));
				const FAssetPathQuery Query{.Text = Term, .bExact = bExact, .Case = Case};
				ASSERT_EQ(Find(Project, Query), FindSlowly(Project, Query));
			}
		}
	}
}
