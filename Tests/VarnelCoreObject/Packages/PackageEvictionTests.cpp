#include "Packages/PackageEviction.h"

#include "PackageFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <cstring>
#include <random>

namespace
{
std::string NodeLinkedTo(const std::string& Name, const std::string& Target)
{
	const std::string Link = Target.empty() ? "null" : "\"/Game/" + Target + "." + Target + "\"";
	return R"({"path":")" + Name + R"(","class":"/Script/Test.Node","properties":{"Link":)" + Link + "}}";
}

class PackageEviction : public FPackageFixture
{
protected:
	~PackageEviction() override { SetObjectMemoryLimit(0); }

	void AddNode(const std::string& Name, const std::string& LinkedTo = "")
	{
		Add("/Game/" + Name, NodeLinkedTo(Name, LinkedTo));
	}
	static void Load(const std::string& Names)
	{
		std::istringstream Words(Names);
		for (std::string Name; Words >> Name;)
			ASSERT_TRUE(LoadPackage(FName(FStringView("/Game/" + Name)))) << Name;
	}
	std::string ListLoaded() const
	{
		std::string Names;
		for (const auto& [Name, File] : Files)
			if (FindPackage(FName(FStringView(Name))))
				Names += (Names.empty() ? "" : " ") + Name.substr(Name.rfind('/') + 1);
		return Names;
	}
	/** Limits memory to what NumPackages packages of one node take, and evicts. */
	std::string EvictDownTo(int32 NumPackages)
	{
		AddNode("Measure");
		const int64 Before = GetObjectMemory();
		Load("Measure");
		const int64 PackageBytes = GetObjectMemory() - Before;
		UnloadPackage(FindPackage("/Game/Measure"));
		SetObjectMemoryLimit(NumPackages * PackageBytes + PackageBytes / 2);
		EvictLoadedPackages();
		return ListLoaded();
	}
};
}

