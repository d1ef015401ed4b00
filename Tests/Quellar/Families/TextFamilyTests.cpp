#include "Quellar/Families/TextSearch.h"

#include "Support/TestProject.h"

namespace
{
std::string Utf16(std::string_view Ascii)
{
	std::string Bytes = "\xFF\xFE";
	for (const char Character : Ascii)
		Bytes += {Character, '\0'};
	return Bytes;
}

FAssetSearchParams MakeParams(const char* Term)
{
	FAssetSearchParams Params;
	Params.Term = Term;
	Params.IncludeAssetFamilies = {"Text"};
	Params.MaxHitsPerAssetType = 1000;
	return Params;
}
}

TEST(TextFamily, FindsFilesByContent)
{
	FTestProject Project;
	Project.File("Docs/Notes.TXT", "Max health is 100.\n");
	Project.File("Docs/wide.md", Utf16("HEALTH in UTF-16"));
	Project.File("Docs/bom.md", "\xEF\xBB\xBFhealth");
	Project.File("Docs/umlaut.md",
		"Der \xC3\x84rger w\xC3\xA4"
		"chst");
	Project.File("Docs/cyrillic.md", "\xD0\x97\xD0\xB4\xD0\xBE\xD1\x80\xD0\xBE\xD0\xB2\xD1\x8C\xD0\xB5"); // Здоровье
	Project.File("Content/Readme.md", "health below the content folder");
	Project.File("Source/Health.cpp", "int Health;");
	Project.File("Saved/old.txt", "health in an excluded folder");
	Project.File("Docs/broken.md", "\xFF\xC3 health \x80");
	Project.File("Docs/caf\xE9.md", "health in a file whose name is not UTF-8");

	const struct
	{
		const char* Why;
		const char* Term;
		bool bExact;
		bool bCaseSensitive;
		const char* Expected;
	} Cases[] = {
		{"any case, any encoding; excluded folders are searched, unlisted extensions are not", "Health", false, false,
			"Content/Readme.md Docs/bom.md Docs/broken.md Docs/caf\uFFFD.md Docs/Notes.TXT Docs/wide.md Saved/old.txt"},
		{"same case only", "HEALTH", false, true, "Docs/wide.md"},
		{"exact compares the whole content, without its byte-order mark", "Health", true, false, "Docs/bom.md"},
		{"exact, same case", "Health", true, true, ""},
		{"folding beyond ASCII", "\xC3\xA4RGER", false, false, "Docs/umlaut.md"},
		{"Cyrillic, upper-case term", "\xD0\x97\xD0\x94\xD0\x9E\xD0\xA0\xD0\x9E\xD0\x92\xD0\xAC\xD0\x95", false, false,
			"Docs/cyrillic.md"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params = MakeParams(Case.Term);
		Params.bExact = Case.bExact;
		Params.bCaseSensitive = Case.bCaseSensitive;
		EXPECT_EQ(RenderAssets(Project.Search(Params)), Case.Expected);
	}
}

TEST(TextFamily, SearchesLargeFilesInPieces)
{
	constexpr std::size_t Piece = 1024 * 1024;
	FTestProject Project;
	Project.File("at the start.txt", "Kelvin" + std::string(3 * Piece, '-'));
	Project.File("across a border.txt",
		std::string(Piece - 3, '-') +
			"\xE2\x84\xAA"
			"elvin" +
			std::string(Piece, '-'));
	Project.File("across the next.txt", std::string(2 * Piece - 5, '-') + "KELVIN" + std::string(Piece, '-'));
	Project.File("at the end.txt", std::string(2 * Piece, '-') + "kelvin");
	Project.File("nowhere.txt", std::string(Piece - 3, '-') + "kel-vin" + std::string(Piece, '-'));
	Project.File("wide.txt", Utf16(std::string(Piece / 2 - 4, '-') + "kelvin" + std::string(Piece, '-')));
	Project.File("cut.txt", std::string(2 * Piece, '-') + "kelvi\xE2\x84");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("kelvin"))),
		"across a border.txt across the next.txt at the end.txt at the start.txt wide.txt");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("vi\xEF\xBF\xBD"))), "cut.txt");
	FAssetSearchParams Params = MakeParams("");
	Params.PathContains = ".txt";
	EXPECT_EQ(Project.Search(Params).Results.Num(), 7);
	Params.Term = "kelvin";
	Params.bExact = true;
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "") << "too long to be the term";
}

TEST(TextFamily, ReportsOneHitPerFile)
{
	FTestProject Project;
	Project.File("Content/a.txt", "lamp lamp lamp");
	EXPECT_EQ(Render(Project.Search(MakeParams("Lamp"))), "Content/a.txt: TextMatch Lamp @File");
}

TEST(TextFamily, FiltersByPath)
{
	FTestProject Project;
	Project.File("Docs/a.txt", "lamp").File("Tools/b.txt", "lamp");
	FAssetSearchParams Params = MakeParams("lamp");
	Params.PathContains = "docs/";
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "Docs/a.txt");
	Params.bCaseSensitive = true;
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "") << "the search's case counts for the filter";
	Params.PathContains = "Docs/a.t";
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "Docs/a.txt") << "the whole relative path is tested";
}

TEST(TextFamily, StopsAtTheCapInByteOrder)
{
	FTestProject Project;
	for (const char* Name : {"e", "B", "d", "a", "C"})
		Project.File(std::string("Docs/") + Name + ".txt", "lamp");
	FAssetSearchParams Params = MakeParams("lamp");
	Params.MaxTotalHits = 3;
	EXPECT_EQ(RenderAssets(Project.Search(Params)), "Docs/a.txt Docs/B.txt Docs/C.txt")
		<< "upper case comes first in the walk, so B, C and a are read before the cap; then results are sorted without regard to "
		   "case";
	Params.MaxTotalHits = 0;
	EXPECT_EQ(Project.Search(Params).Results.Num(), 5) << "no cap means 200";
}

TEST(TextFamily, ExtensionsComeFromTheSettings)
{
	FTestProject Project;
	Project.File("a.cpp", "lamp").File("b.txt", "lamp").File("NOEXTENSION", "lamp").File("c.tar.CPP", "lamp");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("lamp"))), "b.txt");
	Project.Settings("TextSearchExtensions=cpp");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("lamp"))), "a.cpp c.tar.CPP");
	Project.Settings("!TextSearchExtensions=ClearArray");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("lamp"))), "b.txt") << "an empty list means the default extensions";
}

TEST(TextFamily, StaysInsideTheProject)
{
	FScratchFolder Outside;
	Outside.Write("secret.txt", "lamp");
	FTestProject Project;
	Project.File("in.txt", "lamp");
	Project.GetFolder().Link(Outside.GetRoot() + "/secret.txt", "link.txt");
	Project.GetFolder().Link(Outside.GetRoot(), "linked");
	Project.GetFolder().Link(".", "loop");
	Project.GetFolder().Pipe("pipe.txt");
	EXPECT_EQ(RenderAssets(Project.Search(MakeParams("lamp"))), "in.txt");
}
