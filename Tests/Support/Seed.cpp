#include "Support/Seed.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

namespace
{
class FSeedPrinter final : public testing::EmptyTestEventListener
{
public:
	static FSeedPrinter& Get()
	{
		static FSeedPrinter* const Printer = []
		{
			auto* const New = new FSeedPrinter; // the list of listeners owns it
			testing::UnitTest::GetInstance()->listeners().Append(New);
			return New;
		}();
		return *Printer;
	}

	std::uint32_t Seed = 0;
	bool bUsed = false; // by the test that runs

private:
	void OnTestEnd(const testing::TestInfo& Test) override
	{
		if (bUsed && Test.result()->Failed())
			std::printf("repeat with ORIVANE_TEST_SEED=%u --gtest_filter=%s.%s\n", static_cast<unsigned>(Seed),
				Test.test_suite_name(), Test.name());
		bUsed = false;
	}
};
}

std::uint32_t GetSeed()
{
	return GetSeed(std::random_device()());
}

std::uint32_t GetSeed(std::uint32_t Own)
{
	const char* const Given = std::getenv("ORIVANE_TEST_SEED");
	FSeedPrinter& Printer = FSeedPrinter::Get();
	Printer.Seed = Given ? static_cast<std::uint32_t>(std::strtoul(Given, nullptr, 10)) : Own;
	Printer.bUsed = true;
	return Printer.Seed;
}
