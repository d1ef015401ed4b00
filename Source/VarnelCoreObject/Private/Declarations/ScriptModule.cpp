#include "CoreObject/Declarations/ScriptModule.h"

#include "Core/Base/Map.h"
#include "CoreObject/Objects/PackageName.h"
#include "Declarations/BlueprintClasses.h"
#include "Declarations/ScriptDeclarations.h"

namespace
{
constexpr const char* VersionKey = "varnel_script";

/** What script modules have added to the program: whole packages, and single objects in packages of the program's own. */
TArray<FObjectPtr>& GetAdded()
{
	static TArray<FObjectPtr> Added;
	return Added;
}

class FModulePackages
{
public:
	/** Null, and a fault, for a module whose name is none or was met before. */
	UPackage* Open(const FScriptModuleFile& Module, FDiagnosticSink* Diagnostics);
	bool IsNew(const UPackage* Package) const { return New.Contains(Package); }

private:
	TSet<FString> Modules;
	TArray<const UPackage*> New;
};

UPackage* FModulePackages::Open(const FScriptModuleFile& Module, FDiagnosticSink* Diagnostics)
{
	const auto Fail = [&Module, Diagnostics](const char* Rule, const FString& Text) -> UPackage*
	{
		if (Diagnostics)
			Diagnostics->Add({Module.FileName, 0, 0, EDiagnosticSeverity::Error, Text, Rule});
		return nullptr;
	};
	const FString PackageName = "/Script/" + Module.ModuleName;
	if (!FPackageName::IsValidLongPackageName(PackageName) || Module.ModuleName.Contains("/"))
		return Fail("bad-name", FJsonFaults::Quote(Module.ModuleName) + " is not a valid module name");
	if (!Modules.Add(Module.ModuleName))
		return Fail("repeated-module",
			"there is a module " + FJsonFaults::Quote(Module.ModuleName) + " already, so this file is left out");
	if (UPackage* const BuiltIn = FindPackage(PackageName))
		return BuiltIn;
	UPackage* const Package = FindPackage(PackageName, true);
	Package->MarkAsFullyLoaded();
	GetAdded().Add(FObjectPtr(Package));
	New.Add(Package);
	return Package;
}

bool Parse(FScriptFile& File, const std::string& Text, int64 MaxValues)
{
	if (!File.Document.Parse(Text, {.MaxDepth = Json::MaxPackageDepth, .MaxValues = MaxValues, .StopBefore = {}}))
	{
		File.Faults.ReportSyntax();
		return false;
	}
	File.Faults.ReportRepair();
	return File.Faults.IsObject(File.Document.Root()) &&
		File.Faults.HasVersion(File.Document.Root(), VersionKey, "script-version");
}
}

void DeclareScriptModules(const TArray<FScriptModuleFile>& Files, FDiagnosticSink* Diagnostics)
{
	FModulePackages Packages;
	std::vector<TUniquePtr<FScriptFile>> Opened;
	FScriptDeclarations Declarations;
	int64 ValuesLeft = Json::MaxDocumentValues; // all modules are in memory until the last is declared
	for (const FScriptModuleFile& Module : Files)
	{
		UPackage* const Package = Packages.Open(Module, Diagnostics);
		if (!Package)
			continue;
		Opened.push_back(MakeUnique<FScriptFile>(Module, *Package, Diagnostics));
		if (Parse(*Opened.back(), Module.Text, ValuesLeft))
			Declarations.Collect(*Opened.back());
		ValuesLeft -= Opened.back()->Document.NumValues();
	}
	Declarations.Make();
	for (UObject* const Object : Declarations.GetMade())
	{
		if (!Packages.IsNew(Object->GetPackage()))
			GetAdded().Add(FObjectPtr(Object));
	}
}

void RemoveScriptModules()
{
	TArray<UObject*> Objects;
	for (const FObjectPtr& Added : GetAdded())
		Objects.Add(Added.GetIfLoaded());
	GetAdded().Empty();
	DestroyObjects(Objects);
	BlueprintClasses::RemoveAllDeclared();
}
