#pragma once

#include "Core/Program/Diagnostics.h"
#include "CoreObject/Packages/Loader.h"

#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <string>

/** Packages in memory, found by the loader as files. What was loaded goes with the test. */
class FPackageFiles : public testing::Test
{
protected:
	struct FFile
	{
		std::string Text;
		EFileRead Outcome = EFileRead::Ok;
		std::atomic<int32> NumReads = 0; // by threads that parse ahead too
	};

	FPackageFiles();
	~FPackageFiles() override;

	/** Adds the package with the given elements of its list of objects. */
	FFile& Add(const std::string& PackageName, const std::string& Objects);

	std::map<std::string, FFile> Files; // by long name, which the loader may spell in any case
	TUniquePtr<FDiagnosticSink> Faults = MakeUnique<FDiagnosticSink>();
};
