#include "Support/TestProject.h"

#include "Core/Tasks.h"
#include "Project.h"

#include <sstream>

namespace
{
std::string GetShortName(const std::string& Path)
{
	return Path.substr(Path.rfind('/') + 1);
}

std::string GetPackageFile(const std::string& Package)
{
	constexpr std::string_view GameRoot = "/Game/";
	EXPECT_TRUE(Package.starts_with(GameRoot)) << Package;
	return "Content/" + Package.substr(GameRoot.size()) + ".vasset";
}

std::string RenderHit(const FAssetHit& Hit)
{
	std::string Text = Hit.Kind.ToStdString() + " " + Hit.Name.ToStdString();
	if (!Hit.Container.IsEmpty())
		Text += " @" + Hit.Container.ToStdString();
	return Hit.Count > 1 ? Text + " x" + std::to_string(Hit.Count) : Text;
}

std::string RenderAssetName(const FAssetResult& Asset)
{
	const std::string Path = Asset.AssetPath.ToStdString();
	return Path.starts_with("/") ? Path.substr(Path.rfind('.') + 1) : Path;
}
}

FTestProject::FTestProject()
{
	File("Test.uproject", R"({"name": "Test"})");
}

FTestProject::~FTestProject() = default;

FTestTable& FTestProject::Table(const std::string& Package, const std::string& RowStruct)
{
	bOpen = false;
	return Tables.emplace_back(Package, RowStruct);
}

FTestMaterial& FTestProject::Material(const std::string& Package, const std::string& Class)
{
	bOpen = false;
	return Materials.emplace_back(Package, Class);
}

FTestMaterial& FTestProject::MaterialInstance(const std::string& Package, const std::string& ParentPackage)
{
	return Material(Package, "/Script/Engine.MaterialInstanceConstant").Parent(ParentPackage);
}

FTestNiagaraSystem& FTestProject::NiagaraSystem(const std::string& Package)
{
	bOpen = false;
	return NiagaraSystems.emplace_back(Package);
}

FTestProject& FTestProject::Asset(const std::string& Package, const std::string& Class, const std::string& Objects)
{
	return File(GetPackageFile(Package),
		R"({"varnel_package": 1, "assets": [{"name": ")" + GetShortName(Package) + R"(", "class": ")" + Class +
			R"("}], "dependencies": [], "blueprint_index": [], "objects": [)" + Objects + "]}");
}

FTestProject& FTestProject::File(const std::string& Path, const std::string& Bytes)
{
	bOpen = false;
	Folder.Write(Path, Bytes);
	return *this;
}

FTestProject& FTestProject::Settings(const std::string& Lines)
{
	bOpen = false;
	SettingsLines += Lines + "\n";
	return *this;
}

FTestProject& FTestProject::Header(const std::string& Package, const std::string& Class, const std::string& TagsJson)
{
	return File(GetPackageFile(Package),
		R"({"varnel_package": 1, "assets": [{"name": ")" + GetShortName(Package) + R"(", "class": ")" + Class + R"(", "tags": )" +
			TagsJson + R"(}], "dependencies": [], "blueprint_index": [], "objects": []})");
}

FTestProject& FTestProject::Links(
	const std::string& Package, const std::vector<std::string>& Assets, const std::vector<std::string>& Dependencies)
{
	std::string AssetsJson;
	for (const std::string& Asset : Assets)
	{
		std::istringstream Words(Asset);
		std::string Name, Class, Filtered;
		Words >> Name >> Class >> Filtered;
		AssetsJson += (AssetsJson.empty() ? "" : ", ") + (R"({"name": ")" + Name) + R"(", "class": "/Script/Engine.)" + Class +
			R"(", "registry_filtered": )" + (Filtered.empty() ? "false" : "true") + "}";
	}
	std::string DependenciesJson;
	for (const std::string& Dependency : Dependencies)
	{
		const auto Has = [&](const char* Word) { return Dependency.find(Word) != std::string::npos; };
		DependenciesJson += (DependenciesJson.empty() ? "" : ", ") +
			(R"({"package": ")" + Dependency.substr(0, Dependency.find(' '))) + R"(", "hard": )" +
			(Has(" soft") ? "false" : "true") + R"(, "game": )" + (Has(" editor") ? "false" : "true") + "}";
	}
	return File(GetPackageFile(Package),
		R"({"varnel_package": 1, "assets": [)" + AssetsJson + R"(], "dependencies": [)" + DependenciesJson +
			R"(], "blueprint_index": [], "objects": []})");
}

