#include "Scan/LiveRegistry.h"

#include "Core/Program/Memory.h"
#include "Core/Text/Unicode.h"
#include "Image/FolderText.h"
#include "Queries/RegistryOverlay.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr uint32 MaxOverlayFiles = 4096; // beyond, a new image is made at once

bool IsPackageFile(const FRegistryScanOptions& Options, std::string_view Path)
{
	const auto IsBelow = [Path](const FRegistryRoot& Root)
	{ return Path.starts_with(FolderText::WithTrailingSlash(Root.Folder).View()); };
	return Options.Roots.ContainsByPredicate(IsBelow) &&
		Options.Sources.ContainsByPredicate([Path](const IPackageSource* Source) { return Source->IsPackageFile(Path); });
}

bool MayHoldPackages(const FRegistryScanOptions& Options, std::string_view Folder)
{
	return Options.Roots.ContainsByPredicate(
		[Folder](const FRegistryRoot& Given)
		{
			const FString Root = FolderText::WithTrailingSlash(Given.Folder);
			return Folder.starts_with(Root.View()) || Root.View().starts_with(Folder);
		});
}
}

FLiveRegistry::FLiveRegistry()
{
	Base.Part = MakeShared<FRegistryPart>(FRegistryImage::MakeEmpty(), FRegistryScanOptions());
	Current = MakeShared<FRegistrySnapshot>(Base.Part);
}

FLiveRegistry::FSnapshotPtr FLiveRegistry::Take() const
{
	const std::lock_guard Guard(Lock);
	return Current;
}

void FLiveRegistry::Set(FSnapshotPtr New)
{
	const std::lock_guard Guard(Lock);
	Current.swap(New); // the old one is freed behind the lock
	++StateNumber;
}

uint64 FLiveRegistry::GetStateNumber() const
{
	const std::lock_guard Guard(Lock);
	return StateNumber;
}

void FLiveRegistry::SetClassParents(FRegistryScan::FClassParents Parents)
{
	const std::lock_guard Guard(ScanLock);
	ClassParents = std::move(Parents);
}

bool FLiveRegistry::Scan(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport)
{
	const std::lock_guard Guard(ScanLock);
	Fold.reset();
	FRegistryScan Run(Options, ClassParents, OutReport);
	TSharedPtr<const FRegistryImage> Image = Run.Run();
	if (!Image)
		return false;
	Base = {MakeShared<FRegistryPart>(std::move(Image), Options), Run.TakeNamesWithoutRecord()};
	Scope = {};
	OverlayImage = nullptr;
	Pending = {};
	Set(MakeShared<FRegistrySnapshot>(Base.Part));
	return true;
}

ERegistryUpdate FLiveRegistry::Update(const FRegistryScanOptions& Options, std::span<const std::string> Files,
	std::span<const std::string> Folders, FRegistryScanReport& OutReport)
{
	const std::lock_guard Guard(ScanLock);
	OutReport = {};
	const FScanScope Changed = MakeScope(Options, Files, Folders);
	Pending.Add(Changed);
	if (Pending.IsEmpty())
		return ERegistryUpdate::Unchanged;
	if (Fold)
		Fold->Since.Add(Changed);
	AdoptFold();
	Scope.Add(Pending);
	std::vector<uint32> Hidden = Scope.FindPackages(*Base.Part);
	if (Base.Strays.bContested || Hidden.size() > MaxOverlayFiles)
		return ScanAll(Options, OutReport);
	FRegistryScan Run(Options, ClassParents, OutReport,
		{.Known = OverlayImage, .Scope = &Scope, .Changed = &Pending, .MaxFiles = MaxOverlayFiles});
	TSharedPtr<const FRegistryImage> Image = Run.Run();
	if (!Image && Options.Stop.stop_requested())
		return ERegistryUpdate::Stopped;
	const auto Overlay = Image ? MakeOverlay(Image, Run.TakeNamesWithoutRecord(), Options, std::move(Hidden)) : nullptr;
	if (!Overlay)
		return ScanAll(Options, OutReport);
	OverlayImage = std::move(Image);
	Pending = {};
	Set(MakeShared<FRegistrySnapshot>(Base.Part, Overlay));
	if (Overlay->Hidden.size() + OverlayImage->NumPackages() >= static_cast<uint32>(Options.FoldAt) && !Fold)
		StartFold(Options);
	return ERegistryUpdate::Updated;
}

