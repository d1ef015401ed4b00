#include "EngineFixture.h"

#include "CoreObject/Declarations/ScriptModule.h"
#include "CoreObject/Packages/PackageSource.h"
#include "Engine/EngineClasses.h"

FEngineFixture::FEngineFixture()
{
	RegisterEngineClasses();
	SetLoadDiagnostics(Faults.get());
	SetPackageLocator(
		[this](FName Name) -> TOptional<FPackageFile>
		{
			const auto Found = Files.find(Name.ToString().ToStdString());
			if (Found == Files.end())
				return std::nullopt;
			const auto Read = [&Text = Found->second](std::string& Buffer, uint64, std::size_t)
			{
				Buffer = Text;
				return EFileRead::Ok;
			};
			return FPackageFile{FString(Found->first), &GetVassetPackageSource(), Read};
		});
}

FEngineFixture::~FEngineFixture()
{
	UnloadAllLoadedPackages();
	RemoveScriptModules();
	SetPackageLocator(nullptr);
	SetLoadDiagnostics(nullptr);
}

void FEngineFixture::Add(const std::string& PackageName, const std::string& Objects)
{
	Files[PackageName] = R"({"varnel_package":1,"assets":[],"objects":[)" + Objects + "]}";
}

void FEngineFixture::AddAsset(const std::string& PackageName, const std::string& Class, const std::string& Properties)
{
	const std::string Name = PackageName.substr(PackageName.rfind('/') + 1);
	Add(PackageName,
		R"({"path":")" + Name + R"(","class":"/Script/Engine.)" + Class + "\",\"properties\":{\n" + Properties + "}}");
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
