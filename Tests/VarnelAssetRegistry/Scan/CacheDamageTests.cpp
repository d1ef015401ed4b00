#include "AssetRegistry/BlueprintIndex.h"
#include "Image/RegistryColumns.h"
#include "Queries/PathSearch.h"
#include "Queries/RegistryDump.h"
#include "Queries/RegistryQuery.h"
#include "Queries/RegistrySnapshot.h"
#include "RegistryFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <cstring>
#include <random>

namespace
{
constexpr int32 NumFiles = 80; // enough for lists of trigrams to be read

void FillProject(const FRegistryProject& Project)
{
	for (int32 Index = 0; Index < NumFiles; ++Index)
	{
		const std::string Number = std::to_string(Index);
		Project.Package("F" + std::to_string(Index % 4) + "/BP_" + Number,
			"asset BP_" + Number + " /Script/Engine.Blueprint\ntag GeneratedClass=/Game/BP_" + Number +
				".BP_C\ntag ParentClass=/Game/BP_" + std::to_string(Index / 2) +
				".BP_C\nasset Inner /Script/Engine.Thing in=/Game/X.Y\nneeds /Game/F1/BP_" +
				std::to_string(Index * 7 % NumFiles) + " soft\nneeds /Game/Gone\nentry 0 Var|Health" + Number +
				"|\u00c4\u1e9e\nentry 1 Pin|Value|\n");
	}
}

std::size_t AskBlueprintIndex(const TSharedPtr<const FRegistrySnapshot>& Snapshot)
{
	const FBlueprintIndexView Index(Snapshot);
	std::size_t NumBytes = 0;
	for (const char* Value : {"", "al", "health", "health3", "value"})
	{
		for (const uint32 Text : Index.FindTexts(Value))
		{
			for (const uint32 Entry : Index.GetUses(Text).Numbers)
				NumBytes += Index.GetBlueprint(Index.FindBlueprint(Entry)).GetObjectPathString().View().size();
		}
	}
	return NumBytes;
}

/** Every query that reads a column. What they answer does not matter here. */
void AskEverything(const TSharedPtr<const FRegistryImage>& ImagePtr)
{
	const FRegistryImage& Image = *ImagePtr;
	const auto Snapshot = MakeShared<FRegistrySnapshot>(MakeShared<FRegistryPart>(ImagePtr, FRegistryScanOptions()));
	const FRegistryNames& Names = Snapshot->Base->Names;
	std::size_t NumBytes = AskBlueprintIndex(Snapshot);
	DumpRegistry(Image, [&NumBytes](FStringView Line) { NumBytes += Line.size(); });
	std::vector<uint32> Derived;
	for (uint32 Class = 0; Class < Image.NumClasses(); ++Class)
	{
		Image.GatherDerivedClasses(Class, Derived);
		NumBytes += Names.GetClass(Class).ToString().View().size();
	}
	for (uint32 Node = 0; Node < Image.NumNodes(); ++Node)
		NumBytes += Names.FindNode(Names.GetNode(Node)) != NoId;
	for (uint32 Asset = 0; Asset < Image.NumAssets(); ++Asset)
		NumBytes +=
			Names.GetAssetName(Asset).View().size() + Names.GetFolder(Image.GetTables().AssetPackages[Asset]).View().size();
	const FTopLevelAssetPath Blueprint("/Script/Engine.Blueprint");
	const FARFilter Filters[] = {{}, {.PackagePaths = {"/Game/F1", "/Game"}},
		{.ClassPaths = {Blueprint}, .bRecursiveClasses = true}, {.PackageNames = {"/Game/F1/BP_1", "/Game/F2/BP_2"}},
		{.PackagePaths = {"/Game"}, .ClassPaths = {Blueprint}, .bRecursivePaths = true}};
	for (const FARFilter& Filter : Filters)
		VisitAssets(*Snapshot, Filter, [&NumBytes](uint32 Asset) { return NumBytes += Asset, true; });
	for (const char* Term : {"bp_1", "bp_37", "Inner", "a", "y:i", "/Game/F1/BP_1.BP_1"})
		FPathSearch(Image, {.Text = Term}, [&NumBytes](FRowRange Assets) { NumBytes += Assets.Num(); }).Run();
	EXPECT_GT(NumBytes, 0u);
}

FImageBytes CopyBytes(std::string_view Bytes)
{
	FImageBytes Copy = FImageBytes::Allocate(Bytes.size());
	std::memcpy(Copy.GetWritable(), Bytes.data(), Bytes.size());
	return Copy;
}

FRegistryDraft CopyTables(const FRegistryTables& Tables)
{
	FRegistryDraft Draft;
	ForEachColumn([](const FColumn&, auto& To, const auto& From) { To.assign(From.begin(), From.end()); }, Draft, Tables);
	Draft.ZoneStarts = Tables.ZoneStarts;
	return Draft;
}

/** Overwrites one element of one column, drops some, or adds some. */
void DamageColumn(FRegistryDraft& Draft, std::mt19937& Random)
{
	const std::size_t Chosen = Random() % (NumColumns + 1);
	if (Chosen == NumColumns)
	{
		Draft.ZoneStarts[Random() % Draft.ZoneStarts.size()] += static_cast<uint32>(Random() % 7) - 3;
		return;
	}
	std::size_t Index = 0;
	ForEachColumn(
		[&](const FColumn&, auto& Column)
		{
			if (Index++ != Chosen)
				return;
			const uint32 Kind = Random() % 4;
			if (Kind == 0 || Column.empty())
				Column.resize(Column.size() + 1 + Random() % 3);
			else if (Kind == 1)
				Column.resize(Column.size() - 1);
			else
			{
				auto& Element = Column[Random() % Column.size()];
				char* const Byte = reinterpret_cast<char*>(&Element) + Random() % sizeof(Element);
				*Byte = static_cast<char>(Kind == 2 ? Random() : static_cast<uint32>(*Byte) + 1);
			}
		},
		Draft);
}

TSharedPtr<const FRegistryImage> OpenCache(const FRegistryProject& Project, EImageState& OutState)
{
	return FRegistryImage::Open(CopyBytes(Project.Folder.Read("Intermediate/AssetRegistry.cache")), OutState);
}
}

