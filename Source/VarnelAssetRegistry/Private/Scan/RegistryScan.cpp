#include "Scan/RegistryScan.h"

#include "Core/Base/Checksum.h"
#include "Core/Text/Unicode.h"
#include "Scan/RegistryCache.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

namespace
{
/** Measures one step in seconds, from its making to its end. */
class FStepTimer
{
public:
	explicit FStepTimer(double& OutSeconds) : Seconds(OutSeconds) {}
	~FStepTimer() { Seconds = std::chrono::duration<double>(FClock::now() - Start).count(); }
	FStepTimer(const FStepTimer&) = delete;
	FStepTimer& operator=(const FStepTimer&) = delete;

private:
	using FClock = std::chrono::steady_clock;
	double& Seconds;
	const FClock::time_point Start = FClock::now();
};

uint64 MakeReadersKey(const FRegistryScanOptions& Options)
{
	// Images hold folded texts and are ordered by them: a program that folds otherwise must not use them.
	std::string Text = Unicode::Fold("Grüße, ΑΣ и Ѣ! Kelvin \u212A");
	for (const IPackageSource* Source : Options.Sources)
		Text += ':' + std::to_string(Source->GetHeaderVersion()) + '.' + std::to_string(Source->GetExtensionLength());
	return ChecksumOf(Text);
}

uint64 MakeClassesKey(const FRegistryScan::FClassParents& ClassParents)
{
	std::string Text;
	for (const auto& [Child, Parent] : ClassParents)
		Text.append(Child.ToString()).append(":").append(Parent.ToString()).append("\n");
	return ChecksumOf(Text);
}

void AddProgress(std::atomic<int32>* Counter, std::size_t Num)
{
	if (Counter)
		*Counter += static_cast<int32>(Num);
}

/** Records of the cache, then those of the readers. */
std::vector<FRegistryTables> ListSources(const FCacheComparison& Cached, FReadHeaders& Headers)
{
	std::vector<FRegistryTables> Sources;
	Sources.push_back(Cached.Image ? Cached.Image->GetTables() : FRegistryTables());
	for (FPackageRecords& Records : Headers.Readers)
		Sources.push_back(Records.View());
	return Sources;
}

std::vector<FPackageDraft> ListCarriedOver(const FCacheComparison& Cached)
{
	std::vector<FPackageDraft> Packages;
	Packages.reserve(Cached.FileOfPackage.size());
	for (uint32 Package = 0; Package < Cached.FileOfPackage.size(); ++Package)
	{
		if (Cached.FileOfPackage[Package] != NoId)
			Packages.push_back({.LongName = Cached.Image->GetTables().GetText(EZone::Nodes, Package),
				.Source = 0,
				.Record = Package,
				.File = Cached.FileOfPackage[Package]});
	}
	return Packages;
}

std::vector<FPackageDraft> ListRead(const std::vector<FCandidate>& Candidates, const FReadHeaders& Headers)
{
	std::vector<FPackageDraft> Packages;
	Packages.reserve(Candidates.size());
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
	{
		const FReadHeaders::FPlace& Place = Headers.Places[Index];
		if (Place.Reader != NoId)
			Packages.push_back({.LongName = Candidates[Index].LongName,
				.Source = Place.Reader + 1,
				.Record = Place.Record,
				.File = Candidates[Index].File});
	}
	return Packages;
}

std::vector<FPackageDraft> MergeInRegistryOrder(const std::vector<FPackageDraft>& A, const std::vector<FPackageDraft>& B)
{
	if (A.empty() || B.empty())
		return A.empty() ? B : A;
	std::vector<FPackageDraft> Merged;
	Merged.reserve(A.size() + B.size());
	std::merge(A.begin(), A.end(), B.begin(), B.end(), std::back_inserter(Merged),
		[](const FPackageDraft& Left, const FPackageDraft& Right)
		{ return Unicode::CompareFolded(Left.LongName, Right.LongName) < 0; });
	return Merged;
}
}

FRegistryScan::FRegistryScan(const FRegistryScanOptions& InOptions, const FClassParents& InClassParents,
	FRegistryScanReport& OutReport, FScanLimits InLimits)
	: Options(InOptions)
	, ClassParents(InClassParents)
	, Report(OutReport)
	, Limits(std::move(InLimits))
	, Key{MakeReadersKey(InOptions), MakeClassesKey(InClassParents)}
{
}

