// The reports against what the rules say over plain matrices, on random graphs that all lie in one project.

#include "Project/ProjectRegistry.h"
#include "Reports/AssetRoots.h"
#include "Reports/ProjectReports.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace
{
constexpr int32 NumGraphs = 400;
constexpr int32 Num = 7; // packages of a graph
constexpr int32 Far = 1000;
constexpr int32 NoCap = 1'000'000;

template <class T>
struct TMatrix
{
	T Rows[Num][Num] = {};

	T* operator[](int32 Row) { return Rows[Row]; }
	const T* operator[](int32 Row) const { return Rows[Row]; }
};

enum class ELink : uint8
{
	None,
	Editor,
	Runtime,
};

struct FModel
{
	std::string Folder;
	TMatrix<ELink> Links; // from, to
	bool Levels[Num] = {};

	std::string NameOf(int32 Package) const { return Folder + "P" + std::to_string(Package); }

	TMatrix<int32> Measure(ELink Least) const
	{
		TMatrix<int32> Ways;
		for (int32 From = 0; From < Num; ++From)
			for (int32 To = 0; To < Num; ++To)
				Ways[From][To] = From == To ? 0 : Links[From][To] >= Least ? 1 : Far;
		for (int32 Over = 0; Over < Num; ++Over)
			for (int32 From = 0; From < Num; ++From)
				for (int32 To = 0; To < Num; ++To)
					Ways[From][To] = std::min(Ways[From][To], Ways[From][Over] + Ways[Over][To]);
		return Ways;
	}
};

FModel Draw(FTestProject& Project, std::mt19937& Random, int32 Number)
{
	FModel Model{.Folder = "/Game/G" + std::to_string(Number) + "/"};
	const auto Density = 1 + Random() % 4;
	for (int32 From = 0; From < Num; ++From)
	{
		Model.Levels[From] = Random() % 5 == 0;
		std::vector<std::string> Lines;
		for (int32 To = 0; To < Num; ++To)
		{
			if (Random() % 12 >= Density)
				continue;
			Model.Links[From][To] = Random() % 3 == 0 ? ELink::Editor : ELink::Runtime;
			Lines.push_back(Model.NameOf(To) + (Model.Links[From][To] == ELink::Editor ? " editor" : ""));
		}
		Project.Links(Model.NameOf(From), {"P" + std::to_string(From) + (Model.Levels[From] ? " World" : " Blueprint")}, Lines);
	}
	return Model;
}

std::multiset<std::string> ListImpact(const FModel& Model, int32 Start)
{
	const TMatrix<int32> Runtime = Model.Measure(ELink::Runtime);
	int32 Depths[Num];
	for (int32 Package = 0; Package < Num; ++Package)
		Depths[Package] = Runtime[Package][Start];
	for (int32 Round = 0; Round < Num; ++Round)
		for (int32 From = 0; From < Num; ++From)
			for (int32 To = 0; To < Num; ++To)
				if (Runtime[From][Start] >= Far && Model.Links[From][To] != ELink::None)
					Depths[From] = std::min(Depths[From], Depths[To] + 1);
	std::multiset<std::string> Rows;
	for (int32 Package = 0; Package < Num; ++Package)
	{
		if (Package != Start && Depths[Package] < Far)
			Rows.insert(Model.NameOf(Package) + (Runtime[Package][Start] < Far ? " Runtime " : " Editor ") +
				std::to_string(Depths[Package]));
	}
	return Rows;
}

int64 CountWays(const FModel& Model, const TMatrix<int32>& Ways, int32 From, int32 To)
{
	if (From == To)
		return 1;
	int64 Number = 0;
	for (int32 Next = 0; Next < Num; ++Next)
	{
		if (Next != From && Model.Links[From][Next] != ELink::None && Ways[Next][To] == Ways[From][To] - 1)
			Number += CountWays(Model, Ways, Next, To);
	}
	return Number;
}

/** Rows of a list, and that each is one link further than the row it came from. */
std::multiset<std::string> RenderSteps(const FModel& Model, const FReport& Report, int32 Start)
{
	std::map<std::string, int32> Depths = {{Model.NameOf(Start), 0}};
	std::multiset<std::string> Rows;
	for (const FReportRow& Row : Report.Rows)
	{
		Rows.insert(Row.Path.ToStdString() + " " + Row.Type.ToStdString() + " " + std::to_string(Row.Depth));
		const auto Via = Depths.find(Row.Via.ToStdString());
		EXPECT_TRUE(Via != Depths.end() && Via->second == Row.Depth - 1) << *Row.Path;
		Depths[Row.Path.ToStdString()] = Row.Depth;
	}
	return Rows;
}

std::set<std::string> RenderWays(const FReport& Report)
{
	std::map<int32, std::string> Ways;
	for (const FReportRow& Row : Report.Rows)
		Ways[Row.Group] += Row.Path.ToStdString() + ">";
	std::set<std::string> Different;
	for (const auto& [Number, Way] : Ways)
		Different.insert(Way);
	return Different;
}

class ReportModel : public testing::Test
{
protected:
	ReportModel()
	{
		std::mt19937 Random(GetSeed(20261122));
		for (int32 Number = 0; Number < NumGraphs; ++Number)
			Models.push_back(Draw(Project, Random, Number));
		Project.Open();
		Graph = GetProjectRegistry().GetPackageGraph();
	}

	FPackageGraphView::FNode Find(const FModel& Model, int32 Package) const
	{
		return Graph.FindNode(FName(FString(Model.NameOf(Package))));
	}

	FTestProject Project;
	std::vector<FModel> Models;
	FPackageGraphView Graph;
};
}

