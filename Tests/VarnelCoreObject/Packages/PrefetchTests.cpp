#include "PackageFixture.h"
#include "Support/Cases.h"

namespace
{
class Prefetch : public FPackageFixture
{
protected:
	/** Packages "/Game/P0" to "/Game/P<Num - 1>": nodes of which some refer to others, Blueprints that need the next one's class,
	 * and broken files. */
	void AddMixture(int32 Num)
	{
		for (int32 Index = 0; Index < Num; ++Index)
		{
			const std::string Name = "P" + std::to_string(Index);
			const std::string Next = "P" + std::to_string((Index + 7) % Num);
			const std::string Package = "/Game/" + Name;
			const std::string Link = Index % 5 == 0 ? "\"/Game/" + Next + "." + Next + "\"" : "null";
			Names.push_back(Package);
			if (Index % 11 == 3)
				Add(Package, R"({"path":")" + Name + R"(","class":"/Script/Test.Gone"})");
			else if (Index % 11 == 5)
				Files[Package].Text = R"({"varnel_package":1,"objects":[)";
			else if (Index % 11 == 7)
				Files[Package].Outcome = EFileRead::Unreadable;
			else if (Index % 11 == 9 && Index + 11 < Num)
				AddBlueprint(Package, "/Game/P" + std::to_string(Index + 11) + ".P" + std::to_string(Index + 11) + "_C");
			else if (Index % 11 == 9)
				AddBlueprint(Package, "/Script/Test.Node");
			else
				Add(Package,
					R"({"path":")" + Name + R"(","class":"/Script/Test.Node","properties":{"Number":)" + std::to_string(Index) +
						R"(,"Link":)" + Link + "}}");
		}
	}

	std::function<FName()> ListNames() const
	{
		return [Listed = Names, Place = std::size_t{0}]() mutable
		{ return Place < Listed.size() ? FName(FStringView(Listed[Place++])) : FName(); };
	}

	/** Unloads all, then loads all in order: what came of each, how many faults it added, and the faults. */
	std::string LoadAll()
	{
		UnloadAllLoadedPackages();
		FDiagnosticSink Sink;
		SetLoadDiagnostics(&Sink);
		std::string Out;
		for (const std::string& Name : Names)
		{
			const UPackage* const Package = LoadPackage(FName(FStringView(Name)));
			Out += Name + ": " + (Package ? List(Package) : "-") + ", " + std::to_string(Sink.NumErrors()) + " " +
				std::to_string(Sink.NumWarnings()) + "\n";
		}
		SetLoadDiagnostics(nullptr);
		return Out + RenderFaults(Sink);
	}

	void ExpectOneReadOfEach()
	{
		for (auto& [Name, File] : Files)
			EXPECT_EQ(File.NumReads.exchange(0), 1) << Name;
	}

	std::vector<std::string> Names; // as they will be asked for
};
}

TEST_F(Prefetch, ChangesNothingButTheTime)
{
	AddMixture(400);
	const std::string Expected = LoadAll();
	ExpectOneReadOfEach();
	for (int32 Round = 0; Round < 5; ++Round)
	{
		const FPackagePrefetch Prefetching(ListNames());
		EXPECT_EQ(LoadAll(), Expected);
		ExpectOneReadOfEach();
	}
}

TEST_F(Prefetch, MayBeLeftAnyTime)
{
	AddMixture(300);
	const std::string Expected = LoadAll();
	for (std::size_t NumAsked = 0; NumAsked < Names.size(); NumAsked += 23)
	{
		UnloadAllLoadedPackages();
		const FPackagePrefetch Prefetching(ListNames());
		for (std::size_t Place = 0; Place < NumAsked; ++Place)
			LoadPackage(FName(FStringView(Names[Place])));
	}
	EXPECT_EQ(LoadAll(), Expected);
}

TEST_F(Prefetch, IsNotTakenAtItsWord)
{
	AddMixture(200);
	const std::string Expected = LoadAll();
	const std::vector<std::string> Asked = Names;
	const struct
	{
		const char* Why;
		std::vector<std::string> Announced;
	} Cases[] = {
		{"another order", {Asked.rbegin(), Asked.rend()}},
		{"packages that are never asked for", std::vector<std::string>(500, "/Game/Nowhere")},
		{"the same again and again", std::vector<std::string>(500, Asked[0])},
		{"only some", {Asked[1], Asked[150]}},
	};
	for (const auto& Case : Traced(Cases))
	{
		Names = Case.Announced;
		const FPackagePrefetch Announced(ListNames());
		Names = Asked;
		EXPECT_EQ(LoadAll(), Expected);
	}
}

TEST_F(Prefetch, LeavesLargeFilesForWhenTheyAreNeeded)
{
	AddMixture(40);
	for (const int32 Large : {1, 2, 5, 17})
	{
		std::string& Text = Files["/Game/P" + std::to_string(Large)].Text;
		Text.insert(0, std::string(LargePackageBytes, ' '));
	}
	const std::string Expected = LoadAll();
	const FPackagePrefetch Prefetching(ListNames());
	EXPECT_EQ(LoadAll(), Expected);
}

TEST_F(Prefetch, ReadsNothingBeforeItIsNeeded)
{
	AddMixture(50);
	{
		const FPackagePrefetch Prefetching(ListNames());
	}
	for (const auto& [Name, File] : Files)
		EXPECT_EQ(File.NumReads, 0) << Name;
}
