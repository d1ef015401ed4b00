#include "Project/ProjectCheck.h"

#include "Core/Files/File.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Objects/ReferenceListener.h"
#include "CoreObject/Packages/Loader.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"
#include "Project/RingCheck.h"
#include "Quellar/Families/TextSearch.h"

#include <algorithm>
#include <vector>

namespace
{
/** What loaded packages may take before all are unloaded again: little enough for memory, enough that packages which share types,
 * be it by the thousand, load them once. Bytes. */
constexpr int64 MaxLoadedBytes = 128 * 1024 * 1024;

/** Keeps memory bounded while packages are loaded one after another, none of which is in memory in the beginning. */
class FRounds
{
public:
	FRounds() { UnloadAllLoadedPackages(); }
	~FRounds() { UnloadAllLoadedPackages(); }
	void BeginPackage()
	{
		if (GetObjectMemory() > MaxLoadedBytes)
			UnloadAllLoadedPackages();
	}
};

/** Looks where references between packages lead: by the registry where it can tell, by loading the others in the end. */
class FReferenceCheck
{
public:
	explicit FReferenceCheck(FDiagnosticSink& InDiagnostics) : Diagnostics(InDiagnostics) {}

	void Add(const FForeignReference& Reference)
	{
		const FAssetData Asset = GetProjectRegistry().GetAssetByObjectPath(Reference.Target, false, false);
		if (!Asset.IsValid() || Reference.bIsClassReference)
			Unsettled.push_back(Reference);
		else if (Reference.Class.IsValid() && !DerivesFrom(Asset.AssetClassPath, Reference.Class))
			ReportWrongClass(Reference, Asset.AssetClassPath.ToString());
	}

	void Settle(const std::stop_token& Stop)
	{
		std::stable_sort(Unsettled.begin(), Unsettled.end(),
			[](const FForeignReference& A, const FForeignReference& B)
			{ return A.Target.Asset.PackageName.LexicalLess(B.Target.Asset.PackageName); });
		FRounds Rounds;
		FName Package;
		for (const FForeignReference& Reference : Unsettled)
		{
			if (Stop.stop_requested())
				return;
			if (Reference.Target.Asset.PackageName != std::exchange(Package, Reference.Target.Asset.PackageName))
				Rounds.BeginPackage();
			CheckLoaded(Reference);
		}
	}

private:
	static bool DerivesFrom(const FTopLevelAssetPath& Class, const FTopLevelAssetPath& Ancestor)
	{
		TArray<FTopLevelAssetPath> Ancestors = {Class};
		GetProjectRegistry().GetAncestorClasses(Class, Ancestors);
		return Ancestors.Contains(Ancestor);
	}

	static bool IsClassBelow(const UObject& Object, const UClass* Ancestor)
	{
		const UClass* Class = Cast<UClass>(&Object);
		return Class && (!Ancestor || Class->IsChildOf(Ancestor));
	}

	void CheckLoaded(const FForeignReference& Reference)
	{
		const UObject* Object = StaticLoadObject(nullptr, nullptr, Reference.Target.ToString());
		const UClass* Class = FindClass(Reference.Class.ToString());
		if (!Object)
			Report(Reference, "there is no object " + Reference.Target.ToString());
		else if (!Reference.bIsClassReference && Class && !Object->IsA(Class))
			ReportWrongClass(Reference, Object->GetClass()->GetPathName());
		else if (Reference.bIsClassReference && !IsClassBelow(*Object, Class))
			Report(Reference, Reference.Target.ToString() + " is not a class that derives from " + Reference.Class.ToString());
	}

	void ReportWrongClass(const FForeignReference& Reference, const FString& ActualClass)
	{
		Report(Reference,
			Reference.Target.ToString() + " is of class " + ActualClass + ", not of " + Reference.Class.ToString() +
				" or a class derived from it");
	}

	void Report(const FForeignReference& Reference, FString Text)
	{
		FDiagnostic Diagnostic = Reference.At;
		Diagnostic.Text = std::move(Text);
		Diagnostic.Rule = "bad-reference";
		Diagnostics.Add(std::move(Diagnostic));
	}

	FDiagnosticSink& Diagnostics;
	std::vector<FForeignReference> Unsettled;
};

void CheckObjects(const UPackage& Package, FDiagnosticSink& Diagnostics)
{
	const auto Report = [&](EDiagnosticSeverity Severity, const char* Rule, FString Text) {
		Diagnostics.Add({FProject::GetPackageFileName(Package.GetFName()), 0, 0, Severity, std::move(Text), Rule});
	};
	TArray<UObject*> Objects;
	GetObjectsWithOuter(&Package, Objects, true);
	for (const UObject* Object : Objects)
		Object->CheckData(Report);
}

bool IsNative(FName Package)
{
	return Package.ToString().StartsWith("/Script/");
}

/** What a package's header says of it, where it does not fit the files or its own objects. */
class FHeaderCheck
{
public:
	FHeaderCheck(FName InName, FDiagnosticSink& InDiagnostics) : Name(InName), Diagnostics(InDiagnostics) {}

