#include "Packages/PackageText.h"

namespace
{
struct FReadFault
{
	const char* Rule;
	FString Text;
};

FReadFault Describe(EFileRead Outcome, uint64 MaxBytes)
{
	switch (Outcome)
	{
		case EFileRead::Missing:
			return {"missing-file", "the file is gone, so its package cannot be loaded"};
		case EFileRead::TooLarge:
			return {"too-large",
				FString::Printf(
					"the file is larger than %d MiB, so its package is not loaded", static_cast<int>(MaxBytes >> 20))};
		case EFileRead::Unreadable:
		case EFileRead::Ok:
			break;
	}
	return {"unreadable-file", "the file cannot be read, so its package cannot be loaded"};
}
}

void FPackageText::SetFile(FPackageFile InFile)
{
	if (!Reader || InFile.Source != File.Source)
		Reader = InFile.Source->MakeReader();
	File = std::move(InFile);
	Bytes.clear();
}

void FPackageText::ParseUnlessLarge()
{
	Outcome = File.Read(Bytes, LargePackageBytes, Reader->GetPadding());
	bWaits = Outcome == EFileRead::TooLarge;
	if (Outcome == EFileRead::Ok)
		Reader->ParseBody(Bytes);
}

void FPackageText::Parse()
{
	bWaits = false;
	Outcome = File.Read(Bytes, File.Source->GetMaxFileBytes(), Reader->GetPadding());
	if (Outcome == EFileRead::Ok)
		Reader->ParseBody(Bytes);
}

bool FPackageText::IsRead(FDiagnosticSink* Diagnostics)
{
	if (bWaits)
		Parse();
	if (Outcome == EFileRead::Ok)
		return true;
	const FReadFault Fault = Describe(Outcome, File.Source->GetMaxFileBytes());
	if (Diagnostics)
		Diagnostics->Add({File.FileName, 0, 0, EDiagnosticSeverity::Error, Fault.Text, Fault.Rule});
	return false;
}

TUniquePtr<IPackageBody> FPackageText::OpenBody(UPackage& Package, FDiagnosticSink* Diagnostics)
{
	return IsRead(Diagnostics) ? Reader->OpenBody(File.FileName, Package, Diagnostics) : nullptr;
}

bool FPackageText::VisitObjects(UPackage* Package, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit)
{
	return IsRead(Diagnostics) && Reader->VisitObjects(File.FileName, Package, Diagnostics, Visit);
}
