#include "EngineFixture.h"

#include "CoreObject/Declarations/ScriptModule.h"
#include "Engine/EngineClasses.h"
#include "Support/PackageText.h"

FEngineFixture::FEngineFixture()
{
	RegisterEngineClasses();
}

FEngineFixture::~FEngineFixture()
{
	UnloadAllLoadedPackages();
	RemoveScriptModules();
}

void FEngineFixture::AddAsset(const std::string& PackageName, const std::string& Class, const std::string& Properties)
{
	Add(PackageName, MakeObjectJson(GetShortName(PackageName), Class, "\n" + Properties));
}

void FEngineFixture::Declare(const std::string& Json)
{
	TArray<FScriptModuleFile> Modules;
	Modules.Add({"Lantern", "Script/Lantern.vscript", R"({"varnel_script":1,)" + Json + "}"});
	DeclareScriptModules(Modules, Faults.get());
}

std::string FEngineFixture::TakeFaults()
{
	std::string Out;
	for (const FDiagnostic& Fault : Faults->GetSorted())
		Out += Fault.ToString().ToStdString() + "\n";
	Faults = MakeUnique<FDiagnosticSink>();
	SetLoadDiagnostics(Faults.get());
	return Out;
}
