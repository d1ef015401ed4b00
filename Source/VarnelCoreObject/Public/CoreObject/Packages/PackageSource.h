#pragma once

#include "Core/Base/Containers.h"
#include "Core/Program/Diagnostics.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class FPropertyReader;
class UPackage;
class UStruct;
struct FStoredObject;

/** Bits of a package dependency. */
namespace EDependencyFlags
{
constexpr uint8 Hard = 1;
constexpr uint8 Game = 2;
}

/**
 * What a package says about itself before its body. Made to be reused from file to file: vectors keep their storage, views stay
 * valid until the reader's next call or a change of the bytes it was given.
 */
struct FPackageHeader
{
	struct FTag
	{
		std::string_view Key;
		std::string_view Value;
	};
	struct FAsset
	{
		std::string_view Name;
		std::string_view Class; // class path as written
		std::string_view Outer; // object path of the outer, "" for an asset directly in the package
		uint32 FirstTag = 0;
		uint32 NumTags = 0;
		bool bRegistryFiltered = false;
	};
	struct FDependency
	{
		std::string_view Package;
		uint8 Flags = 0; // EDependencyFlags
	};
	struct FIndexEntry
	{
		std::string_view Category;
		std::string_view Text;
		std::string_view Comment;
		uint32 Depth =
			0; // 0 for entries directly below the Blueprint; an entry's parent is the nearest earlier one with a smaller depth
	};
	std::vector<FAsset> Assets;
	std::vector<FTag> Tags;
	std::vector<FDependency> Dependencies; // each package once, flags joined
	/** In file order, parents before children. They belong to the first asset of a Blueprint class; without one they are still
	 * listed, but mean nothing. */
	std::vector<FIndexEntry> IndexEntries;

	void Reset();
};

/**
 * A package on its way into memory. Types of several packages may need one another, so all of these are declared before the first
 * is completed. Lives as long as its reader keeps the file. Game thread.
 */
class IPackageBody
{
public:
	virtual ~IPackageBody() = default;

	/** First step: declares classes and structures, their parents and properties, and appends them. May load packages, which are
	 * then as far as their opening brings them. */
	virtual void DeclareTypes(std::vector<UStruct*>& OutTypes) = 0;
	/** For each of these, once it is linked: completes it. What it is made of is complete. */
	virtual void CompleteType(UStruct& Type) = 0;
	/** Last step: makes the other objects and fills them. Single faults (an unknown class or property, a value out of range) are
	 * reported, skipped, and lose nothing else. May load packages. */
	virtual void FillObjects() = 0;
};

/** False ends the visits. */
using FStoredObjectVisit = std::function<bool(const FStoredObject& Object, FPropertyReader& Reader)>;

/** Reads packages of one format; holds the buffers it needs. One thread at a time; make one for each thread. */
class IPackageReader
{
public:
	virtual ~IPackageReader() = default;

	/** Spare bytes that Bytes should have as capacity after its size to save a copy. */
	virtual std::size_t GetPadding() const { return 0; }
	/** False where nothing of the header can be used: the file is then skipped. Faults go to Diagnostics (may be null) under
	 * FileName. */
	virtual bool ReadHeader(std::string& Bytes, const FString& FileName, FPackageHeader& Out, FDiagnosticSink* Diagnostics) = 0;
	/**
	 * First half of loading: does what can be done without objects and keeps the outcome for OpenBody. Bytes stay, unchanged,
	 * as long as the body that this gives. Any thread.
	 */
	virtual void ParseBody(std::string& Bytes) = 0;
	/** Bytes that the reader's buffers take. */
	virtual std::size_t GetMemory() const { return 0; }
	/**
	 * Second half: creates the objects whose classes are never loaded, so that what is a type can be referred to. Null when the
	 * body is malformed: the package then holds no object. Loads nothing. Game thread.
	 */
	virtual TUniquePtr<IPackageBody> OpenBody(const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics) = 0;
	/** After ParseBody, instead of OpenBody: see VisitStoredObjects. Package may be null. Game thread. */
	virtual bool VisitObjects(
		const FString& FileName, UPackage* Package, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit) = 0;
};

/** Parsed, a file may take many times its size: larger files than this are not parsed ahead, nor many of them at a time. */
constexpr uint64 LargePackageBytes = 1024 * 1024;

/** A package format. The registry's scan and the loader know packages only through this. */
class IPackageSource
{
public:
	virtual ~IPackageSource() = default;

	/** Whether a file is a package of this format, by its name alone. Any thread. */
	virtual bool IsPackageFile(std::string_view RelativePath) const = 0;
	/** Length of the file name's extension with its dot, cut to get the package's short name. */
	virtual std::size_t GetExtensionLength() const = 0;
	virtual uint64 GetMaxFileBytes() const = 0;
	virtual TUniquePtr<IPackageReader> MakeReader() const = 0;
	/** Changes whenever headers read by this source could differ for the same file; part of what the registry cache is checked
	 * against. */
	virtual uint32 GetHeaderVersion() const = 0;
};

/** The `*.vasset` format. One instance for the program. */
const IPackageSource& GetVassetPackageSource();
