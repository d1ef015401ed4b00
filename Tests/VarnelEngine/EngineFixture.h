#pragma once

#include "Support/PackageFiles.h"

/** A program with the engine's classes, and packages in memory. */
class FEngineFixture : public FPackageFiles
{
protected:
	FEngineFixture();
	~FEngineFixture() override;

	/** A package whose only object is its asset, of a class of /Script/Engine, with the given members of "properties",
	 * which begin the file's second line. */
	void AddAsset(const std::string& PackageName, const std::string& Class, const std::string& Properties);
	/** One script module, /Script/Lantern. */
	void Declare(const std::string& Json);
	/** "file:line:column severity rule: text", one fault a line, with the texts; and forgets them. */
	std::string TakeFaults();
};
