#pragma once

#include "Core/Text/String.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

/** A folder of one test: removed when the test succeeds, kept and named when it fails. Paths given to it are relative to it,
 * bytes as they are. */
class FScratchFolder
{
public:
	FScratchFolder()
	{
		const testing::TestInfo* Test = testing::UnitTest::GetInstance()->current_test_info();
		const std::string Name = Test ? std::string(Test->test_suite_name()) + "." + Test->name() : "scratch";
		std::string Pattern = (std::filesystem::canonical(std::filesystem::temp_directory_path()) / (Name + "-XXXXXX")).string();
		for (char& Character : Pattern)
			Character = Character == ' ' ? '_' : Character;
		Root = mkdtemp(Pattern.data()) ? Pattern : std::string();
		EXPECT_FALSE(Root.empty()) << "no scratch folder could be made as " << Pattern;
	}
	~FScratchFolder()
	{
		if (testing::Test::HasFailure())
		{
			std::fprintf(stderr, "kept for inspection: %s\n", Root.c_str());
			return;
		}
		std::error_code Ignored;
		std::filesystem::remove_all(Root, Ignored);
	}
	FScratchFolder(const FScratchFolder&) = delete;
	FScratchFolder& operator=(const FScratchFolder&) = delete;

	/** Absolute, no symbolic link in it, without a trailing slash. */
	const std::string& GetRoot() const { return Root; }
	FString Path(std::string_view Relative = {}) const
	{
		return FString(Relative.empty() ? Root : Root + "/" + std::string(Relative));
	}

	/** Writes a file and makes its folders. */
	void Write(std::string_view Relative, std::string_view Bytes) const
	{
		const std::filesystem::path File = Path(Relative).ToStdString();
		std::filesystem::create_directories(File.parent_path());
		std::ofstream Stream(File, std::ios::binary | std::ios::trunc);
		Stream.write(Bytes.data(), static_cast<std::streamsize>(Bytes.size()));
		EXPECT_TRUE(Stream.flush().good()) << "cannot write " << File;
	}
	std::string Read(std::string_view Relative) const
	{
		std::ifstream Stream(Path(Relative).ToStdString(), std::ios::binary);
		return std::string(std::istreambuf_iterator<char>(Stream), {});
	}
	void MakeFolder(std::string_view Relative) const { std::filesystem::create_directories(Path(Relative).ToStdString()); }
	/** A symbolic link that holds Target as it is. */
	void Link(const std::string& Target, std::string_view Relative) const
	{
		std::filesystem::create_symlink(Target, Path(Relative).ToStdString());
	}
	void Pipe(std::string_view Relative) const { EXPECT_EQ(mkfifo(*Path(Relative), 0600), 0); }
	void Remove(std::string_view Relative) const { std::filesystem::remove_all(Path(Relative).ToStdString()); }
	void Rename(std::string_view From, std::string_view To) const
	{
		std::filesystem::rename(Path(From).ToStdString(), Path(To).ToStdString());
	}
	void SetMode(std::string_view Relative, mode_t Mode) const { EXPECT_EQ(chmod(*Path(Relative), Mode), 0); }

private:
	std::string Root;
};
