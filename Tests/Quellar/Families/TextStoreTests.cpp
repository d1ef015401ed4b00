#include "Families/TextStore.h"

#include "Core/Files/File.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Assets/QuellarSettings.h"
#include "Quellar/Families/SearchMemory.h"
#include "Quellar/Families/TextSearch.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <random>

namespace
{
// Among them letters whose case variants have other lengths: the Kelvin sign, the long s, the sharp s, dotted I.
const std::vector<std::string> Letters = {"a", "A", "k", "K", "\u212A", "s", "S", "\u017F", "\u00DF", "\u1E9E", "\u0130", "i",
	"\u0416", "\u0436", "\U00010400", "\U00010428", "-", "\n", "\uFFFD"};

std::string MakeText(std::mt19937& Random, std::size_t MaxLetters)
{
	std::string Text;
	for (std::size_t Left = Random() % (MaxLetters + 1); Left > 0; --Left)
		Text += Letters[Random() % Letters.size()];
	return Text;
}

FAssetSearchParams MakeTextParams(const std::string& Term)
{
	FAssetSearchParams Params = MakeParams("Text", Term);
	Params.MaxHitsPerAssetType = 1000;
	return Params;
}

std::string SearchAndRender(FTestProject& Project, const FAssetSearchParams& Params)
{
	const FAssetSearchResult Found = Project.Search(Params);
	std::string Text = RenderAssets(Found);
	for (const FUnreadFile& File : Found.Unread)
		Text += "; " + File.Path.ToStdString() + " " + std::to_string(static_cast<int>(File.Reason));
	return Text;
}

/** A project whose texts are kept, until the test ends. */
class TextStore : public testing::Test
{
protected:
	~TextStore() override { FTextStore::Get() = {}; }

	void Start(EFolderWatchMode Mode = EFolderWatchMode::Events)
	{
		Project.Open();
		StartKeepingTextFiles({"Saved", ".git"}, Mode);
	}
	void TellFile(const std::string& Path)
	{
		NoteTextFileChanges({.Files = {Project.GetFolder().GetRoot() + "/" + Path}, .Folders = {}});
	}
	void TellFolder(const std::string& Path)
	{
		NoteTextFileChanges({.Files = {}, .Folders = {Project.GetFolder().GetRoot() + "/" + Path + "/"}});
	}
	void Write(const std::string& Path, const std::string& Bytes) { Project.GetFolder().Write(Path, Bytes); }
	std::string SearchWithoutStore(const FAssetSearchParams& Params)
	{
		FTextStore Kept = std::exchange(FTextStore::Get(), {});
		const std::string Found = SearchAndRender(Project, Params);
		FTextStore::Get() = std::move(Kept);
		return Found;
	}
	std::string Find(const std::string& Term) { return RenderAssets(Project.Search(MakeTextParams(Term))); }

	FTestProject Project;
};
}

TEST(TextGrams, HoldWhateverTheFinderFinds)
{
	for (uint32 Seed = GetSeed(), End = Seed + 300; Seed != End; ++Seed)
	{
		SCOPED_TRACE("seed " + std::to_string(Seed));
		std::mt19937 Random(Seed);
		const std::string Text = MakeText(Random, 60);
		FTextGramsBuilder Builder;
		for (std::size_t From = 0, To = 0; From < Text.size() || To == 0; From = To)
		{
			To = Unicode::FloorToCodePoint(Text, std::min(Text.size(), From + 4 + Random() % 40));
			Builder.Append(std::string_view(Text).substr(From, To - From));
			if (Text.empty())
				break;
		}
		const FTextGrams Grams = Builder.Finish();
		int32 NumExcluded = 0;
		for (int32 Left = 200; Left > 0; --Left)
		{
			const std::string Term = MakeText(Random, 4);
			const bool bMayMatch = Grams.MayMatch(FTermGrams(FString(Term)));
			NumExcluded += bMayMatch ? 0 : 1;
			for (const ESearchCase Case : {ESearchCase::IgnoreCase, ESearchCase::CaseSensitive})
				EXPECT_TRUE(bMayMatch || !FTextFinder(Term, Case).IsFoundIn(Text)) << Term << " in " << Text;
		}
		EXPECT_GT(NumExcluded, 50) << "or nothing is gained";
	}
}

