#include "Scan/CacheComparison.h"

#include <algorithm>
#include <numeric>

namespace
{
/** Walks the files of an image and the listed ones together, root by root; both lie in byte order of their paths. */
class FComparer
{
public:
	FComparer(FCacheComparison& InOut, const FScanScope* InChanged)
		: Tables(InOut.Image->GetTables())
		, Out(InOut)
		, Changed(InChanged)
	{
	}

	void Compare(const FListedFiles::FRoot& Root, FRowRange Known);

private:
	/** Order of a listed path and that of a file of the image: negative, zero or positive. */
	int CompareWithKnown(std::string_view Path, std::string_view RootName, uint32 Known) const;
	void Match(const FListedFiles::FRoot& Root, int32 Listed, uint32 Known);

	const FRegistryTables& Tables;
	FCacheComparison& Out;
	const FScanScope* const Changed;
};

void FComparer::Compare(const FListedFiles::FRoot& Root, FRowRange Known)
{
	uint32 At = Known.Begin;
	for (int32 Listed = 0; Listed < Root.Tree.Num(); ++Listed)
	{
		const std::string_view Path = Root.Tree.GetRelativePath(Listed);
		int Order = -1;
		while (At < Known.End && (Order = CompareWithKnown(Path, Root.Name, At)) > 0)
			++At;
		if (At < Known.End && Order == 0)
			Match(Root, Listed, At++);
		else
			Out.Unknown.push_back(Root.FirstFile + static_cast<uint32>(Listed));
	}
}

int FComparer::CompareWithKnown(std::string_view Path, std::string_view RootName, uint32 Known) const
{
	std::string_view Name = Tables.GetText(EZone::Nodes, Tables.FilePackages[Known]);
	Name.remove_prefix(std::min(Name.size(), RootName.size() + 1));
	if (const int Order = Path.substr(0, Name.size()).compare(Name); Order != 0)
		return Order;
	return Path.substr(Name.size()).compare(Tables.GetText(EZone::Files, Tables.FileExtensions[Known]));
}

void FComparer::Match(const FListedFiles::FRoot& Root, int32 Listed, uint32 Known)
{
	const uint32 Package = Tables.FilePackages[Known];
	Out.FileOfPackage[Package] = Root.FirstFile + static_cast<uint32>(Listed);
	const auto HasChanged = [&]
	{ return Changed && Changed->HoldsFile(Root.Folder.ToStdString() + std::string(Root.Tree.GetRelativePath(Listed))); };
	if (Tables.FileStamps[Known] != Root.Tree.GetStamp(Listed) || HasChanged())
		Out.Changed.push_back(Package);
}

/** The files of the root with that name and folder; none where the image has no such root. */
FRowRange FindRootFiles(const FRegistryTables& Tables, const FListedFiles::FRoot& Root)
{
	for (uint32 Known = 0; Known < Tables.RootNames.size(); ++Known)
	{
		if (Tables.GetText(EZone::Files, Tables.RootNames[Known]) == Root.Name.View() &&
			Tables.GetText(EZone::Files, Tables.RootFolders[Known]) == Root.StoredFolder.View())
			return FRegistryTables::RangeOf(Tables.FirstRootFiles, Known);
	}
	return {};
}
}

uint32 FCacheComparison::FindCarriedOver(std::string_view LongName) const
{
	const uint32 Package = Image ? Image->FindPackage(LongName) : NoId;
	return Package != NoId && FileOfPackage[Package] != NoId ? Package : NoId;
}

FCacheComparison CompareWithListed(TSharedPtr<const FRegistryImage> Image, const FListedFiles& Files, const FScanScope* Changed)
{
	FCacheComparison Out;
	Out.Image = std::move(Image);
	if (!Out.Image)
	{
		Out.Unknown.resize(Files.Num());
		std::iota(Out.Unknown.begin(), Out.Unknown.end(), 0);
		return Out;
	}
	Out.FileOfPackage.assign(Out.Image->NumPackages(), NoId);
	FComparer Comparer(Out, Changed);
	for (const FListedFiles::FRoot& Root : Files.GetRoots())
		Comparer.Compare(Root, FindRootFiles(Out.Image->GetTables(), Root));
	Out.NumRemoved = static_cast<uint32>(std::count(Out.FileOfPackage.begin(), Out.FileOfPackage.end(), NoId));
	return Out;
}
