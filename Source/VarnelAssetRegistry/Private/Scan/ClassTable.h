#pragma once

#include "Core/Base/Containers.h"
#include "CoreObject/Objects/ObjectPath.h"
#include "Image/TextTable.h"

/** Gathers the classes of a registry that is being built. One thread at a time. */
class FClassTable
{
public:
	/** Declares parents that no Blueprint can change. */
	void AddDeclared(const TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>& ChildAndParent);
	/** The id of a class for the time being. */
	uint32 Add(std::string_view Path) { return Paths.Add(Path); }
	/** The path as it was spelled first. Valid until the next class is added. */
	std::string_view Get(uint32 Class) const { return Paths.Get(Class); }
	/** Parent of a Blueprint's class. The first parent that a class is given stays. Paths come from tags: plain or in the form
	 * Class'...'; what is not a class path is ignored. */
	void AddGenerated(std::string_view Class, std::string_view Parent, std::string_view NativeParent);

	/**
	 * Sorts the classes, gives those in Draft.AssetClasses their final ids, and fills the columns by class. Where parents form a
	 * cycle, each of its classes loses its parent. The sorted paths are appended to OutPaths.
	 */
	void Finish(FRegistryDraft& Draft, FTextTable& OutPaths);

private:
	void SetParent(uint32 Class, uint32 Parent);

	FTextTable Paths{ESearchCase::IgnoreCase};
	std::vector<uint32> Parents;  // by id for the time being; may be shorter than Paths
	std::vector<uint32> Disputed; // classes that were given a further parent, or none
};

/** Appends texts to Out in registry order; element Id is the place where the text Id went. */
std::vector<uint32> AppendSorted(const FTextTable& Texts, FTextTable& Out);