TEST_F(TextStore, ReadsWhatWasToldToHaveChanged)
{
	Project.File("Docs/a.txt", "lamp").File("Docs/b.txt", "fog").File("Docs/quiet.txt", "fog");
	Start();
	EXPECT_EQ(Find("zz"), "");
	EXPECT_GT(FTextStore::Get().GetMemory(), 0);
	Write("Docs/b.txt", "lamp");
	EXPECT_EQ(Find("lamp"), "Docs/a.txt") << "not told yet: the file is not read";
	TellFile("Docs/b.txt");
	EXPECT_EQ(Find("lamp"), "Docs/a.txt Docs/b.txt");

	Write("Docs/c.txt", "lamp");
	TellFile("Docs/c.txt");
	Write("Docs/a.txt", "fog");
	TellFile("Docs/a.txt");
	Write("Docs/quiet.txt", "lamp");
	EXPECT_EQ(Find("lamp"), "Docs/b.txt Docs/c.txt")
		<< "two changes before a search; what has not changed stays known where files come";

	Project.GetFolder().Remove("Docs/quiet.txt");

	Project.GetFolder().Rename("Docs", "Notes");
	TellFolder("Docs");
	TellFolder("Notes");
	EXPECT_EQ(Find("lamp"), "Notes/b.txt Notes/c.txt");
	Write("Notes/a.txt", "lamp");
	TellFolder("Notes");
	EXPECT_EQ(Find("lamp"), "Notes/a.txt Notes/b.txt Notes/c.txt") << "a folder is told with what is in it";
	Project.GetFolder().Remove("Notes/a.txt");
	TellFile("Notes/a.txt");

	Write("Saved/d.txt", "lamp");
	EXPECT_EQ(Find("lamp"), "Notes/b.txt Notes/c.txt Saved/d.txt") << "this folder need not be told of";
	Write("Saved/d.txt", "fog");
	Write("Saved/e.png", "lamp");
	EXPECT_EQ(Find("lamp"), "Notes/b.txt Notes/c.txt");

	Write("Notes/b.txt", "fog");
	Write("Notes/e.txt", "lamp");
	NoteTextFileChanges({.bAll = true, .Files = {}, .Folders = {}});
	EXPECT_EQ(Find("lamp"), "Notes/c.txt Notes/e.txt");
	StopKeepingTextFiles();
	EXPECT_EQ(FTextStore::Get().GetMemory(), 0);
	Write("Notes/c.txt", "fog");
	EXPECT_EQ(Find("lamp"), "Notes/e.txt");
}

TEST_F(TextStore, KeepsWithinItsMemory)
{
	for (int32 Index = 0; Index < 100; ++Index)
		Project.File("Docs/" + std::to_string(Index) + ".txt", "lamp " + std::to_string(Index));
	Start();
	SearchMemory::SetLimit(500);
	for (int32 Run = 0; Run < 2; ++Run)
	{
		EXPECT_EQ(Find("lamp 77"), "Docs/77.txt");
		EXPECT_GT(FTextStore::Get().GetMemory(), 400);
		EXPECT_LE(FTextStore::Get().GetMemory(), 500);
	}
}

TEST_F(TextStore, HearsOfFilesThatAreNoTextsForAWhile)
{
	Project.File("Docs/a.txt", "fog");
	Start();
	EXPECT_EQ(Find("lamp"), "");
	TArray<FString>& Extensions = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>()->TextSearchExtensions;
	Extensions = {"md"};
	for (const char* File : {"Docs/a.txt", "Docs/b.txt"})
	{
		Write(File, "lamp");
		TellFile(File);
	}
	Extensions = {};
	EXPECT_EQ(Find("lamp"), "Docs/a.txt Docs/b.txt");
}

TEST_F(TextStore, ForgetsTheListOfAStoppedSearch)
{
	Project.File("Docs/a.txt", "lamp");
	Start();
	{
		std::stop_source Stop;
		Stop.request_stop();
		const FStopScope Scope(Stop.get_token());
		FTextStore::Get().Find(FPaths::ProjectDir(), FTermGrams("lamp"), [](std::string_view) { return true; });
	}
	EXPECT_EQ(Find("lamp"), "Docs/a.txt");
}

namespace
{
/** Edits of text files, each of which is told, unless it is below Saved. */
class FTextEdits
{
public:
	FTextEdits(const FScratchFolder& InFolder, std::mt19937& InRandom) : Folder(InFolder), Random(InRandom) {}