TEST(CacheDamage, ADamagedCacheIsRebuilt)
{
	constexpr const char* CacheFile = "Intermediate/AssetRegistry.cache";
	FRegistryProject Project;
	FillProject(Project);
	Project.ScanCached();
	const std::string Expected = Project.Dump();
	const std::string Sound = Project.Folder.Read(CacheFile);
	ASSERT_GT(Sound.size(), 4000u);

	std::mt19937 Random(GetSeed(20240607));
	const auto Check = [&](const std::string& Bytes, const std::string& What)
	{
		Project.Folder.Write(CacheFile, Bytes);
		const FRegistryScanReport Report = Project.ScanCached();
		EXPECT_TRUE(Report.CacheState.StartsWith("rebuilt: ")) << What << ": " << Report.CacheState.View();
		EXPECT_EQ(Report.NumParsed, NumFiles) << What;
		EXPECT_EQ(Project.Dump(), Expected) << What;
	};
	for (int32 Run = 0; Run < 60 && !testing::Test::HasFailure(); ++Run)
	{
		// Half of the flips fall into the header, which is a small part of the file.
		const std::size_t Offset = Random() % (Run % 2 == 0 ? 1200 : Sound.size());
		std::string Bytes = Sound;
		Bytes[Offset] = static_cast<char>(Bytes[Offset] ^ (1 << Random() % 8));
		// Padding between the columns is not covered: it is never read.
		EImageState State = EImageState::Missing;
		if (!FRegistryImage::Open(CopyBytes(Bytes), State))
			Check(Bytes, "bit flipped at " + std::to_string(Offset));
	}
	for (int32 Run = 0; Run < 30 && !testing::Test::HasFailure(); ++Run)
	{
		const std::size_t Size = Run < 8 ? static_cast<std::size_t>(Run) * 4 + 1 : Random() % Sound.size();
		Check(Sound.substr(0, Size), "cut to " + std::to_string(Size));
	}
	Check(Sound + std::string(64, '\0'), "lengthened");
	Check(std::string(Sound.size(), '\0'), "zeros, as a crash of the machine may leave");
}

