#pragma once

#include "Project/HeadlessEngine.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Support/Cases.h"
#include "Support/ScratchFolder.h"
#include "Support/TestEffects.h"

#include <deque>
#include <string>
#include <vector>

class FTestProject;

/** A DataTable under construction; its row structure is declared in the project's script module. */
class FTestTable
{
public:
	FTestTable(std::string InPackage, std::string InRowStruct) : Package(std::move(InPackage)), RowStruct(std::move(InRowStruct))
	{
	}

	FTestTable& Column(const std::string& Name, const std::string& Type)
	{
		Columns.push_back({Name, Type});
		return *this;
	}
	FTestTable& Rows(int32 Count)
	{
		NumRows = Count;
		return *this;
	}

private:
	friend class FTestProject;
	struct FColumn
	{
		std::string Name;
		std::string Type;
	};
	std::string Package;
	std::string RowStruct; // "" for a table without one
	std::vector<FColumn> Columns;
	int32 NumRows = 0;
};

/** A package with one asset under construction, of any class. */
class FTestAsset
{
public:
	FTestAsset(std::string InPackage, std::string InClass);

	/** Registry tags, the members of a JSON object. */
	FTestAsset& Tags(const std::string& Members);
	/** Value is JSON. References to inner objects are written "^Path", which stands for the object of that path inside the asset.
	 */
	FTestAsset& Set(const std::string& Property, const std::string& Value);
	/** An object inside the asset, "Root" or "Root.Deeper". Properties are the members of a JSON object. */
	FTestAsset& Inner(const std::string& Path, const std::string& Class, const std::string& Properties = "");

private:
	friend class FTestProject;
	std::string ToJson() const;

	std::string Package;
	std::string Name;
	std::string Class;
	std::string TagMembers;
	std::string Properties;
	std::string InnerObjects;
};

/**
 * A whole project for one test: described in a few calls, written to a scratch folder and opened at the first question. The
 * calling thread is the game thread. One at a time.
 */
class FTestProject
{
public:
	FTestProject();
	~FTestProject();

	FTestTable& Table(const std::string& Package, const std::string& RowStruct = "");
	FTestMaterial& Material(const std::string& Package, const std::string& Class = "/Script/Engine.Material");
	FTestMaterial& MaterialInstance(const std::string& Package, const std::string& ParentPackage);
	FTestNiagaraSystem& NiagaraSystem(const std::string& Package);
	/** A package of one asset with the given elements of the list "objects". */
	FTestProject& Objects(const std::string& Package, const std::string& Class, const std::string& Elements);
	/** Class: a path, or the short name of an engine class. */
	FTestAsset& Asset(const std::string& Package, const std::string& Class);
	/** A script module; Declarations are members such as "classes": [...]. */
	FTestProject& Script(const std::string& Module, const std::string& Declarations);
	/** A file of the project, relative to its folder. */
	FTestProject& File(const std::string& Path, const std::string& Bytes);
	/** Lines of Config/DefaultGame.ini below [/Script/Quellar.QuellarSettings]. */
	FTestProject& Settings(const std::string& Lines);
	/** A package of one asset without a body, as the registry sees it. */
	FTestProject& Header(const std::string& Package, const std::string& Class, const std::string& TagsJson = "{}");
	/** The same with several assets ("Name Class", with " filtered" behind it for one that the registry hides) and dependencies
	 * ("/Game/B", with " soft" and " editor" behind it for what is not hard or not needed at run time). */
	FTestProject& Links(
		const std::string& Package, const std::vector<std::string>& AssetLines, const std::vector<std::string>& Dependencies);

	/** Writes and opens what was described; asking does it by itself. Again after further calls: opens anew. */
	void Open();
	FAssetSearchResult Search(const FAssetSearchParams& Params);
	FAssetSearchResult Search(const std::string& Family, const std::string& Term);
	/** Every fault that a check of the opened project's packages finds, one a line: "BT_A.vasset error tree-cycle". */
	std::string Check();
	const FScratchFolder& GetFolder() const { return Folder; }

private:
	void WriteTable(const FTestTable& Table);
	void WriteScriptModule();

	FScratchFolder Folder;
	FHeadlessEngine Engine;
	std::deque<FTestTable> Tables;
	std::deque<FTestMaterial> Materials;
	std::deque<FTestNiagaraSystem> NiagaraSystems;
	std::deque<FTestAsset> Assets;
	std::string SettingsLines;
	bool bOpen = false;
};

/** A search of one family with the default caps. */
FAssetSearchParams MakeParams(const std::string& Family, const std::string& Term);

/**
 * "DT_Items: ColumnName Name:string @Schema/Columns x2; RowCount 3 @Rows | Docs/Notes.md: ..." with "(truncated)" behind an asset
 * or at the end; package paths are cut to their last segment.
 */
std::string Render(const FAssetSearchResult& Result);
/** Searches a family for the given terms; the answers are expected as Render writes them. */
void ExpectFound(FTestProject& Project, const std::string& Family, std::initializer_list<TCase<const char*, std::string>> Cases);
/** The assets alone, in order: "DT_Items DT_Weapons". */
std::string RenderAssets(const FAssetSearchResult& Result);
std::string Join(const TArray<FString>& Texts, const char* Separator = " ");
