#include "CoreObject/Packages/Loader.h"

#include "Core/Base/Map.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/StoredObjects.h"
#include "Objects/ObjectLoading.h"
#include "Packages/LoadedPackages.h"
#include "Packages/ParseAhead.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace
{
/** Packages that load others while they are being filled. Each takes some stack; beyond, filling waits until there is room. */
constexpr int32 MaxNestedFills = 16;

/** A package on its way into memory. */
struct FRunningLoad
{
	FRunningLoad(FName InName, UPackage& InPackage, TUniquePtr<FPackageText> InText)
		: PackageName(InName)
		, Package(InPackage)
		, Text(std::move(InText))
	{
	}

	FName PackageName; // as it was asked for
	UPackage& Package;
	TUniquePtr<FPackageText> Text;
	TUniquePtr<IPackageBody> Body;
	std::vector<UStruct*> Types;   // declared by the body
	std::vector<FName> References; // packages that it refers to, so far
};
using FRunningLoads = std::deque<TUniquePtr<FRunningLoad>>;

/**
 * Loads packages in steps. What a package's types need is opened and declared with it, package after package, so that neither the
 * depth of such chains nor the package that one begins with matters; then all of these types are linked and completed at once;
 * then each package is filled, which may load others in the same way.
 */
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
	/** While no package is being loaded. */
	int32 Drop(const std::function<bool(FName PackageName)>& HasChanged);
	/** While no package is being loaded. */
	void UnloadSince(std::size_t NumBefore);
	bool VisitStored(FName PackageName, FDiagnosticSink* Sink, const FStoredObjectVisit& Visit);
	FLoadedPackages& GetLoaded() { return Loaded; }
	TUniquePtr<FParseAhead> MakeAhead(std::function<FName()> Next);
	/** Gives what was in use before. */
	FParseAhead* UseAhead(FParseAhead* InAhead) { return std::exchange(Ahead, InAhead); }

private:
	UPackage* LoadFromFile(FName PackageName);
	UPackage* Build(FName PackageName, TUniquePtr<FPackageText> Text);
	void Abandon();
	UPackage* Open(FName PackageName, TUniquePtr<FPackageText> Text);
	void DeclareOpened();
	void CompleteDeclared();
	void FillCompleted();
	void Finish(TUniquePtr<FRunningLoad> Load);
	TUniquePtr<FPackageText> GetParsed(FName PackageName);
	void Report(EDiagnosticSeverity Severity, const FString& FileName, const char* Rule, FString Text);
	FString WhereNeeded(FName PackageName) const;

	FPackageLocator Locator;
	FDiagnosticSink* Diagnostics = nullptr;
	THashSet<FName, FKeyHash> Running;
	FRunningLoads Opened;			 // to be declared
	FRunningLoads Declared;			 // to be completed
	FRunningLoads Completed;		 // to be filled
	FRunningLoad* Current = nullptr; // whose file is being read
	bool bDeclaring = false;
	int32 NumCompleting = 0; // levels of CompleteDeclared
	int32 NumFilling = 0;	 // levels of FillCompleted
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
	NoteReference(PackageName); // a package that loads it while being read needs it
	UPackage* const InMemory = FindPackage(PackageName);
	const bool bIsThere = InMemory && (InMemory->IsFullyLoaded() || Running.contains(PackageName));
	return bIsThere || PackageName.IsNone() || Failed.Contains(PackageName) ? InMemory : LoadFromFile(PackageName);
}

/** The package as it is in memory where it has no file; while others are being declared, as it is once opened. */
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
	if (!Running.empty())
		return Build(PackageName, std::move(Text));
	try
	{
		return Build(PackageName, std::move(Text));
	}
	catch (...) // out of memory: as if the load had never been asked for
	{
		Abandon();
		throw;
	}
}

UPackage* FLoader::Build(FName PackageName, TUniquePtr<FPackageText> Text)
{
	FRunningLoad* const Asking = Current;
	UPackage* const Package = Open(PackageName, std::move(Text));
	if (!bDeclaring)
	{
		DeclareOpened();
		CompleteDeclared();
		FillCompleted();
	}
	Current = Asking;
	return Package;
}

void FLoader::Abandon()
{
	for (FRunningLoads* const Loads : {&Opened, &Declared, &Completed})
		Loads->clear();
	Current = nullptr;
	bDeclaring = false;
	NumCompleting = 0;
	NumFilling = 0;
	for (const FName Name : std::exchange(Running, {}))
	{
		if (UPackage* const Package = FindPackage(Name))
			UnloadPackage(Package);
	}
}

/** Null, and nothing is left, where the file is faulty. */
UPackage* FLoader::Open(FName PackageName, TUniquePtr<FPackageText> Text)
{
	const FPackageFile& File = Text->GetFile();
	UPackage* const Package = FindPackage(File.PackageName.IsNone() ? PackageName : File.PackageName, true);
	auto Load = MakeUnique<FRunningLoad>(PackageName, *Package, std::move(Text));
	Running.insert(PackageName);
	Current = Load.get();
	Load->Body = Load->Text->OpenBody(*Package, Diagnostics);
	if (Load->Body)
	{
		Opened.push_back(std::move(Load));
		return Package;
	}
	Running.erase(PackageName);
	Failed.Add(PackageName);
	UnloadPackage(Package);
	if (Ahead)
		Ahead->Recycle(std::move(Load->Text));
	return nullptr;
}

/** Also what is opened meanwhile. */
void FLoader::DeclareOpened()
{
	bDeclaring = true;
	while (!Opened.empty())
	{
		Declared.push_back(std::move(Opened.front()));
		Opened.pop_front();
		Current = Declared.back().get();
		Current->Body->DeclareTypes(Current->Types);
	}
	bDeclaring = false;
}

