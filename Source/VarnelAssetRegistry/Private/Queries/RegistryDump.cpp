#include "Queries/RegistryDump.h"

#include "CoreObject/Packages/PackageSource.h"

#include <algorithm>

namespace
{
/** Texts come from files: a line break in one must not look like a line of the dump. */
std::string Escape(std::string_view Text)
{
	std::string Out;
	for (const char Byte : Text)
	{
		const auto Value = static_cast<uint8>(Byte);
		Out += Value < 0x20 || Value == 0x7F ? FString::Printf("\\x%02x", Value).ToStdString() : std::string(1, Byte);
	}
	return Out;
}

std::string DescribeFlags(uint8 Flags)
{
	return std::string((Flags & EDependencyFlags::Hard) != 0 ? "hard" : "soft") +
		((Flags & EDependencyFlags::Game) != 0 ? " game" : " editor");
}

class FDump
{
public:
	FDump(const FRegistryImage& InImage, const std::function<void(FStringView)>& InWrite)
		: Image(InImage)
		, Tables(InImage.GetTables())
		, Write(InWrite)
	{
	}

	void WriteTotals() const;
	void WriteRoots() const;
	void WriteNode(uint32 Node) const;
	void WriteClass(uint32 Class) const;

private:
	void WriteFile(uint32 Package) const;
	void WriteFaults(uint32 Package) const;
	void WriteAsset(uint32 Asset) const;
	void WriteEntry(uint32 Entry) const;
	void WriteEdges(uint32 Node, const char* Word, std::span<const uint32> First, std::span<const uint32> Others,
		std::span<const uint8> Flags) const;
	std::string Text(EZone Zone, uint32 Id) const { return Escape(Tables.GetText(Zone, Id)); }