TEST(CacheDamage, ForeignImagesAreRefused)
{
	FRegistryProject Project;
	FillProject(Project);
	Project.ScanCached();
	const std::string Sound = Project.Folder.Read("Intermediate/AssetRegistry.cache");
	const struct
	{
		const char* Why;
		std::size_t Offset;
		std::string Bytes;
	} Cases[] = {
		{"another kind of file", 0, "PNG"},
		{"a machine of the other byte order", 8, std::string("\x01\x02\x03\x04", 4)},
		{"another version", 12, "\x7F"},
	};
	for (const auto& Case : Traced(Cases))
	{
		std::string Bytes = Sound;
		Bytes.replace(Case.Offset, Case.Bytes.size(), Case.Bytes);
		EImageState State = EImageState::Sound;
		EXPECT_EQ(FRegistryImage::Open(CopyBytes(Bytes), State), nullptr);
		EXPECT_EQ(State, EImageState::Foreign);
	}
	EImageState State = EImageState::Sound;
	EXPECT_EQ(FRegistryImage::Open({}, State), nullptr);
	EXPECT_EQ(State, EImageState::Foreign);
}

TEST(CacheDamage, NoFlippedBitIsOverlooked)
{
	FRegistryProject Project;
	FillProject(Project);
	Project.ScanCached();
	const std::string Sound = Project.Folder.Read("Intermediate/AssetRegistry.cache");
	EImageState State = EImageState::Sound;
	const TSharedPtr<const FRegistryImage> Image = OpenCache(Project, State);
	ASSERT_NE(Image, nullptr);
	std::mt19937 Random(GetSeed(7));
	for (int32 Run = 0; Run < 3000; ++Run)
	{
		std::string Bytes = Sound;
		const std::size_t Offset = Random() % Sound.size();
		Bytes[Offset] = static_cast<char>(Bytes[Offset] ^ (1 << Random() % 8));
		const TSharedPtr<const FRegistryImage> Opened = FRegistryImage::Open(CopyBytes(Bytes), State);
		if (!Opened)
			continue;
		// Only bytes between columns may differ.
		ForEachColumn(
			[Offset](const FColumn& Column, const auto& A, const auto& B)
			{
				const bool bSame = A.size() == B.size() && (A.empty() || std::memcmp(A.data(), B.data(), A.size_bytes()) == 0);
				EXPECT_TRUE(bSame) << Column.Name << ", bit flipped at " << Offset;
			},
			Opened->GetTables(), Image->GetTables());
	}
}

TEST(CacheDamage, WhatPassesTheChecksCanBeRead)
{
	// Images with right checksums around wrong content: opening refuses them, or every query on them stays in bounds and ends.
	FRegistryProject Project;
	FillProject(Project);
	Project.ScanCached();
	EImageState State = EImageState::Sound;
	const TSharedPtr<const FRegistryImage> Sound = OpenCache(Project, State);
	ASSERT_NE(Sound, nullptr);
	AskEverything(Sound);
	std::mt19937 Random(GetSeed(20240608));
	int32 NumRefused = 0;
	int32 NumOpened = 0;
	for (int32 Run = 0; Run < 4000; ++Run)
	{
		FRegistryDraft Draft = CopyTables(Sound->GetTables());
		for (auto Fault = Random() % 3; Fault < 3; ++Fault)
			DamageColumn(Draft, Random);
		const TSharedPtr<const FRegistryImage> Built = FRegistryImage::Build(std::move(Draft), {});
		const TSharedPtr<const FRegistryImage> Opened = FRegistryImage::Open(CopyBytes(Built->GetBytes()), State);
		++(Opened ? NumOpened : NumRefused);
		if (Opened)
			AskEverything(Opened);
	}
	EXPECT_GT(NumRefused, 1000);
	EXPECT_GT(NumOpened, 100);
}
