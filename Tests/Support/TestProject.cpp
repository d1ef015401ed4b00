#include "Support/TestProject.h"

#include "Core/Threads/Tasks.h"
#include "Project/Project.h"
#include "Project/ProjectCheck.h"

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

std::string GetClassPath(const std::string& Class)
{
	return Class.starts_with("/") ? Class : "/Script/Engine." + Class;
}

std::string ReplaceAll(std::string Text, const std::string& From, const std::string& To)
{
	for (std::size_t At = Text.find(From); At != std::string::npos; At = Text.find(From, At + To.size()))
		Text.replace(At, From.size(), To);
	return Text;
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

FTestAsset::FTestAsset(std::string InPackage, std::string InClass)
	: Package(std::move(InPackage))
	, Name(GetShortName(Package))
	, Class(GetClassPath(InClass))
{
}

FTestAsset& FTestAsset::Tags(const std::string& Members)
{
	TagMembers = Members;
	return *this;
}

FTestAsset& FTestAsset::Set(const std::string& Property, const std::string& Value)
{
	Properties += (Properties.empty() ? "\"" : ", \"") + Property + "\": " + Value;
	return *this;
}

FTestAsset& FTestAsset::Inner(const std::string& Path, const std::string& InnerClass, const std::string& InnerProperties)
{
	InnerObjects += R"(, {"path": "^)" + Path + R"(", "class": ")" + GetClassPath(InnerClass) + R"(", "properties": {)" +
		InnerProperties + "}}";
	return *this;
}

std::string FTestAsset::ToJson() const
{
	const std::string Objects =
		R"({"path": ")" + Name + R"(", "class": ")" + Class + R"(", "properties": {)" + Properties + "}}" + InnerObjects;
	return R"({"varnel_package": 1, "assets": [{"name": ")" + Name + R"(", "class": ")" + Class + R"(", "tags": {)" + TagMembers +
		R"(}}], "dependencies": [], "blueprint_index": [], "objects": [)" + ReplaceAll(Objects, "\"^", "\"" + Name + ":") + "]}";
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

FTestProject& FTestProject::Objects(const std::string& Package, const std::string& Class, const std::string& Elements)
{
	return File(GetPackageFile(Package),
		R"({"varnel_package": 1, "assets": [{"name": ")" + GetShortName(Package) + R"(", "class": ")" + Class +
			R"("}], "dependencies": [], "blueprint_index": [], "objects": [)" + Elements + "]}");
}

FTestAsset& FTestProject::Asset(const std::string& Package, const std::string& Class)
{
	bOpen = false;
	return Assets.emplace_back(Package, Class);
}

FTestProject& FTestProject::Script(const std::string& Module, const std::string& Declarations)
{
	return File("Script/" + Module + ".vscript", R"({"varnel_script": 1, )" + Declarations + "}");
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
	const std::string& Package, const std::vector<std::string>& AssetLines, const std::vector<std::string>& Dependencies)
{
	std::string AssetsJson;
	for (const std::string& Asset : AssetLines)
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
		Objects(Described.GetPackage(), Described.GetClass(), Described.GetObjects());
	for (const FTestNiagaraSystem& Described : NiagaraSystems)
		Objects(Described.GetPackage(), Described.GetClass(), Described.GetObjects());
	for (const FTestAsset& Described : Assets)
		Folder.Write(GetPackageFile(Described.Package), Described.ToJson());
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
	return Search(MakeParams(Family, Term));
}

std::string FTestProject::Check()
{
	if (!bOpen)
		Open();
	FDiagnosticSink Sink;
	CheckPackages(Sink, {});
	std::string Text;
	for (const FDiagnostic& Fault : Sink.GetSorted())
		Text += (Text.empty() ? "" : "\n") + GetShortName(Fault.File.ToStdString()) +
			(Fault.Severity == EDiagnosticSeverity::Error ? " error " : " warning ") + Fault.Rule.ToStdString();
	return Text;
}

FAssetSearchParams MakeParams(const std::string& Family, const std::string& Term)
{
	FAssetSearchParams Params;
	Params.Term = Term;
	Params.IncludeAssetFamilies = {Family};
	return Params;
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

void ExpectFound(FTestProject& Project, const std::string& Family, std::initializer_list<TCase<const char*, std::string>> Cases)
{
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Render(Project.Search(Family, Case.Given)), Case.Expected);
}

std::string RenderAssets(const FAssetSearchResult& Result)
{
	std::string Text;
	for (const FAssetResult& Asset : Result.Results)
		Text += (Text.empty() ? "" : " ") + RenderAssetName(Asset);
	return Text + (Result.bTruncated ? " (truncated)" : "");
}

std::string Join(const TArray<FString>& Texts, const char* Separator)
{
	std::string Joined;
	for (const FString& Text : Texts)
		Joined += (Joined.empty() ? "" : Separator) + Text.ToStdString();
	return Joined;
}