TEST_F(ReportModel, ImpactAgrees)
{
	for (const FModel& Model : Models)
	{
		for (int32 Start = 0; Start < Num; ++Start)
		{
			const FReport Report = ProjectReports::FindImpact(Graph, Find(Model, Start), NoCap);
			ASSERT_EQ(RenderSteps(Model, Report, Start), ListImpact(Model, Start)) << Model.NameOf(Start);
		}
	}
}

TEST_F(ReportModel, WaysAgree)
{
	int64 NumSeveral = 0;
	for (const FModel& Model : Models)
	{
		const TMatrix<int32> Ways = Model.Measure(ELink::Editor);
		for (int32 From = 0; From < Num; ++From)
		{
			for (int32 To = 0; To < Num; ++To)
			{
				const FReport Report = ProjectReports::FindWays(Graph, Find(Model, From), Find(Model, To), NoCap);
				const bool bBack = Ways[From][To] >= Far;
				const int32 Length = bBack ? Ways[To][From] : Ways[From][To];
				const int64 Expected = Length >= Far ? 0
					: bBack							 ? CountWays(Model, Ways, To, From)
													 : CountWays(Model, Ways, From, To);
				SCOPED_TRACE(Model.NameOf(From) + " " + Model.NameOf(To));
				ASSERT_EQ(*Report.Totals.Find("ways"), Expected);
				ASSERT_EQ(*Report.Totals.Find("reversed"), bBack && Expected > 0 ? 1 : 0);
				ASSERT_EQ(std::ssize(RenderWays(Report)), Expected) << "each once";
				ASSERT_EQ(Report.Rows.Num(), Expected * (Length + 1));
				ASSERT_EQ(Report.NumRows, Report.Rows.Num());
				NumSeveral += Expected > 1 ? 1 : 0;
			}
		}
	}
	EXPECT_GT(NumSeveral, NumGraphs);
}

TEST_F(ReportModel, CyclesAndUnusedAssetsAgree)
{
	std::set<std::string> Links; // within cycles
	std::set<std::set<std::string>> Cycles;
	std::set<std::string> Unused;
	int64 NumEditor = 0;
	for (const FModel& Model : Models)
	{
		const TMatrix<int32> Ways = Model.Measure(ELink::Editor);
		const TMatrix<int32> Runtime = Model.Measure(ELink::Runtime);
		for (int32 Package = 0; Package < Num; ++Package)
		{
			std::set<std::string> Cycle;
			bool bUsed = false;
			bool bAtRunTime = false;
			for (int32 Other = 0; Other < Num; ++Other)
			{
				bUsed |= Model.Levels[Other] && Ways[Other][Package] < Far;
				bAtRunTime |= Model.Levels[Other] && Runtime[Other][Package] < Far;
				if (Ways[Package][Other] >= Far || Ways[Other][Package] >= Far)
					continue;
				Cycle.insert(Model.NameOf(Other));
				if (Other != Package && Model.Links[Package][Other] != ELink::None)
					Links.insert(Model.NameOf(Package) + ">" + Model.NameOf(Other));
			}
			if (Cycle.size() > 1)
				Cycles.insert(Cycle);
			if (!bUsed)
				Unused.insert(Model.NameOf(Package));
			NumEditor += bUsed && !bAtRunTime ? 1 : 0;
		}
	}
	const FReport Found = ProjectReports::FindCycles(Graph, NoCap);
	std::map<int32, std::set<std::string>> Groups;
	std::multiset<std::string> FoundLinks;
	int32 Size = 0;
	for (const FReportRow& Row : Found.Rows)
	{
		FoundLinks.insert(Row.From.ToStdString() + ">" + Row.Path.ToStdString());
		Groups[Row.Group].insert({Row.From.ToStdString(), Row.Path.ToStdString()});
		EXPECT_GE(Row.GroupSize, std::exchange(Size, Row.GroupSize)) << "smallest first";
	}
	std::set<std::set<std::string>> FoundCycles;
	for (const auto& [Number, Group] : Groups)
		FoundCycles.insert(Group);
	EXPECT_EQ(FoundCycles, Cycles);
	EXPECT_EQ(FoundLinks, std::multiset<std::string>(Links.begin(), Links.end())) << "each once";
	EXPECT_EQ(*Found.Totals.Find("cycles"), std::ssize(Cycles));

	const FReport FoundUnused = ProjectReports::FindUnusedAssets(Graph, AssetRoots::FindDefault(Graph), NoCap);
	std::set<std::string> Names;
	for (const FReportRow& Row : FoundUnused.Rows)
		Names.insert(Row.Path.ToStdString());
	EXPECT_EQ(Names, Unused);
	EXPECT_EQ(*FoundUnused.Totals.Find("editor_only"), NumEditor);
}