TSharedPtr<const FRegistryImage> FRegistryScan::Run()
{
	Report = {};
	const FListedFiles Files = [this]
	{
		const FStepTimer Timer(Report.ListSeconds);
		return FListedFiles(Options, Limits.Scope);
	}();
	if (Options.Stop.stop_requested() || Files.Num() > Limits.MaxFiles)
		return nullptr;
	Report.NumFiles = static_cast<int32>(Files.Num());
	AddProgress(Options.NumTotal, Files.Num());
	FindCache(Files);
	const TSharedPtr<const FRegistryImage> Image = Update(Files);
	if (Image)
		Report.NumSkipped = Report.NumFiles - static_cast<int32>(Image->NumPackages());
	return Image;
}

/** Takes the cache that fits best: one in a folder that can no longer be written would otherwise hide a newer one. */
void FRegistryScan::FindCache(const FListedFiles& Files)
{
	const bool bKnown = Limits.Known && Limits.Known->GetKey().Readers == Key.Readers;
	Cached = CompareWithListed(bKnown ? Limits.Known : nullptr, Files, Limits.Changed);
	if (Limits.Known || Limits.Scope)
		return;
	Report.CacheState = Options.Cache == ERegistryCache::Ignore ? "off"
		: Options.Cache == ERegistryCache::Rebuild				? "rebuilt: asked for"
																: "created";
	if (Options.Cache != ERegistryCache::Use)
		return;
	for (const FString& Folder : Options.CacheFolders)
	{
		const FRegistryCache Cache(Options.ProjectFolder, Folder);
		EImageState State = EImageState::Missing;
		const TSharedPtr<const FRegistryImage> Image = Cache.Read(State);
		const bool bUsable = Image && Image->GetKey().Readers == Key.Readers;
		if (!bUsable && State != EImageState::Missing && !Cached.Image)
			Report.CacheState = State == EImageState::Damaged ? "rebuilt: damaged" : "rebuilt: of another version";
		if (!bUsable)
			continue;
		FCacheComparison Found = CompareWithListed(Image, Files);
		if (Cached.Image && Found.NumDifferences() >= Cached.NumDifferences())
			continue;
		Cached = std::move(Found);
		Report.bCacheUsed = true;
		Report.CacheFile = Cache.GetFileName();
		Report.CacheState = "up to date";
		if (Cached.NumDifferences() == 0)
			break;
	}
}

TSharedPtr<const FRegistryImage> FRegistryScan::Update(const FListedFiles& Files)
{
	const std::vector<uint32> FilesToRead = TakeFilesToRead();
	AddProgress(Options.NumDone, Files.Num() - FilesToRead.size());
	FNameHolders Holders(Files, Options.Diagnostics);
	FReadHeaders Headers;
	{
		const FStepTimer Timer(Report.ParseSeconds);
		Holders.Choose(FilesToRead, Cached);
		AddProgress(Options.NumDone, FilesToRead.size() - Holders.GetCandidates().size());
		Headers = ReadHeaders(Holders.GetCandidates(), Files, Options);
	}
	ReportCachedFaults(Files);
	Report.NumParsed = Headers.NumRead;
	GatherNamesWithoutRecord(Holders, Headers, Files);
	if (Options.Stop.stop_requested())
		return nullptr;
	if (IsCacheRight(Holders.GetCandidates(), Headers))
		return Cached.Image;
	const FStepTimer Timer(Report.BuildSeconds);
	const TSharedPtr<const FRegistryImage> Image = Build(Files, Holders.GetCandidates(), Headers);
	WriteCache(*Image);
	return Image;
}

/** Records that are to be read anew are no longer carried over from the cache. */
std::vector<uint32> FRegistryScan::TakeFilesToRead()
{
	std::vector<uint32> FilesToRead = Cached.Unknown;
	if (!Cached.Image || (Cached.NumDifferences() == 0 && Cached.Image->GetKey() == Key))
		return FilesToRead;
	const auto Take = [this](uint32 Package) { return std::exchange(Cached.FileOfPackage[Package], NoId); };
	for (const uint32 Package : Cached.Changed)
		FilesToRead.push_back(Take(Package));
	for (const uint32 Package : Cached.Image->GetTables().RespelledPackages)
	{
		if (Cached.FileOfPackage[Package] != NoId)
			Respelled.push_back(Take(Package));
	}
	std::sort(Respelled.begin(), Respelled.end());
	FilesToRead.insert(FilesToRead.end(), Respelled.begin(), Respelled.end());
	return FilesToRead;
}

