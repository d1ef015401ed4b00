#include "CoreObject/Loader.h"

#include "LoadedPackages.h"
#include "ParseAhead.h"

#include <vector>

namespace
{
/** Packages that wait for one another's classes while they load. Each takes some stack. */
constexpr std::size_t MaxNestedLoads = 64;

/** A package whose file is being read. */
struct FRunningLoad
{
	FName PackageName;
	FString FileName;
	std::vector<FName> References; // packages that it refers to, so far
};

class FLoader
{
public:
	static FLoader& Get();
	void SetLocator(FPackageLocator InLocator);
	void SetDiagnostics(FDiagnosticSink* InDiagnostics) { Diagnostics = InDiagnostics; }
	UPackage* Load(FName PackageName);
	UObject* FindOrLoad(const FSoftObjectPath& Path);
	void UnloadAll();
	void NoteReference(FName PackageName);
	/** While no package is being loaded. */
	int32 Evict();
	FLoadedPackages& GetLoaded() { return Loaded; }
	TUniquePtr<FParseAhead> MakeAhead(std::function<FName()> Next);
	/** Gives what was in use before. */
	FParseAhead* UseAhead(FParseAhead* InAhead) { return std::exchange(Ahead, InAhead); }

private:
	UPackage* LoadFromFile(FName PackageName);
	bool Build(FName PackageName, FPackageText& Text, UPackage& Package, std::vector<FName>& OutReferences);
	TUniquePtr<FPackageText> GetParsed(FName PackageName);
	bool IsRunning(FName PackageName) const;
	void Report(EDiagnosticSeverity Severity, const FString& FileName, const char* Rule, FString Text);
	FString WhereNeeded(FName PackageName) const;

	FPackageLocator Locator;
	FDiagnosticSink* Diagnostics = nullptr;
	std::vector<FRunningLoad> Running; // outermost first
	FLoadedPackages Loaded;
	FParseAhead* Ahead = nullptr;
	TSet<FName> Failed;
};

FLoader& FLoader::Get()
{
	static FLoader Loader;
	return Loader;
}

void FLoader::SetLocator(FPackageLocator InLocator)
{
	Locator = std::move(InLocator);
	Failed.Empty();
}

UPackage* FLoader::Load(FName PackageName)
{
	NoteReference(PackageName); // whoever loads it while being read needs it
	UPackage* const InMemory = FindPackage(PackageName);
	if (InMemory && (InMemory->IsFullyLoaded() || IsRunning(PackageName)))
		return InMemory;
	if (PackageName.IsNone() || Failed.Contains(PackageName))
		return InMemory;
	if (Running.size() >= MaxNestedLoads)
	{
		Report(EDiagnosticSeverity::Error, Running.back().FileName, "load-depth",
			"package " + PackageName.ToString() +
				" is not loaded: too many packages need the next one's classes while they load");
		return nullptr;
	}
	return LoadFromFile(PackageName);
}

/** The package as it is in memory where it has no file. */
UPackage* FLoader::LoadFromFile(FName PackageName)
{
	TUniquePtr<FPackageText> Text = GetParsed(PackageName);
	if (!Text)
	{
		Failed.Add(PackageName);
		UPackage* const InMemory = FindPackage(PackageName);
		if (!InMemory)
			Report(EDiagnosticSeverity::Warning, WhereNeeded(PackageName), "no-such-package",
				"there is no package " + PackageName.ToString());
		return InMemory;
	}
	const FPackageFile& File = Text->GetFile();
	UPackage* const Package = FindPackage(File.PackageName.IsNone() ? PackageName : File.PackageName, true);
	std::vector<FName> References;
	const bool bRead = Build(PackageName, *Text, *Package, References);
	if (bRead)
	{
		Package->MarkAsFullyLoaded();
		Loaded.Add(*Package, Text->NumBytes(), std::move(References));
	}
	else
	{
		Failed.Add(PackageName);
		UnloadPackage(Package);
	}
	if (Ahead)
		Ahead->Recycle(std::move(Text));
	return bRead ? Package : nullptr;
}

bool FLoader::Build(FName PackageName, FPackageText& Text, UPackage& Package, std::vector<FName>& OutReferences)
{
	Running.push_back({PackageName, Text.GetFile().FileName, {}});
	try
	{
		const bool bRead = Text.BuildObjects(Package, Diagnostics);
		OutReferences = std::move(Running.back().References);
		Running.pop_back();
		return bRead;
	}
	catch (...) // out of memory: the package is as if nobody had asked for it
	{
		Running.pop_back();
		UnloadPackage(&Package);
		throw;
	}
}

/** The package's file, parsed; null when it has none. */
TUniquePtr<FPackageText> FLoader::GetParsed(FName PackageName)
{
	if (TUniquePtr<FPackageText> Text = Ahead ? Ahead->Take(PackageName) : nullptr)
		return Text;
	TOptional<FPackageFile> File = Locator ? Locator(PackageName) : TOptional<FPackageFile>();
	if (!File)
		return nullptr;
	auto Text = MakeUnique<FPackageText>(std::move(*File));
	Text->Parse();
	return Text;
}

TUniquePtr<FParseAhead> FLoader::MakeAhead(std::function<FName()> Next)
{
	const auto IsSettled = [this](FName Name)
	{
		const UPackage* const Package = FindPackage(Name);
		return (Package && Package->IsFullyLoaded()) || Failed.Contains(Name);
	};
	const auto NextFile = [this, IsSettled, Next = std::move(Next)]
	{
		TOptional<FPackageFile> File;
		FName Name;
		while (!File && !(Name = Next()).IsNone())
		{
			if (!IsSettled(Name) && Locator)
				File = Locator(Name);
		}
		if (File && File->PackageName.IsNone())
			File->PackageName = Name;
		return File;
	};
	return MakeUnique<FParseAhead>(NextFile, IsSettled);
}

UObject* FLoader::FindOrLoad(const FSoftObjectPath& Path)
{
	UPackage* const Package = Load(Path.Asset.PackageName);
	if (!Package || Path.Asset.AssetName.IsNone())
		return Package;
	const FString Inside =
		Path.SubPath.IsEmpty() ? Path.Asset.AssetName.ToString() : Path.Asset.AssetName.ToString() + ":" + Path.SubPath;
	UObject* const Object = Package->FindInside(Inside);
	if (!Object && Diagnostics)
		Report(EDiagnosticSeverity::Warning, WhereNeeded(Path.Asset.PackageName), "no-such-object",
			"there is no object " + Path.ToString());
	return Object;
}

void FLoader::UnloadAll()
{
	checkf(Running.empty(), "packages are unloaded while one of them is being loaded");
	Failed.Empty();
	Loaded.UnloadAll();
}

int32 FLoader::Evict()
{
	checkf(Running.empty(), "packages are unloaded while one of them is being loaded");
	return Loaded.Evict();
}

void FLoader::NoteReference(FName PackageName)
{
	if (Running.empty())
		return;
	FRunningLoad& Load = Running.back();
	const bool bIsNew = Load.References.empty() || !(Load.References.back() == PackageName);
	if (bIsNew && !(Load.PackageName == PackageName))
		Load.References.push_back(PackageName);
}

bool FLoader::IsRunning(FName PackageName) const
{
	return std::any_of(
		Running.begin(), Running.end(), [PackageName](const FRunningLoad& Load) { return Load.PackageName == PackageName; });
}

void FLoader::Report(EDiagnosticSeverity Severity, const FString& FileName, const char* Rule, FString Text)
{
	if (Diagnostics)
		Diagnostics->Add({FileName, 0, 0, Severity, std::move(Text), Rule});
}

/** The file that asks for a package; the package's own name where nobody knows. */
FString FLoader::WhereNeeded(FName PackageName) const
{
	return Running.empty() ? PackageName.ToString() : Running.back().FileName;
}

/** A path that is not full is one inside Outer. */
FSoftObjectPath MakeFullPath(const UObject* Outer, FStringView ObjectPath)
{
	FSoftObjectPath Full(ObjectPath);
	if (!Full.IsNull() || !Outer || ObjectPath.empty())
		return Full;
	const FString Base = Outer->GetPathName();
	const bool bOuterIsAsset = Outer->GetOuter() && !Outer->GetOuter()->GetOuter();
	return FSoftObjectPath(Base + (bOuterIsAsset ? ":" : ".") + ObjectPath);
}
}

