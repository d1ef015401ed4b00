#include "Core/Text/Name.h"
#include "Support/Cases.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{
FString Numbered(const char* Prefix, int32 Number)
{
	return FString(Prefix) + FString::FromInt(Number);
}
}

TEST(Name, SpellingsShareTheComparisonIdAndKeepTheirText)
{
	const FName Small = "nametest_жук", Capital = "NAMETEST_ЖУК", Kelvin = "\u212Anametest", PlainK = "knameTest";
	EXPECT_EQ(Small, Capital);
	EXPECT_EQ(GetTypeHash(Small), GetTypeHash(Capital));
	EXPECT_EQ(Kelvin, PlainK);
	EXPECT_FALSE(Small == Kelvin);
	EXPECT_EQ(Small.View(), "nametest_жук");
	EXPECT_EQ(Capital.View(), "NAMETEST_ЖУК");
	EXPECT_EQ(FName("NAMETEST_ЖУК").View().data(), Capital.View().data()); // stored once
}

TEST(Name, NoneIsTheEmptyName)
{
	const struct
	{
		const char* Why;
		FName Name;
		bool bIsNone;
		const char* Printed;
	} Cases[] = {
		{"default", FName(), true, "None"},
		{"empty text", "", true, "None"},
		{"by name", "None", true, "None"},
		{"other spelling", "nONE", true, "nONE"},
		{"longer", "None_", false, "None_"},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(Case.Name.IsNone(), Case.bIsNone);
		EXPECT_EQ(Case.Name == FName(), Case.bIsNone);
		EXPECT_EQ(Case.Name.View(), Case.Printed);
	}
}

TEST(Name, OrdersAlphabetically)
{
	std::vector<FName> Names = {"nt_b", "NT_C", "nt_10", "NT_a", FName()};
	std::sort(Names.begin(), Names.end(), [](FName A, FName B) { return A.LexicalLess(B); });
	std::string Printed;
	for (const FName Name : Names)
		Printed.append(Name.View()).append(" ");
	EXPECT_EQ(Printed, "None nt_10 NT_a nt_b NT_C ");
	EXPECT_FALSE(FName("nt_A").LexicalLess("NT_a"));
}

TEST(Name, HoldsTextsOfAnyLength)
{
	// Around the granule of 8 bytes, and where a name gets storage of its own.
	for (const std::size_t Length : {1u, 7u, 8u, 9u, 1024u, 131064u, 131065u, 524288u, 3000000u})
	{
		const std::string Text = "n" + std::string(Length - 1, 'x');
		const FName Name{FStringView(Text)};
		EXPECT_EQ(Name.View(), Text);
		EXPECT_EQ(Name.View().data(), FName(FStringView(Text)).View().data());
	}
	for (int32 Index = 0; Index < 400; ++Index) // more than the storage that names share holds at once
	{
		const FString Text = Numbered(std::string(60000, 'x').c_str(), Index);
		ASSERT_EQ(FName(Text).View(), Text.View());
	}
	const FName WithNul(FStringView("a\0b", 3));
	EXPECT_EQ(WithNul.View().size(), 3u);
	EXPECT_FALSE(WithNul == FName("a"));
}

TEST(Name, ViewsStayWhileManyMoreNamesCome)
{
	const FName First = "nametest_first";
	const FStringView View = First.View();
	std::vector<FName> Names;
	for (int32 Index = 0; Index < 100000; ++Index)
		Names.emplace_back(Numbered("nametest_", Index));
	EXPECT_EQ(View, "nametest_first");
	for (int32 Index = 0; Index < 100000; ++Index)
	{
		ASSERT_EQ(Names[static_cast<std::size_t>(Index)].View(), Numbered("nametest_", Index).View());
		ASSERT_EQ(Names[static_cast<std::size_t>(Index)], FName(Numbered("NAMETEST_", Index)));
	}
}

TEST(Name, ThreadsAgreeOnIds)
{
	constexpr int32 NumThreads = 4;
	constexpr int32 NumNames = 3000;
	std::vector<std::vector<FName>> PerThread(NumThreads);
	std::atomic<int32> NumReady = 0;
	std::vector<std::thread> Threads;
	for (int32 Thread = 0; Thread < NumThreads; ++Thread)
	{
		Threads.emplace_back(
			[&, Thread]
			{
				++NumReady;
				while (NumReady < NumThreads)
					std::this_thread::yield();
				// Two threads a spelling, so that both the spelling and the comparison id are fought over.
				const char* const Prefix = Thread % 2 == 0 ? "Contended_" : "contended_";
				for (int32 Index = 0; Index < NumNames; ++Index)
					PerThread[static_cast<std::size_t>(Thread)].emplace_back(Numbered(Prefix, Index));
			});
	}
	for (std::thread& Thread : Threads)
		Thread.join();
	for (std::size_t Index = 0; Index < NumNames; ++Index)
	{
		for (std::size_t Thread = 0; Thread < NumThreads; ++Thread)
		{
			ASSERT_EQ(PerThread[Thread][Index], PerThread[0][Index]);
			ASSERT_EQ(PerThread[Thread][Index].View().data(), PerThread[Thread % 2][Index].View().data());
		}
		ASSERT_EQ(PerThread[1][Index].View(), Numbered("contended_", static_cast<int32>(Index)).View());
	}
}
