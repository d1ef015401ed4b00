#include "Support/Golden.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace
{
void Write(const std::filesystem::path& File, std::string_view Text)
{
	std::filesystem::create_directories(File.parent_path());
	std::ofstream Stream(File, std::ios::binary | std::ios::trunc);
	Stream << Text;
	ASSERT_TRUE(Stream.flush().good()) << "cannot write " << File;
}

/** The line, without its end, around the place; quoted, or "(nothing)" behind the last one. */
std::string DescribeLine(std::string_view Text, std::size_t Place)
{
	if (Place >= Text.size())
		return "(nothing)";
	const std::size_t Begin = Place == 0 ? 0 : Text.rfind('\n', Place - 1) + 1;
	return "\"" + std::string(Text.substr(Begin, Text.find('\n', Place) - Begin)) + "\"";
}

void ExpectSame(const std::filesystem::path& File, std::string_view Expected, std::string_view Text)
{
	if (Expected == Text)
		return;
	const auto Differing = std::mismatch(Expected.begin(), Expected.end(), Text.begin(), Text.end()).first;
	const auto Place = static_cast<std::size_t>(Differing - Expected.begin());
	ADD_FAILURE_AT(File.c_str(), static_cast<int>(1 + std::count(Expected.begin(), Differing, '\n')))
		<< "differs from what the test got.\n  file: " << DescribeLine(Expected, Place)
		<< "\n  test: " << DescribeLine(Text, Place)
		<< "\nIf the new text is right, run ./test --update-golden and look at the changes.";
}
}

void ExpectGolden(std::string_view Name, std::string_view Text)
{
	const std::filesystem::path File = std::filesystem::path(ORIVANE_TEST_DATA) / Name;
	if (std::getenv("ORIVANE_UPDATE_GOLDEN"))
		return Write(File, Text);
	std::ifstream Stream(File, std::ios::binary);
	ExpectSame(File, std::string(std::istreambuf_iterator<char>(Stream), {}), Text);
}
