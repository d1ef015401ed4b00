#include "Core/Json/Json.h"
#include "CoreObject/Reflection/Class.h"
#include "Project/HeadlessEngine.h"
#include "Project/Project.h"
#include "Support/ScratchFolder.h"

TEST(ProjectLimits, NameFilesThatAreTooLarge)
{
	FHeadlessEngine Engine;
	FScratchFolder Folder;
	const std::string Blank(1 << 20, ' ');
	const std::string Module = R"({"varnel_script": 1, "structs": [{"name": "S"}]})";
	Folder.Write("Large.uproject", R"({"name": "Large"})" + Blank);
	Folder.Write("Plugins/Lamp/Lamp.uplugin", "{}" + Blank);
	Folder.Write("Config/DefaultGame.ini", "[/Script/Quellar.QuellarSettings]\n" + Blank);
	Folder.Write("Script/A.vscript", Module);
	Folder.Write("Script/B.vscript", Module + std::string(64 << 20, ' '));
	Folder.Write("Script/C.vscript", Module);
	std::string Values = "0";
	for (int64 Left = Json::MaxDocumentValues; Left > 0; --Left)
		Values += ",0";
	Folder.Write("Script/D.vscript", R"({"varnel_script": 1, "structs": [)" + Values + "]}");
	Folder.Write("Script/E.vscript", Module);

	FDiagnosticSink Diagnostics;
	FString Error;
	FProjectOptions Options;
	Options.Path = Folder.Path();
	Options.Cache = ERegistryCache::Ignore;
	ASSERT_TRUE(FProject::Open(Options, Diagnostics, Error)) << *Error;
	std::string Told;
	for (const FDiagnostic& Fault : Diagnostics.GetSorted())
		Told += Fault.File.ToStdString() + " " + Fault.Rule.ToStdString() + "\n";
	EXPECT_EQ(Told,
		"Config/DefaultGame.ini too-large\nLarge.uproject too-large\nPlugins/Lamp/Lamp.uplugin too-large\n"
		"Script/B.vscript too-large\nScript/D.vscript too-many-values\n");
	for (const char* Path : {"/Script/A.S", "/Script/C.S", "/Script/E.S"})
		EXPECT_TRUE(StaticFindObject(UScriptStruct::StaticClass(), Path)) << Path;
	FProject::Close();
}
