#include "TextFiles.h"
#include "JsonText.h"
#include "Phrases.h"
#include "Vocabulary.h"

namespace
{
constexpr uint32 SmallestSize = 120;
constexpr uint32 MiddleSize = 2048; // bytes; half of the files are larger
constexpr uint32 MostDoublings = 9; // up to 1 MiB
constexpr uint32 DoubleAgainOf256 = 158;
constexpr uint32 RareWordOneIn = 100;
constexpr uint32 ForeignFileOneIn = 8; // files with German or Russian words here and there
constexpr uint32 Utf16OneIn = 60;	   // of the files that may be UTF-16, so that it is one of 100 of all

enum class ETextStyle : uint8
{
	Prose,
	Settings,
	Script,
	Batch,
	Markup,
	Yaml,
	Sheet,
	Code,
	Descriptor
};

struct FTextKind
{
	std::string_view Extension;
	uint32 PerThousand;
	ETextStyle Style;
	bool bMayBeUtf16;
};

constexpr FTextKind Kinds[] = {
	{"txt", 200, ETextStyle::Prose, true},
	{"md", 150, ETextStyle::Prose, true},
	{"py", 130, ETextStyle::Script, false},
	{"xml", 90, ETextStyle::Markup, true},
	{"html", 60, ETextStyle::Markup, true},
	{"ini", 60, ETextStyle::Settings, true},
	{"js", 60, ETextStyle::Code, false},
	{"yaml", 50, ETextStyle::Yaml, false},
	{"ts", 40, ETextStyle::Code, false},
	{"yml", 40, ETextStyle::Yaml, false},
	{"bat", 30, ETextStyle::Batch, false},
	{"css", 30, ETextStyle::Sheet, false},
	{"config", 30, ETextStyle::Settings, true},
	{"cfg", 20, ETextStyle::Settings, true},
	{"uplugin", 8, ETextStyle::Descriptor, false},
	{"uproject", 2, ETextStyle::Descriptor, false},
};

constexpr std::string_view Folders[] = {"Docs", "Docs/Design", "Docs/Guides", "Tools", "Tools/Build", "Tools/Import", "Web",
	"Config/Platforms", "Localization", "Plugins/Gameplay/CraftingKit/Docs"};

const FTextKind& PickKind(FRandom& Random)
{
	uint32 Mark = Random.Below(1000);
	const FTextKind* Kind = Kinds;
	for (; Mark >= Kind->PerThousand; ++Kind)
		Mark -= Kind->PerThousand;
	return *Kind;
}

uint32 PickSize(FRandom& Random)
{
	if (Random.Chance(128))
		return Random.Between(SmallestSize, MiddleSize);
	const uint32 Low = MiddleSize << Random.Doublings(DoubleAgainOf256, MostDoublings - 1);
	return Random.Between(Low, Low * 2);
}

/** Writes the lines of one file. Every style gives lines that its readers accept; none needs an escape. */
class FTextWriter
{
public:
	FTextWriter(std::string& InOut, FRandom& InRandom, bool bInForeign) : Out(InOut), Random(InRandom), bForeign(bInForeign) {}

	/** Writes at least Size bytes, with the rare words among them. */
	void Write(const FTextKind& Kind, uint32 Size, const std::string& InRareWords)
	{
		Style = Kind.Style;
		Begin(Kind);
		const std::size_t RareAt = InRareWords.empty() ? std::string::npos : Random.Below(Size);
		bool bRareDue = RareAt != std::string::npos;
		while (Out.size() < Size || bRareDue)
		{
			const bool bRareNow = bRareDue && Out.size() >= RareAt;
			WriteLine(bRareNow ? std::string_view(InRareWords) : std::string_view());
			bRareDue = bRareDue && !bRareNow;
		}
		End(Kind);
	}

private:
	void Begin(const FTextKind& Kind)
	{
		if (Kind.Extension == "xml")
			Out += "<?xml version=\"1.0\"?>\n<records>\n";
		else if (Kind.Extension == "html")
			Out += "<!DOCTYPE html>\n<html><body>\n";
		else if (Style == ETextStyle::Settings)
			Out += "[General]\n";
		else if (Style == ETextStyle::Descriptor)
			Out += "{\n\t\"name\": \"Template\",\n\t\"description\": [\n";
		else if (Style == ETextStyle::Batch)
			Out += "@echo off\n";
	}

	void End(const FTextKind& Kind)
	{
		if (Kind.Extension == "xml")
			Out += "</records>\n";
		else if (Kind.Extension == "html")
			Out += "</body></html>\n";
		else if (Style == ETextStyle::Descriptor)
			Out += "\t\t\"\"\n\t]\n}\n";
	}

	void WriteLine(std::string_view Rare)
	{
		switch (Style)
		{
			case ETextStyle::Prose:
				return WriteProse(Rare);
			case ETextStyle::Settings:
				return Random.OneIn(12) ? WriteAround("\n[", 1, "", "]\n") : WriteAssignment("", "=", Rare, "\n");
			case ETextStyle::Script:
				return Random.OneIn(4) ? WriteAround("# ", 8, Rare, "\n") : WriteAssignment("", " = \"", Rare, "\"\n");
			case ETextStyle::Batch:
				return Random.OneIn(3) ? WriteAround("rem ", 6, Rare, "\n") : WriteAssignment("set ", "=", Rare, "\n");
			case ETextStyle::Markup:
				return WriteAround("<p>", 9, Rare, "</p>\n");
			case ETextStyle::Yaml:
				return WriteAssignment("- ", ": ", Rare, "\n");
			case ETextStyle::Sheet:
				return Random.OneIn(3) ? WriteAround("/* ", 5, Rare, " */\n")
									   : WriteAssignment(".", " { content: \"", Rare, "\"; }\n");
			case ETextStyle::Code:
				return Random.OneIn(4) ? WriteAround("// ", 7, Rare, "\n") : WriteAssignment("let ", " = \"", Rare, "\";\n");
			case ETextStyle::Descriptor:
				return WriteAround("\t\t\"", 8, Rare, "\",\n");
		}
	}