	void Edit()
	{
		switch (Random() % 10)
		{
			case 0:
				return Move(PickFolder(), PickFolder());
			case 1:
				return Remove(PickFile());
			case 2:
				return Replace(PickFile(), PickFile());
			case 3:
				return MakeHuge(PickFile());
			default:
				return Write(PickFile());
		}
	}

private:
	std::string PickFolder()
	{
		return std::vector<std::string>{"Docs", "Docs/Sub", "Content/A", "Plugins", "Saved", "Tools"}[Random() % 6];
	}
	std::string PickFile()
	{
		static const char* const Names[] = {"a.txt", "B.TXT", "b.txt", "c.md", "d.cpp", "e\xE9.txt", "link.txt"};
		return PickFolder() + "/" + Names[Random() % 7];
	}
	bool Exists(const std::string& Path) const
	{
		return std::filesystem::exists(std::filesystem::symlink_status(Folder.GetRoot() + "/" + Path));
	}
	void Tell(const std::string& Path, bool bFolder)
	{
		if (Path.starts_with("Saved"))
			return;
		FFolderChanges Changes;
		(bFolder ? Changes.Folders : Changes.Files).push_back(Folder.GetRoot() + "/" + Path + (bFolder ? "/" : ""));
		NoteTextFileChanges(Changes);
	}
	void MakeFolderOf(const std::string& File)
	{
		const std::string Path = File.substr(0, File.rfind('/'));
		if (Exists(Path))
			return;
		Folder.MakeFolder(Path);
		Tell(Path.substr(0, Path.find('/')), true);
	}
	std::string MakeBytes()
	{
		std::string Text = MakeText(Random, 40);
		if (Random() % 10 == 0)
			Text = std::string(1024 * 1024 - 10, '-') + Text; // searched in pieces
		if (Random() % 4 == 0)
			return "\xEF\xBB\xBF" + Text;
		if (Random() % 4 == 0)
			return Text + "\xFF" + MakeText(Random, 3) + "\xE2\x84";
		if (Random() % 4 > 0)
			return Text;
		std::string Wide = "\xFE\xFF";
		for (const char Character : Text)
			Wide += {'\0', Character};
		return Wide;
	}
	void Write(const std::string& File)
	{
		MakeFolderOf(File);
		Folder.Remove(File);
		if (File.ends_with("link.txt") && Random() % 2 == 0)
			Folder.Link("a.txt", File);
		else
			Folder.Write(File, MakeBytes());
		Tell(File, false);
	}
	void MakeHuge(const std::string& File)
	{
		Write(File);
		if (!File.ends_with("a.txt"))
			return;
		std::filesystem::resize_file(Folder.GetRoot() + "/" + File, FFileHelper::MaxTextFileBytes + 1); // a hole
		Tell(File, false);
	}
	void Remove(const std::string& File)
	{
		Folder.Remove(File);
		Tell(File, false);
	}
	void Replace(const std::string& From, const std::string& To)
	{
		if (!Exists(From) || From == To)
			return;
		MakeFolderOf(To);
		Folder.Rename(From, To);
		Tell(From, false);
		Tell(To, false);
	}
	void Move(const std::string& From, const std::string& To)
	{
		if (!Exists(From) || Exists(To) || To.starts_with(From))
			return;
		MakeFolderOf(To);
		Folder.Rename(From, To);
		Tell(From, true);
		Tell(To, true);
	}

	const FScratchFolder& Folder;
	std::mt19937& Random;
};

FAssetSearchParams MakeRandomParams(std::mt19937& Random)
{
	FAssetSearchParams Params = MakeTextParams(MakeText(Random, 3));
	Params.bExact = Random() % 8 == 0;
	Params.bCaseSensitive = Random() % 3 == 0;
	Params.MaxTotalHits = Random() % 3 == 0 ? 3 : 1000;
	if (Random() % 4 == 0)
		Params.PathContains = Random() % 2 == 0 ? "docs" : ".txt";
	return Params;
}
}

TEST_F(TextStore, AnswersAsWithoutIt)
{
	const uint32 Seed = GetSeed();
	SCOPED_TRACE("seed " + std::to_string(Seed));
	std::mt19937 Random(Seed);
	Start(Seed % 2 == 0 ? EFolderWatchMode::Events : EFolderWatchMode::Times);
	FTextEdits Edits(Project.GetFolder(), Random);
	UQuellarSettings* const Settings = UQuellarSettings::StaticClass()->GetDefaultObject<UQuellarSettings>();
	for (int32 Round = 0; Round < 150 && !HasFailure(); ++Round)
	{
		for (std::size_t Left = Random() % 5; Left > 0; --Left)
			Edits.Edit();
		if (Random() % 20 == 0)
			Settings->TextSearchExtensions = Random() % 2 == 0 ? TArray<FString>() : TArray<FString>{"cpp", "md", "\uFFFD.txt"};
		for (int32 Left = 4; Left > 0; --Left)
		{
			const FAssetSearchParams Params = MakeRandomParams(Random);
			EXPECT_EQ(SearchAndRender(Project, Params), SearchWithoutStore(Params))
				<< "round " << Round << ", term " << *Params.Term;
		}
	}
	Settings->TextSearchExtensions = {};
}