void SetPackageLocator(FPackageLocator Locator)
{
	FLoader::Get().SetLocator(std::move(Locator));
}

void SetLoadDiagnostics(FDiagnosticSink* Sink)
{
	FLoader::Get().SetDiagnostics(Sink);
}

UPackage* LoadPackage(FName PackageName, uint32)
{
	return FLoader::Get().Load(PackageName);
}

UObject* StaticLoadObject(UClass* Class, UObject* Outer, FStringView ObjectPath, uint32)
{
	UObject* const Object = FLoader::Get().FindOrLoad(MakeFullPath(Outer, ObjectPath));
	return Object && (!Class || Object->IsA(Class)) ? Object : nullptr;
}

void UnloadAllLoadedPackages()
{
	FLoader::Get().UnloadAll();
}

FPackagePrefetch::FPackagePrefetch(std::function<FName()> Next)
	: Ahead(FLoader::Get().MakeAhead(std::move(Next)))
	, Outer(FLoader::Get().UseAhead(Ahead.get()))
{
}

FPackagePrefetch::~FPackagePrefetch()
{
	FLoader::Get().UseAhead(Outer);
}

void SetObjectMemoryLimit(int64 MaxBytes)
{
	FLoader::Get().GetLoaded().SetMaxBytes(MaxBytes);
}

int64 GetObjectMemory()
{
	return FLoader::Get().GetLoaded().GetNumBytes();
}

int32 EvictLoadedPackages()
{
	return FLoader::Get().Evict();
}

void PinPackage(FName PackageName)
{
	FLoader::Get().GetLoaded().Pin(PackageName);
}

void UnpinPackage(FName PackageName)
{
	FLoader::Get().GetLoaded().Unpin(PackageName);
}

void NoteReferenceToPackage(FName PackageName)
{
	FLoader::Get().NoteReference(PackageName);
}
