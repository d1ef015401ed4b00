#pragma once

#include "Core/Program/Diagnostics.h"
#include "CoreObject/Packages/Loader.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

/** A program with the engine's classes, and packages in memory that the loader finds as files. */
class FEngineFixture : public testing::Test
{
protected:
	FEngineFixture();
	~FEngineFixture() override;

	/** A package with the given elements of its list of objects. */
	void Add(const std::string& PackageName, const std::string& Objects);
	/** A package whose only object is its asset, of a class of /Script/Engine, with the given members of "properties",
	 * which begin the file's second line. */
	void AddAsset(const std::string& PackageName, const std::string& Class, const std::string& Properties);
	/** One script module, /Script/Lantern. */
	void Declare(const std::string& Json);
	/** "file:line:column severity rule: text", one fault a line, with the texts; and forgets them. */
	std::string TakeFaults();

	std::map<std::string, std::string> Files; // text by long package name, without regard to case
	TUniquePtr<FDiagnosticSink> Faults = MakeUnique<FDiagnosticSink>();
};