	void WriteProse(std::string_view Rare)
	{
		const uint32 NumWords = Random.Between(6, 16);
		const bool bEndsParagraph = Random.OneIn(6);
		WriteAround("", NumWords, Rare, bEndsParagraph ? ".\n\n" : ".\n");
	}

	void WriteAssignment(std::string_view Before, std::string_view Between, std::string_view Rare, std::string_view Behind)
	{
		Out += Before;
		Out += Random.Pick(Vocabulary::Actions);
		Out += Random.Pick(Vocabulary::Quantities);
		FJsonText::AppendNumber(Out, Random.Below(1000));
		WriteAround(Between, Random.Between(1, 4), Rare, Behind);
	}

	void WriteAround(std::string_view Before, uint32 NumWords, std::string_view Rare, std::string_view Behind)
	{
		Out += Before;
		for (uint32 Word = 0; Word < NumWords; ++Word)
		{
			if (Word != 0)
				Out += ' ';
			Out += PickWord();
		}
		if (!Rare.empty())
		{
			Out += ' ';
			Out += Rare;
		}
		Out += Behind;
	}

	std::string_view PickWord()
	{
		if (bForeign && Random.OneIn(6))
			return Random.Pick(Random.Chance(128) ? Vocabulary::GermanWords : Vocabulary::RussianWords);
		return Random.Pick(Vocabulary::PlainWords);
	}

	std::string& Out;
	FRandom& Random;
	ETextStyle Style = ETextStyle::Prose;
	bool bForeign;
};

void AppendUnit(std::string& Out, uint32 Unit, bool bBigEndian)
{
	const char High = static_cast<char>(Unit >> 8);
	const char Low = static_cast<char>(Unit & 255);
	Out += bBigEndian ? High : Low;
	Out += bBigEndian ? Low : High;
}

/** Text, valid UTF-8 of at most three bytes a character, as UTF-16 with a byte-order mark. */
std::string ToUtf16(std::string_view Text, bool bBigEndian)
{
	std::string Out;
	Out.reserve(Text.size() * 2 + 2);
	AppendUnit(Out, 0xFEFF, bBigEndian);
	for (std::size_t At = 0; At < Text.size();)
	{
		const auto Byte = [&](std::size_t Offset) -> uint32 { return static_cast<unsigned char>(Text[At + Offset]); };
		const uint32 Lead = Byte(0);
		const std::size_t Length = Lead < 0x80 ? 1 : Lead < 0xE0 ? 2 : 3;
		uint32 Unit = Lead;
		if (Length == 2)
			Unit = (Lead & 0x1F) << 6 | (Byte(1) & 0x3F);
		else if (Length == 3)
			Unit = (Lead & 0x0F) << 12 | (Byte(1) & 0x3F) << 6 | (Byte(2) & 0x3F);
		AppendUnit(Out, Unit, bBigEndian);
		At += Length;
	}
	return Out;
}

std::string PickRareWords(FRandom& Random, FTextFile& File)
{
	std::string Words;
	for (std::size_t Word = 0; Word < RareWords.size(); ++Word)
	{
		File.bHasRareWord[Word] = Random.OneIn(RareWordOneIn);
		if (!File.bHasRareWord[Word])
			continue;
		Words += Words.empty() ? "" : " ";
		Words += RareWords[Word];
	}
	return Words;
}

/** A folder with a .uproject or .uplugin file means something to tools, so each of those gets a folder of its own. */
void PlaceFile(const FProjectPlan& Plan, const FTextKind& Kind, uint32 Index, FRandom& Random, FTextFile& File)
{
	File.Name = Random.Pick(Vocabulary::Actions);
	File.Name += Random.Pick(Vocabulary::Subjects);
	File.Name += '_';
	FJsonText::AppendNumber(File.Name, Index);
	if (Kind.Style == ETextStyle::Descriptor)
		File.Folder = "Templates/" + File.Name;
	else if (Random.OneIn(5))
		File.Folder = Random.Pick(Plan.GetFolders()).DiskPath;
	else
	{
		File.Folder = Random.Pick(Folders);
		if (Random.Chance(128))
			(File.Folder += '/') += Random.Pick(Vocabulary::Subjects);
	}
	(File.Name += '.') += Kind.Extension;
}
}

void MakeTextFile(const FProjectPlan& Plan, uint32 Index, FTextFile& File)
{
	FRandom Random = Plan.MakeRandom(EPurpose::TextFile, Index);
	const FTextKind& Kind = PickKind(Random);
	PlaceFile(Plan, Kind, Index, Random, File);
	const std::string Rare = PickRareWords(Random, File);
	const uint32 Size = PickSize(Random);
	File.bUtf16 = Kind.bMayBeUtf16 && Random.OneIn(Utf16OneIn);

	File.Content.clear();
	FTextWriter(File.Content, Random, Random.OneIn(ForeignFileOneIn)).Write(Kind, Size, Rare);
	if (File.bUtf16)
		File.Content = ToUtf16(File.Content, Random.OneIn(3));
}
