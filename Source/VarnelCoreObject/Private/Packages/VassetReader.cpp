#include "CoreObject/Packages/PackageSource.h"

#include "Packages/VassetBody.h"
#include "Packages/VassetHeader.h"

namespace
{
constexpr std::string_view Extension = ".vasset";
constexpr uint64 MaxFileBytes = 64ull * 1024 * 1024;
constexpr uint32 HeaderVersion = 2;
constexpr FJsonReadOptions WholeFile{.MaxDepth = Json::MaxPackageDepth, .StopBefore = {}};
constexpr FJsonReadOptions HeaderOnly{.MaxDepth = Json::MaxPackageDepth, .StopBefore = VassetKeys::Objects};
constexpr const char* VersionRule = "package-version";

class FVassetReader final : public IPackageReader
{
public:
	std::size_t GetPadding() const override { return FJsonDocument::GetPadding(); }
	bool ReadHeader(std::string& Bytes, const FString& FileName, FPackageHeader& Out, FDiagnosticSink* Diagnostics) override;
	void ParseBody(std::string& Bytes) override { bBodyParsed = Parse(Bytes, WholeFile); }
	std::size_t GetMemory() const override { return Document.GetMemory(); }
	TUniquePtr<IPackageBody> OpenBody(const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics) override;
	bool VisitObjects(
		const FString& FileName, UPackage* Package, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit) override;

private:
	/** What ParseBody left is a package; tells its faults. */
	bool HasBody(FJsonFaults& Faults) const;
	bool Parse(std::string& Bytes, const FJsonReadOptions& Options);
	bool ParseHeader(std::string& Bytes, FJsonFaults& Faults);
	bool HasRoot(FJsonFaults& Faults) const;

	FJsonDocument Document;
	FVassetHeaderReader HeaderReader;
	bool bBodyParsed = false;
};

bool FVassetReader::ReadHeader(std::string& Bytes, const FString& FileName, FPackageHeader& Out, FDiagnosticSink* Diagnostics)
{
	Out.Reset();
	FJsonFaults Faults(Document, FileName, Diagnostics);
	if (!ParseHeader(Bytes, Faults) || !HasRoot(Faults))
		return false;
	HeaderReader.Read(Document.Root(), Faults, Out);
	return true;
}

bool FVassetReader::HasBody(FJsonFaults& Faults) const
{
	if (!bBodyParsed)
	{
		Faults.ReportSyntax();
		return false;
	}
	Faults.ReportRepair();
	return HasRoot(Faults);
}

TUniquePtr<IPackageBody> FVassetReader::OpenBody(const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics)
{
	FJsonFaults Faults(Document, FileName, Diagnostics);
	return HasBody(Faults) ? OpenVassetBody(Document, FileName, Package, Diagnostics) : nullptr;
}

bool FVassetReader::VisitObjects(
	const FString& FileName, UPackage* Package, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit)
{
	FJsonFaults Faults(Document, FileName, Diagnostics);
	return HasBody(Faults) && VisitVassetObjects(Document, FileName, Package, Diagnostics, Visit);
}

bool FVassetReader::Parse(std::string& Bytes, const FJsonReadOptions& Options)
{
	Bytes.reserve(Bytes.size() + GetPadding());
	return Document.ParseInPlace(Bytes.data(), Bytes.size(), Bytes.capacity(), Options);
}

/** Parses as much of the file as the header needs: no more than comes before the body, where the whole header does. */
bool FVassetReader::ParseHeader(std::string& Bytes, FJsonFaults& Faults)
{
	bool bParsed = Parse(Bytes, HeaderOnly);
	if (bParsed && Document.StoppedEarly() && !HasWholeHeaderBeforeBody(Document.Root()))
		bParsed = Parse(Bytes, WholeFile);
	Faults.ReportRepair();
	if (bParsed)
		return true;
	Faults.ReportSyntax();
	// The fault may be in the body: what comes before it counts then, if it names the format at least.
	return Parse(Bytes, HeaderOnly) && Document.Root().IsObject() && Document.Root().Find(VassetKeys::Version);
}

bool FVassetReader::HasRoot(FJsonFaults& Faults) const
{
	const FJsonRef Root = Document.Root();
	return Faults.IsObject(Root) && Faults.HasVersion(Root, VassetKeys::Version, VersionRule);
}

class FVassetSource final : public IPackageSource
{
public:
	bool IsPackageFile(std::string_view RelativePath) const override;
	std::size_t GetExtensionLength() const override { return Extension.size(); }
	uint64 GetMaxFileBytes() const override { return MaxFileBytes; }
	TUniquePtr<IPackageReader> MakeReader() const override { return MakeUnique<FVassetReader>(); }
	uint32 GetHeaderVersion() const override { return HeaderVersion; }
};

bool FVassetSource::IsPackageFile(std::string_view RelativePath) const
{
	const std::size_t NameStart = RelativePath.rfind('/') + 1; // npos + 1 is the start
	return RelativePath.ends_with(Extension) && RelativePath.size() - NameStart > Extension.size();
}
}

void FPackageHeader::Reset()
{
	Assets.clear();
	Tags.clear();
	Dependencies.clear();
	IndexEntries.clear();
}

const IPackageSource& GetVassetPackageSource()
{
	static const FVassetSource Source;
	return Source;
}