	const FRegistryImage& Image;
	const FRegistryTables& Tables;
	const std::function<void(FStringView)>& Write;
};

void FDump::WriteTotals() const
{
	Write(FString::Printf(
		"registry of %zu bytes: %u packages, %u assets, %zu dependencies, %u classes, %zu index entries, %zu uses of texts by "
		"them, %zu texts, trigrams: %zu of package names, %zu of texts of entries",
		Image.GetBytes().size(), Image.NumPackages(), Image.NumAssets(), Tables.DependencyTargets.size(), Image.NumClasses(),
		Tables.EntryTexts.size(), Tables.Uses.size(), Tables.TextStarts.size() - 1, Tables.NameTrigrams.Keys.size(),
		Tables.EntryTrigrams.Keys.size()));
}

void FDump::WriteRoots() const
{
	for (uint32 Root = 0; Root < Tables.RootNames.size(); ++Root)
	{
		const FRowRange Files = FRegistryTables::RangeOf(Tables.FirstRootFiles, Root);
		Write("root " + Text(EZone::Files, Tables.RootNames[Root]) + " from '" + Text(EZone::Files, Tables.RootFolders[Root]) +
			"', " + std::to_string(Files.Num()) + " files");
	}
}

void FDump::WriteNode(uint32 Node) const
{
	const bool bHasFile = Node < Image.NumPackages();
	Write((bHasFile ? "package " : "no file for ") + Text(EZone::Nodes, Node));
	if (bHasFile)
	{
		WriteFile(Node);
		WriteFaults(Node);
		const FRowRange Assets = FRegistryTables::RangeOf(Tables.FirstAssets, Node);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
			WriteAsset(Asset);
		const FRowRange Entries = FRegistryTables::RangeOf(Tables.FirstEntries, Node);
		for (uint32 Entry = Entries.Begin; Entry < Entries.End; ++Entry)
			WriteEntry(Entry);
	}
	WriteEdges(Node, "depends on ", Tables.FirstDependencies, Tables.DependencyTargets, Tables.DependencyFlags);
	WriteEdges(Node, "referenced by ", Tables.FirstReferencers, Tables.ReferencerSources, Tables.ReferencerFlags);
}

void FDump::WriteFile(uint32 Package) const
{
	const uint32 File = Tables.PackageFiles[Package];
	const FFileStamp& Stamp = Tables.FileStamps[File];
	const FString Numbers = FString::Printf(", %llu bytes, modified %lld, changed %lld, inode %llu, source %u",
		static_cast<unsigned long long>(Stamp.Size), static_cast<long long>(Stamp.ModifiedNanoseconds),
		static_cast<long long>(Stamp.ChangedNanoseconds), static_cast<unsigned long long>(Stamp.Inode),
		static_cast<unsigned>(Tables.FileSources[File]));
	Write("  file " + Escape(Image.GetRelativePath(File)) + " in folder " + Text(EZone::Folders, Tables.PackageFolders[Package]) +
		Numbers.ToStdString());
}

void FDump::WriteFaults(uint32 Package) const
{
	const FRowRange Faults = Tables.FindFaults(Package);
	for (uint32 Fault = Faults.Begin; Fault < Faults.End; ++Fault)
	{
		FDiagnostic Diagnostic = Tables.GetFault(Fault);
		Diagnostic.File = FString(Image.GetRelativePath(Tables.PackageFiles[Package]));
		Write("  fault " + Escape(Diagnostic.ToString()));
	}
}

void FDump::WriteAsset(uint32 Asset) const
{
	std::string Line = "  asset " + Escape(Image.GetAssetName(Asset)) + " of " + Text(EZone::Classes, Tables.AssetClasses[Asset]);
	if (Tables.AssetOuters[Asset] != NoId)
		Line += " in " + Escape(Image.GetAssetOuter(Asset));
	Write(Line + (Image.IsFiltered(Asset) ? ", filtered" : ""));
	const FRowRange Tags = FRegistryTables::RangeOf(Tables.FirstTags, Asset);
	for (uint32 Tag = Tags.Begin; Tag < Tags.End; ++Tag)
		Write("    tag " + Text(EZone::TagKeys, Tables.TagKeys[Tag]) + " = " + Text(EZone::TagValues, Tables.TagValues[Tag]));
}

void FDump::WriteEntry(uint32 Entry) const
{
	std::string Line = "  entry " + std::string(2 * std::size_t{Tables.EntryDepths[Entry]}, ' ');
	Line += Text(EZone::Entries, Tables.EntryCategories[Entry]) + " " + Text(EZone::Entries, Tables.EntryTexts[Entry]);
	if (Tables.EntryComments[Entry] != NoId)
		Line += " // " + Text(EZone::Entries, Tables.EntryComments[Entry]);
	Write(Line);
}

void FDump::WriteEdges(uint32 Node, const char* Word, std::span<const uint32> First, std::span<const uint32> Others,
	std::span<const uint8> Flags) const
{
	const FRowRange Edges = FRegistryTables::RangeOf(First, Node);
	for (uint32 Edge = Edges.Begin; Edge < Edges.End; ++Edge)
		Write(std::string("  ") + Word + Text(EZone::Nodes, Others[Edge]) + " " + DescribeFlags(Flags[Edge]));
}

void FDump::WriteClass(uint32 Class) const
{
	std::string Line = "class " + Text(EZone::Classes, Class);
	if (Tables.ClassParents[Class] != NoId)
		Line += " below " + Text(EZone::Classes, Tables.ClassParents[Class]);
	if (std::binary_search(Tables.UnclearClasses.begin(), Tables.UnclearClasses.end(), Class))
		Line += " (which other packages have a say in)";
	Write(Line + ", " + std::to_string(FRegistryTables::RangeOf(Tables.FirstClassAssets, Class).Num()) + " assets");
}
}

void DumpRegistry(const FRegistryImage& Image, const std::function<void(FStringView Line)>& Write)
{
	const FDump Dump(Image, Write);
	Dump.WriteTotals();
	Dump.WriteRoots();
	for (uint32 Node = 0; Node < Image.NumNodes(); ++Node)
		Dump.WriteNode(Node);
	for (uint32 Class = 0; Class < Image.NumClasses(); ++Class)
		Dump.WriteClass(Class);
}
