#pragma once

#include "CoreObject/Packages/StoredObjects.h"
#include "Project/NamedAsset.h"
#include "Show/ShowPage.h"

#include <string>
#include <unordered_set>
#include <vector>

/**
 * Shows one asset on a page, section by section. What the registry knows is always shown; the rest needs the asset's package,
 * which is loaded, and its file, which is read again. An object of a class that the project does not know is shown as its file
 * has it. Game thread; loads packages, which the caller lets go of.
 */
class FAssetShow
{
public:
	FAssetShow(const FNamedAsset& Named, FShowPage& InPage);

	/** False, and a sentence, where the asset has no such object or row as the parameters ask for. */
	bool Show(FString& OutError);

private:
	/** What the file says of the object, beside the object itself. */
	struct FStored
	{
		bool bListed = false;
		std::unordered_set<std::string> Keys; // of its properties
		FJsonArray RawProperties;			  // of what no object could be made of
		FJsonArray Rows;					  // of a table
		int32 NumRows = 0;
		int32 NumRowsWithoutRoom = 0;
		TArray<FString> FoundRows; // of those that were asked for
	};
	/** Of the file's list, without an object in memory. */
	struct FUnmade
	{
		FString Path;
		FString Class;
	};

	bool AreRowsThere(FString& OutError) const;
	void FindObject();
	const UObject* FindInside(const FString& Text) const;
	void ShowHead();
	void ShowTags();
	void ShowBlueprintParents();
	void ReadStored();
	void TakeStored(const FStoredObject& Listed, FPropertyReader& Reader);
	void ReadRaw(const FStoredObject& Listed, FPropertyReader& Reader);
	void CheckValues(const FJsonRef& Properties, FPropertyReader& Reader);
	void ReadRows(const FJsonRef& Rows, FPropertyReader& Reader);
	bool WantsRow(FStringView Name);
	FJsonValue MakeCells(const FJsonRef& Cells, FPropertyReader& Reader);
	void ShowSections();
	void ShowProperties();
	void ShowRows();
	void ShowTree();
	void ShowObjects();
	void RemarkFaults();

	const FAssetData Asset;
	const FString AssetInnerPath; // inside the package
	FShowPage& Page;
	const UPackage* Package = nullptr;	  // null where it cannot be loaded
	const UObject* AssetObject = nullptr; // null where there is none
	const UObject* Object = nullptr;	  // to be shown: the asset's or another one of the package; null where there is none
	FString InnerPath;					  // of that
	FDiagnosticSink Faults;
	FStored Stored;
	std::vector<FUnmade> Unmade;
	std::unordered_set<const UObject*> InTree;
};