	void Run(const UPackage& Package) const
	{
		CheckDependencies();
		TArray<FAssetData> Assets;
		GetProjectRegistry().GetAssetsByPackageName(Name, Assets, false, false);
		CheckNames(Assets);
		TArray<UObject*> Objects;
		GetObjectsWithOuter(&Package, Objects, false);
		if (!Objects.IsEmpty())
			CheckObjects(Assets);
	}

private:
	void CheckDependencies() const
	{
		TArray<FPackageDependency> Dependencies;
		GetProjectRegistry().GetDependencies(Name, Dependencies);
		for (const FPackageDependency& Dependency : Dependencies)
		{
			const IPackageSource* Source = nullptr;
			if (!IsNative(Dependency.PackageName) &&
				GetProjectRegistry().GetPackageFileName(Dependency.PackageName, Source).IsEmpty())
				Warn("missing-dependency", "it depends on " + Dependency.PackageName.ToString() + ", which does not exist");
		}
	}

	void CheckNames(const TArray<FAssetData>& Assets) const
	{
		const FString ShortName(FPackageName::GetShortName(Name.ToString()));
		if (!Assets.IsEmpty() &&
			!Assets.ContainsByPredicate([&](const FAssetData& Asset) { return Asset.AssetName.ToString() == ShortName; }))
			Warn("misnamed-file", "none of its assets is named like the file; the first is " + Assets[0].AssetName.ToString());
	}

	void CheckObjects(const TArray<FAssetData>& Assets) const
	{
		for (const FAssetData& Asset : Assets)
		{
			if (!StaticFindObject(nullptr, Asset.GetObjectPathString()))
				Warn("no-object",
					"the header lists the asset " + Asset.AssetName.ToString() + ", and there is no object of that name");
		}
	}

	void Warn(const char* Rule, FString Text) const
	{
		Diagnostics.Add({.File = FProject::GetPackageFileName(Name),
			.Severity = EDiagnosticSeverity::Warning,
			.Text = std::move(Text),
			.Rule = Rule});
	}

	const FName Name;
	FDiagnosticSink& Diagnostics;
};

void LoadEveryPackage(FRingCheck& Rings, FDiagnosticSink& Diagnostics, const std::stop_token& Stop)
{
	const TArray<FName> Packages = GetProjectRegistry().ListPackages();
	const FPackagePrefetch Prefetch(
		[&Packages, Place = 0]() mutable { return Place < Packages.Num() ? Packages[Place++] : FName(); });
	FRounds Rounds;
	for (const FName Name : Packages)
	{
		if (Stop.stop_requested())
			return;
		Rounds.BeginPackage();
		const UPackage* const Package = LoadPackage(Name);
		if (!Package)
			continue;
		CheckObjects(*Package, Diagnostics);
		FHeaderCheck(Name, Diagnostics).Run(*Package);
		Rings.Add(*Package);
	}
}
}

void CheckTextFiles(FDiagnosticSink& Diagnostics, std::stop_token Stop)
{
	FFileTreeOptions Options;
	Options.KeepFile = IsSearchableTextFile;
	Options.Stop = Stop;
	const FFileTree Files = FFileTree::List(FPaths::ProjectDir(), Options);
	const auto Report = [&](std::string_view File, const char* Rule, FString Text)
	{
		Diagnostics.Add({.File = FString::FromExternal(File),
			.Severity = EDiagnosticSeverity::Warning,
			.Text = std::move(Text),
			.Rule = Rule});
	};
	for (const std::string& Folder : Files.GetUnreadableFolders())
		Report(Folder, "unreadable-folder", "the folder cannot be read, so its text files are not searched");
	FFileTreeReader Reader(Files);
	std::string Byte;
	for (int32 Index = 0; Index < Files.Num() && !Stop.stop_requested(); ++Index)
	{
		const EFileRead Outcome =
			Reader.ReadInPieces(Index, Byte, FFileHelper::MaxTextFileBytes, 1, [](std::string_view) { return false; });
		if (Outcome == EFileRead::TooLarge)
			Report(Files.GetRelativePath(Index), "text-too-large",
				FString::Printf("text files of more than %d MiB are not searched",
					static_cast<int>(FFileHelper::MaxTextFileBytes / (1024 * 1024))));
		else if (Outcome == EFileRead::Unreadable)
			Report(Files.GetRelativePath(Index), "unreadable-file", "the file cannot be read, so it is not searched");
	}
}

void CheckExtensions(FDiagnosticSink& Diagnostics, std::stop_token Stop)
{
	constexpr std::string_view Extension = ".vasset";
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
	{
		FFileTreeOptions Options;
		Options.Stop = Stop;
		Options.KeepFile = [Extension](std::string_view Path)
		{
			const std::string_view End = Path.substr(Path.size() - std::min(Path.size(), Extension.size()));
			return End != Extension && Unicode::EqualsFolded(End, Extension);
		};
		const FFileTree Files = FFileTree::List(Mount.Folder, Options);
		for (int32 Index = 0; Index < Files.Num(); ++Index)
			Diagnostics.Add({.File = MakeRelativeToProject(Mount.Folder + FString::FromExternal(Files.GetRelativePath(Index))),
				.Severity = EDiagnosticSeverity::Warning,
				.Text = "it is not read: the extension of packages is .vasset, in lower case",
				.Rule = "extension"});
	}
}

void CheckPackages(FDiagnosticSink& Diagnostics, std::stop_token Stop)
{
	FReferenceCheck References(Diagnostics);
	SetLoadDiagnostics(&Diagnostics);
	SetReferenceListener([&References](const FForeignReference& Reference) { References.Add(Reference); });
	FRingCheck Rings;
	LoadEveryPackage(Rings, Diagnostics, Stop);
	SetReferenceListener(nullptr);
	SetLoadDiagnostics(nullptr);
	References.Settle(Stop);
	Rings.Report(Diagnostics);
}