void FLoader::CompleteDeclared()
{
	FRunningLoads Group = std::exchange(Declared, {});
	std::vector<UStruct*> Types;
	std::unordered_map<const UStruct*, FRunningLoad*> Owners;
	for (const TUniquePtr<FRunningLoad>& Load : Group)
	{
		for (UStruct* const Type : Load->Types)
			Owners.emplace(Type, Load.get());
		Types.insert(Types.end(), Load->Types.begin(), Load->Types.end());
	}
	++NumCompleting;
	for (UStruct* const Type : LinkTypes(Types))
	{
		const auto Owner = Owners.find(Type);
		if (Owner == Owners.end())
			continue;
		Current = Owner->second;
		Current->Body->CompleteType(*Type);
	}
	--NumCompleting;
	std::move(Group.begin(), Group.end(), std::back_inserter(Completed));
}

/** What is left for lack of room is filled by the caller that is filling already. */
void FLoader::FillCompleted()
{
	if (NumCompleting > 0 || NumFilling >= MaxNestedFills)
		return;
	++NumFilling;
	while (!Completed.empty())
	{
		TUniquePtr<FRunningLoad> Load = std::move(Completed.front());
		Completed.pop_front();
		Current = Load.get();
		Load->Body->FillObjects();
		Finish(std::move(Load));
	}
	--NumFilling;
}

void FLoader::Finish(TUniquePtr<FRunningLoad> Load)
{
	Load->Body = nullptr; // it looks into the text
	Load->Package.MarkAsFullyLoaded();
	Loaded.Add(Load->Package, Load->Text->NumBytes(), std::move(Load->References));
	Running.erase(Load->PackageName);
	if (Ahead)
		Ahead->Recycle(std::move(Load->Text));
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

int32 FLoader::Drop(const std::function<bool(FName PackageName)>& HasChanged)
{
	checkf(Running.empty(), "packages are unloaded while one of them is being loaded");
	Failed.Empty();
	return Loaded.Drop(HasChanged);
}

void FLoader::UnloadSince(std::size_t NumBefore)
{
	checkf(Running.empty(), "packages are unloaded while one of them is being loaded");
	Loaded.UnloadSince(NumBefore);
}

bool FLoader::VisitStored(FName PackageName, FDiagnosticSink* Sink, const FStoredObjectVisit& Visit)
{
	TOptional<FPackageFile> File = Locator ? Locator(PackageName) : TOptional<FPackageFile>();
	if (!File)
	{
		if (Sink)
			Sink->Add({PackageName.ToString(), 0, 0, EDiagnosticSeverity::Error, "the package has no file", "no-such-package"});
		return false;
	}
	FPackageText Text(std::move(*File));
	Text.Parse();
	return Text.VisitObjects(FindPackage(PackageName), Sink, Visit);
}

void FLoader::NoteReference(FName PackageName)
{
	if (!Current)
		return;
	const bool bIsNew = Current->References.empty() || Current->References.back() != PackageName;
	if (bIsNew && Current->PackageName != PackageName)
		Current->References.push_back(PackageName);
}

void FLoader::Report(EDiagnosticSeverity Severity, const FString& FileName, const char* Rule, FString Text)
{
	if (Diagnostics)
		Diagnostics->Add({FileName, 0, 0, Severity, std::move(Text), Rule});
}

/** The file that asks for a package; the package's own name where that is unknown. */
FString FLoader::WhereNeeded(FName PackageName) const
{
	return Current ? Current->Text->GetFile().FileName : PackageName.ToString();
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
	checkGameThread();
	return FLoader::Get().Load(PackageName);
}

UObject* StaticLoadObject(UClass* Class, UObject* Outer, FStringView ObjectPath, uint32)
{
	checkGameThread();
	UObject* const Object = FLoader::Get().FindOrLoad(MakeFullPath(Outer, ObjectPath));
	return Object && (!Class || Object->IsA(Class)) ? Object : nullptr;
}

void UnloadAllLoadedPackages()
{
	checkGameThread();
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
	checkGameThread();
	return FLoader::Get().Evict();
}

int32 DropLoadedPackages(const std::function<bool(FName PackageName)>& HasChanged)
{
	checkGameThread();
	return FLoader::Get().Drop(HasChanged);
}

bool VisitStoredObjects(FName PackageName, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit)
{
	checkGameThread();
	return FLoader::Get().VisitStored(PackageName, Diagnostics, Visit);
}

FTemporaryLoads::FTemporaryLoads() : NumBefore(FLoader::Get().GetLoaded().NumEntries())
{
}

FTemporaryLoads::~FTemporaryLoads()
{
	FLoader::Get().UnloadSince(NumBefore);
}

void PinPackage(FName PackageName)
{
	FLoader::Get().GetLoaded().Pin(PackageName);
}

void UnpinPackage(FName PackageName)
{
	FLoader::Get().GetLoaded().Unpin(PackageName);
}

UObject* ObjectLoading::Load(UClass* Class, FStringView ObjectPath)
{
	return StaticLoadObject(Class, nullptr, ObjectPath);
}

void ObjectLoading::NoteReferenceToPackage(FName PackageName)
{
	FLoader::Get().NoteReference(PackageName);
}

FStringView ObjectLoading::GetPackageStem(FStringView FilePath)
{
	const IPackageSource& Source = GetVassetPackageSource();
	const std::size_t StemLength = FilePath.size() - std::min(FilePath.size(), Source.GetExtensionLength());
	const FStringView Stem = FilePath.substr(0, StemLength);
	return Source.IsPackageFile(std::string(Stem) + Unicode::Fold(FilePath.substr(StemLength))) ? Stem : FStringView();
}
