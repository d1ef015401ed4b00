#pragma once

#include "CoreObject/Packages/Loader.h"

/** A package's file on its way into memory: found, then read and parsed, then made into objects. Made to be reused. */
class FPackageText
{
public:
	explicit FPackageText(FPackageFile InFile) { SetFile(std::move(InFile)); }
	/** Begins anew with another file; buffers stay where it is of the same format. */
	void SetFile(FPackageFile InFile);
	/** Reads and parses; what goes wrong is kept for the game thread. Any thread. */
	void Parse();
	/** Parse, but for a file of more than LargePackageBytes, which waits for OpenBody. Any thread. */
	void ParseUnlessLarge();
	/** Of the file; 0 before it was read. */
	std::size_t NumBytes() const { return Bytes.size(); }
	/** Of all buffers, which reuse would keep. */
	std::size_t GetMemory() const { return Bytes.capacity() + (Reader ? Reader->GetMemory() : 0); }
	const FPackageFile& GetFile() const { return File; }
	/** Once parsed, or to be parsed now: as IPackageReader::OpenBody does. The body goes before another file is set. Game thread.
	 */
	TUniquePtr<IPackageBody> OpenBody(UPackage& Package, FDiagnosticSink* Diagnostics);
	/** Likewise, as IPackageReader::VisitObjects does. Game thread. */
	bool VisitObjects(UPackage* Package, FDiagnosticSink* Diagnostics, const FStoredObjectVisit& Visit);

private:
	/** Parses what waits; false and a diagnostic where the file could not be read. */
	bool IsRead(FDiagnosticSink* Diagnostics);

	FPackageFile File;
	TUniquePtr<IPackageReader> Reader;
	std::string Bytes;
	EFileRead Outcome = EFileRead::Missing;
	bool bWaits = false; // to be parsed
};