void FTestProject::WriteTable(const FTestTable& Table)
{
	const std::string Name = GetShortName(Table.Package);
	std::string Rows;
	for (int32 Row = 0; Row < Table.NumRows; ++Row)
		Rows += (Row ? ", " : "") + ("\"Row" + std::to_string(Row)) + "\": {}";
	const std::string RowStruct = Table.RowStruct.empty() ? "null" : "\"/Script/Test." + Table.RowStruct + "\"";
	Folder.Write(GetPackageFile(Table.Package),
		R"({"varnel_package": 1, "assets": [{"name": ")" + Name +
			R"(", "class": "/Script/Engine.DataTable"}], "dependencies": [], "blueprint_index": [], "objects": [{"path": ")" +
			Name + R"(", "class": "/Script/Engine.DataTable", "properties": {"RowStruct": )" + RowStruct + R"(, "Rows": {)" +
			Rows + "}}}]}");
}

void FTestProject::WriteScriptModule()
{
	std::string Structs;
	for (const FTestTable& Table : Tables)
	{
		if (Table.RowStruct.empty())
			continue;
		std::string Properties;
		for (const FTestTable::FColumn& Column : Table.Columns)
			Properties +=
				(Properties.empty() ? "" : ", ") + (R"({"name": ")" + Column.Name) + R"(", "type": ")" + Column.Type + "\"}";
		Structs += (Structs.empty() ? "" : ", ") + (R"({"name": ")" + Table.RowStruct) + R"(", "super": null, "properties": [)" +
			Properties + "]}";
	}
	Folder.Write("Script/Test.vscript", R"({"varnel_script": 1, "structs": [)" + Structs + "]}");
}

void FTestProject::Open()
{
	for (const FTestTable& Table : Tables)
		WriteTable(Table);
	for (const FTestMaterial& Described : Materials)
		Asset(Described.GetPackage(), Described.GetClass(), Described.GetObjects());
	for (const FTestNiagaraSystem& Described : NiagaraSystems)
		Asset(Described.GetPackage(), Described.GetClass(), Described.GetObjects());
	WriteScriptModule();
	Folder.Write("Config/DefaultGame.ini", "[/Script/Quellar.QuellarSettings]\n" + SettingsLines);

	FDiagnosticSink Diagnostics;
	FString Error;
	FProjectOptions Options;
	Options.Path = Folder.Path();
	Options.Cache = ERegistryCache::Ignore;
	ASSERT_TRUE(FProject::Open(Options, Diagnostics, Error)) << *Error;
	bOpen = true;
}

FAssetSearchResult FTestProject::Search(const FAssetSearchParams& Params)
{
	if (!bOpen)
		Open();
	FAssetSearchResult Found;
	int32 NumReports = 0;
	UAssetSearchService::Get().AssetSearch(Params,
		[&](const FAssetSearchResult& Result)
		{
			Found = Result;
			++NumReports;
		});
	FGameThread::Get().RunUntil([&] { return NumReports > 0; }, std::chrono::seconds(60));
	EXPECT_EQ(NumReports, 1) << "a search reports exactly once";
	return Found;
}

FAssetSearchResult FTestProject::Search(const std::string& Family, const std::string& Term)
{
	FAssetSearchParams Params;
	Params.Term = Term;
	Params.IncludeAssetFamilies = {Family};
	return Search(Params);
}

std::string Render(const FAssetSearchResult& Result)
{
	std::string Text;
	for (const FAssetResult& Asset : Result.Results)
	{
		Text += (Text.empty() ? "" : " | ") + RenderAssetName(Asset) + ":";
		for (int32 Index = 0; Index < Asset.Hits.Num(); ++Index)
			Text += (Index ? "; " : " ") + RenderHit(Asset.Hits[Index]);
		Text += Asset.bTruncated ? " (truncated)" : "";
	}
	return Text + (Result.bTruncated ? " (truncated)" : "");
}

std::string RenderAssets(const FAssetSearchResult& Result)
{
	std::string Text;
	for (const FAssetResult& Asset : Result.Results)
		Text += (Text.empty() ? "" : " ") + RenderAssetName(Asset);
	return Text + (Result.bTruncated ? " (truncated)" : "");
}