/** Of the files that are not read because the cache file knows them. */
void FRegistryScan::ReportCachedFaults(const FListedFiles& Files) const
{
	if (!Report.bCacheUsed || !Options.Diagnostics)
		return;
	const FRegistryTables& Tables = Cached.Image->GetTables();
	for (uint32 Fault = 0; Fault < Tables.FaultPackages.size(); ++Fault)
	{
		const uint32 File = Cached.FileOfPackage[Tables.FaultPackages[Fault]];
		if (File == NoId)
			continue;
		FDiagnostic Diagnostic = Tables.GetFault(Fault);
		Diagnostic.File = Files.GetDisplayName(File);
		Options.Diagnostics->Add(std::move(Diagnostic));
	}
}

/** Files without a record are read at every opening, so that they are reported every time; they alone are no reason to build
 * anew. */
bool FRegistryScan::IsCacheRight(const std::vector<FCandidate>& Candidates, const FReadHeaders& Headers) const
{
	if (!Cached.Image || Cached.Image->GetKey() != Key)
		return false;
	std::size_t NumRespelled = 0;
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
	{
		if (Headers.Places[Index].Reader == NoId)
			continue;
		if (!std::binary_search(Respelled.begin(), Respelled.end(), Candidates[Index].File))
			return false;
		++NumRespelled;
	}
	const auto NumGone = static_cast<std::size_t>(std::count(Cached.FileOfPackage.begin(), Cached.FileOfPackage.end(), NoId));
	return NumGone == NumRespelled;
}

TSharedPtr<const FRegistryImage> FRegistryScan::Build(
	const FListedFiles& Files, const std::vector<FCandidate>& Candidates, FReadHeaders& Headers)
{
	const std::vector<FPackageDraft> Read = ListRead(Candidates, Headers);
	if (Cached.Image && Read.size() + Cached.NumRemoved > Respelled.size())
		Report.CacheState = FString::Printf("updated (%zu files)", Read.size() + Cached.NumRemoved - Respelled.size());
	else if (Cached.Image)
		Report.CacheState = "updated";
	FRegistryInput Input;
	Input.Packages = MergeInRegistryOrder(ListCarriedOver(Cached), Read);
	Input.Sources = ListSources(Cached, Headers);
	Input.Files = &Files;
	Input.ClassParents = ClassParents;
	Input.Key = Key;
	Input.NumThreads = Options.NumThreads;
	return BuildRegistry(Input);
}

void FRegistryScan::GatherNamesWithoutRecord(const FNameHolders& Holders, const FReadHeaders& Headers, const FListedFiles& Files)
{
	NamesWithoutRecord.bContested = Holders.AreNamesContested();
	for (std::size_t Index = 0; Index < Headers.Places.size(); ++Index)
	{
		const FCandidate& Candidate = Holders.GetCandidates()[Index];
		if (Headers.Places[Index].Reader == NoId)
			NamesWithoutRecord.FileByName.emplace(Unicode::Fold(Candidate.LongName),
				Files.GetRoot(Candidate.File).Folder.ToStdString() + std::string(Files.GetRelativePath(Candidate.File)));
	}
}

void FRegistryScan::WriteCache(const FRegistryImage& Image)
{
	Report.CacheFile = {};
	if (Options.Cache == ERegistryCache::Ignore || Limits.Scope)
		return;
	for (const FString& Folder : Options.CacheFolders)
	{
		const FRegistryCache Cache(Options.ProjectFolder, Folder);
		if (!Cache.Write(Image))
		{
			Report.CacheError += Report.CacheError.IsEmpty() ? "" : ", ";
			Report.CacheError += Cache.GetFileName() + " (" + FString::FromExternal(std::strerror(errno)) + ")";
			continue;
		}
		Report.CacheError = {};
		Report.bCacheWritten = true;
		Report.CacheFile = Cache.GetFileName();
		return;
	}
	Report.CacheState += "; no cache folder can be written";
	if (Report.CacheError.IsEmpty())
		Report.CacheError = "there is no folder for it";
}