TEST_F(PackageEviction, GoesByLastUseReferencesAndPins)
{
	for (const char* Name : {"A", "B", "C", "D", "E"})
		AddNode(Name);
	AddNode("Old", "Older");
	AddNode("Older");
	AddNode("X", "Y");
	AddNode("Y", "X");
	const struct
	{
		const char* Why;
		const char* Loads;
		const char* Pins;
		int32 NumFitting;
		const char* Kept;
	} Cases[] = {
		{"all fit", "A B C", "", 3, "A B C"},
		{"the longest unused goes", "A B C", "", 2, "B C"},
		{"asking again is use", "A B C A", "", 2, "A C"},
		{"what a fresh package refers to is not old", "Older A B Old", "", 2, "Old Older"},
		{"a reference that has no room takes its referencer along", "Older A B Old", "", 1, "Older"},
		{"pinned stays", "A B C", "A", 2, "A C"},
		{"pinned stays beyond the limit, with what it refers to", "Older Old A", "Old", 1, "Old Older"},
		{"a cycle stays as a whole", "Y X A", "", 3, "A X Y"},
		{"a cycle goes as a whole", "Y X A", "", 2, "A"},
		{"a pin on nothing", "A B", "Missing", 1, "B"},
		{"nothing fits", "A B", "", 0, ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		if (*Case.Pins)
			PinPackage(FName(FStringView(std::string("/Game/") + Case.Pins)));
		Load(Case.Loads);
		EXPECT_EQ(EvictDownTo(Case.NumFitting), Case.Kept);
		if (*Case.Pins)
			UnpinPackage(FName(FStringView(std::string("/Game/") + Case.Pins)));
		UnloadAllLoadedPackages();
	}
}

TEST_F(PackageEviction, WhatChangedGoesWithWhatRefersToIt)
{
	for (const char* Name : {"A", "Leaf"})
		AddNode(Name);
	AddNode("Middle", "Leaf");
	AddNode("Top", "Middle");
	AddNode("X", "Y");
	AddNode("Y", "X");
	AddNode("Lacks", "Missing");
	const std::string All = "A Lacks Leaf Middle Top X Y";
	const TCase<> Cases[] = {
		{"nothing", "", "A Lacks Leaf Middle Top X Y"},
		{"what nobody refers to", "Top", "A Lacks Leaf Middle X Y"},
		{"through others, in any case, pinned or not", "LEAF", "A Lacks X Y"},
		{"a cycle", "X", "A Lacks Leaf Middle Top"},
		{"what was missed", "Missing", "A Leaf Middle Top X Y"},
	};
	PinPackage("/Game/Top");
	for (const auto& [Why, Changed, Kept] : Traced(Cases))
	{
		Load(All);
		const int32 NumDropped = DropLoadedPackages([&](FName Name) { return Name == FName(FString("/Game/") + Changed); });
		EXPECT_EQ(ListLoaded(), Kept);
		EXPECT_EQ(NumDropped, std::count(All.begin(), All.end(), ' ') - std::count(Kept, Kept + std::strlen(Kept), ' '));
	}
	UnpinPackage("/Game/Top");
	EXPECT_FALSE(LoadPackage("/Game/Late"));
	AddNode("Late");
	EXPECT_FALSE(LoadPackage("/Game/Late")) << "known to fail";
	DropLoadedPackages([](FName) { return false; });
	EXPECT_TRUE(LoadPackage("/Game/Late"));
}

TEST_F(PackageEviction, HoldsClassesAndTypesOfWhatStays)
{
	AddBlueprint("/Game/BP_Base", "/Script/Test.Node", R"({"name":"Speed","type":"int","default":3})");
	AddBlueprint("/Game/BP_Child", "/Game/BP_Base.BP_Base_C");
	Add("/Game/Map", R"({"path":"Map","class":"/Game/BP_Child.BP_Child_C"})");
	AddNode("Other");
	Load("BP_Base BP_Child Other Map");
	const FObjectPtr Kept(FSoftObjectPath("/Game/Map.Map"));
	SetObjectMemoryLimit(GetObjectMemory() - 1);
	EXPECT_EQ(EvictLoadedPackages(), 1);
	EXPECT_EQ(ListLoaded(), "BP_Base BP_Child Map");
	EXPECT_EQ(GetInt(Kept.GetIfLoaded(), "Speed"), 3);
	EXPECT_EQ(EvictLoadedPackages(), 0) << "within the limit now";
	Load("Other");
	EXPECT_EQ(Files["/Game/Other"].NumReads, 2);
}

/** Chains, cycles and pins at random: what the choice promises holds, whatever the graph. */
TEST(PackageEvictionChoice, KeepsItsPromisesOnAnyGraph)
{
	std::mt19937 Random(GetSeed(1));
	for (int32 Round = 0; Round < 300; ++Round)
	{
		SCOPED_TRACE("round " + std::to_string(Round));
		const auto Below = [&Random](std::size_t Limit) { return static_cast<std::size_t>(Random()) % Limit; };
		std::vector<FLoadedPackageUse> Packages(1 + Below(40));
		for (FLoadedPackageUse& Package : Packages)
		{
			Package = {.NumBytes = static_cast<int64>(1 + Below(20)), .LastUse = Random(), .bPinned = Below(12) == 0};
			for (std::size_t Left = Below(3); Left > 0; --Left)
				Package.References.push_back(static_cast<int32>(Below(Packages.size())));
		}
		const auto MaxBytes = static_cast<int64>(Below(Packages.size() * 12));
		const std::vector<uint8> Kept = ChooseKeptPackages(Packages, MaxBytes);

		std::vector<uint8> Held(Packages.size()); // by pins
		std::vector<std::size_t> Open;
		for (std::size_t Place = 0; Place < Packages.size(); ++Place)
			if (Packages[Place].bPinned)
				Open.push_back(Place);
		while (!Open.empty())
		{
			const std::size_t Place = Open.back();
			Open.pop_back();
			if (!std::exchange(Held[Place], uint8{1}))
				Open.insert(Open.end(), Packages[Place].References.begin(), Packages[Place].References.end());
		}
		int64 KeptBytes = 0;
		int64 HeldBytes = 0;
		for (std::size_t Place = 0; Place < Packages.size(); ++Place)
		{
			KeptBytes += Kept[Place] ? Packages[Place].NumBytes : 0;
			HeldBytes += Held[Place] ? Packages[Place].NumBytes : 0;
			EXPECT_TRUE(Kept[Place] || !Held[Place]) << "pinned, or referred to by a pinned one";
			for (const int32 Reference : Packages[Place].References)
				EXPECT_TRUE(!Kept[Place] || Kept[static_cast<std::size_t>(Reference)]) << "referred to by one that stays";
		}
		EXPECT_LE(KeptBytes, std::max(MaxBytes, HeldBytes));
	}
}

TEST(PackageEvictionChoice, IsQuickOnLongChains)
{
	std::vector<FLoadedPackageUse> Packages(200000);
	for (std::size_t Place = 0; Place < Packages.size(); ++Place)
		Packages[Place] = {1, Place, false, {static_cast<int32>((Place + 1) % Packages.size())}};
	const std::vector<uint8> Kept = ChooseKeptPackages(Packages, 100000);
	EXPECT_EQ(std::count(Kept.begin(), Kept.end(), 1), 0) << "one cycle through all, which does not fit";
}
