#include "Support/PackageFiles.h"

#include "CoreObject/Packages/PackageSource.h"
#include "Support/PackageText.h"

#include <algorithm>

FPackageFiles::FPackageFiles()
{
	SetLoadDiagnostics(Faults.get());
	SetPackageLocator(
		[this](FName Name) -> TOptional<FPackageFile>
		{
			auto Found = Files.find(Name.ToString().ToStdString());
			if (Found == Files.end()) // spelled otherwise, perhaps
				Found = std::find_if(
					Files.begin(), Files.end(), [Name](const auto& File) { return FName(FStringView(File.first)) == Name; });
			if (Found == Files.end())
				return std::nullopt;
			FFile& File = Found->second;
			const auto Read = [&File](std::string& Buffer, uint64 MaxBytes, std::size_t)
			{
				++File.NumReads;
				Buffer = File.Text;
				return File.Text.size() > MaxBytes ? EFileRead::TooLarge : File.Outcome;
			};
			const FString Path(Found->first);
			return FPackageFile{Path, &GetVassetPackageSource(), Read, FName(Path)};
		});
}

FPackageFiles::~FPackageFiles()
{
	UnloadAllLoadedPackages();
	SetPackageLocator(nullptr);
	SetLoadDiagnostics(nullptr);
}

FPackageFiles::FFile& FPackageFiles::Add(const std::string& PackageName, const std::string& Objects)
{
	FFile& File = Files[PackageName];
	File.Text = FPackageText{.Objects = Objects}.ToJson();
	return File;
}