FScanScope FLiveRegistry::MakeScope(
	const FRegistryScanOptions& Options, std::span<const std::string> Files, std::span<const std::string> Folders)
{
	FScanScope Changed;
	for (const std::string& File : Files)
	{
		if (IsPackageFile(Options, File))
			Changed.AddFile(File);
	}
	for (const std::string& Folder : Folders)
	{
		if (MayHoldPackages(Options, Folder))
			Changed.AddFolder(Folder);
	}
	return Changed;
}

ERegistryUpdate FLiveRegistry::ScanAll(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport)
{
	Fold.reset();
	FRegistryScan Run(Options, ClassParents, OutReport, {.Known = Base.Part->Image, .Changed = &Scope});
	TSharedPtr<const FRegistryImage> Image = Run.Run();
	if (!Image)
		return ERegistryUpdate::Stopped;
	// An image that is right as it is keeps the names that were made for it.
	if (Image != Base.Part->Image)
		Base.Part = MakeShared<FRegistryPart>(std::move(Image), Options);
	Base.Strays = Run.TakeNamesWithoutRecord();
	Scope = {};
	OverlayImage = nullptr;
	Pending = {};
	Set(MakeShared<FRegistrySnapshot>(Base.Part));
	return ERegistryUpdate::Updated;
}

TSharedPtr<const FRegistryOverlay> FLiveRegistry::MakeOverlay(TSharedPtr<const FRegistryImage> Changed,
	const FNamesWithoutRecord& Strays, const FRegistryScanOptions& Options, std::vector<uint32> Hidden) const
{
	// A file that gives no record still holds its package's name, so that it matters which of two files comes first.
	const auto HoldsName = [&](const FRegistryImage& Image, const std::string& Name) { return Image.FindPackage(Name) != NoId; };
	for (const auto& [Name, File] : Base.Strays.FileByName)
	{
		if (!Scope.HoldsFile(File) && (HoldsName(*Changed, Name) || Strays.FileByName.contains(Name)))
			return nullptr;
	}
	for (const auto& [Name, File] : Strays.FileByName)
	{
		const uint32 Package = Base.Part->Image->FindPackage(Name);
		if (Package != NoId && !std::binary_search(Hidden.begin(), Hidden.end(), Package))
			return nullptr;
	}
	if (Strays.bContested)
		return nullptr;
	return FRegistryOverlay::Make(*Base.Part, MakeShared<FRegistryPart>(std::move(Changed), Options), std::move(Hidden));
}

void FLiveRegistry::AdoptFold()
{
	if (!Fold || !Fold->bDone)
		return;
	const TUniquePtr<FFold> Done = std::move(Fold);
	Done->Thread.join();
	if (!Done->Result.Part)
		return;
	Base = std::move(Done->Result);
	Scope = std::move(Done->Since);
}

void FLiveRegistry::RunFold(FFold& Own, TSharedPtr<const FRegistryImage> Known)
{
	FRegistryScanReport Report;
	FRegistryScan Run(Own.Options, Own.ClassParents, Report, {.Known = std::move(Known), .Changed = &Own.Changed});
	if (TSharedPtr<const FRegistryImage> Image = Run.Run())
		Own.Result = {MakeShared<FRegistryPart>(std::move(Image), Own.Options), Run.TakeNamesWithoutRecord()};
}

void FLiveRegistry::StartFold(const FRegistryScanOptions& Options)
{
	Fold = MakeUnique<FFold>();
	Fold->Options = Options;
	Fold->Options.NumThreads = 1; // the others are for those who wait
	Fold->Options.Diagnostics = nullptr;
	Fold->Options.NumDone = nullptr;
	Fold->Options.NumTotal = nullptr;
	Fold->ClassParents = ClassParents;
	Fold->Changed = Scope;
	Fold->Thread = std::jthread(
		[&Own = *Fold, Known = Base.Part->Image](std::stop_token Stop)
		{
			Own.Options.Stop = std::move(Stop);
			try
			{
				RunFold(Own, Known);
			}
			catch (const std::exception&) // out of memory or descriptors: the overlay goes on growing until the next attempt
			{
			}
			ReturnUnusedMemory(); // several times the image
			Own.bDone = true;
		});
}
