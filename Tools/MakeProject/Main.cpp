#include "ProjectWriter.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace
{
constexpr int ExitWritten = 0;
constexpr int ExitNotWritten = 1;
constexpr int ExitWrongUse = 2;

int Refuse(const std::string& Reason)
{
	std::fprintf(stderr, "make_project: %s\nTry make_project --help\n", Reason.c_str());
	return ExitWrongUse;
}

int GiveUp(const std::string& Reason)
{
	std::fprintf(stderr, "make_project: %s\n", Reason.c_str());
	return ExitNotWritten;
}

/** Makes room for the project. Returns an exit code; ExitWritten means that the folder is ready. */
int PrepareFolder(const FProjectOptions& Options)
{
	switch (LookAtFolder(Options.Folder))
	{
		case EFolderState::Absent:
		case EFolderState::Empty:
			return ExitWritten;
		case EFolderState::Unreadable:
			return errno == ENOTDIR ? Refuse(Options.Folder + " is not a folder")
									: GiveUp("cannot read " + Options.Folder + ": " + std::strerror(errno));
		case EFolderState::Other:
			return Refuse(Options.Folder + " is not empty and holds no project; choose another folder");
		case EFolderState::Project:
			break;
	}
	if (!Options.bForce)
		return Refuse(Options.Folder + " holds a project already; --force replaces it");
	std::string Error;
	return RemoveProject(Options.Folder, Error) ? ExitWritten : GiveUp(Error);
}

void PrintClasses(const FProjectPlan& Plan)
{
	for (uint32 Class = 0; Class < NumAssetClasses; ++Class)
	{
		const uint32 Num = Plan.PackagesOf(static_cast<EAssetClass>(Class)).Num();
		const std::string Name(RowOf(static_cast<EAssetClass>(Class)).Name);
		if (Num != 0)
			std::printf("  %-25s %8u\n", Name.c_str(), Num);
	}
}

void PrintMostUsed(const FProjectPlan& Plan, const FProjectWriter& Writer)
{
	uint32 MostUsed = 0;
	for (uint32 Package = 1; Package < Plan.NumPackages(); ++Package)
	{
		if (Writer.GetNumUsers(Package) > Writer.GetNumUsers(MostUsed))
			MostUsed = Package;
	}
	std::string Name;
	Plan.AppendLongName(Name, MostUsed);
	std::printf("most used     %s, by %u packages\n", Name.c_str(), Writer.GetNumUsers(MostUsed));
}

void PrintSummary(const FProjectPlan& Plan, const FProjectWriter& Writer, double Seconds)
{
	const FWriteTotals& Totals = Writer.GetTotals();
	const uint32 NumTextFiles = Plan.GetOptions().NumTextFiles;
	std::printf("packages      %u in %zu folders\n", Plan.NumPackages(), Plan.GetFolders().size());
	PrintClasses(Plan);
	std::printf("links         %llu, %.1f a package, %llu of them to packages that do not exist\n",
		static_cast<unsigned long long>(Totals.NumLinks), static_cast<double>(Totals.NumLinks) / Plan.NumPackages(),
		static_cast<unsigned long long>(Totals.NumMissingTargets));
	PrintMostUsed(Plan, Writer);
	std::printf("text files    %u besides the project's own, %u of them UTF-16\n", NumTextFiles, Totals.NumUtf16);
	for (std::size_t Word = 0; Word < RareWords.size(); ++Word)
		std::printf("  with \"%s\" %u\n", std::string(RareWords[Word]).c_str(), Totals.NumWithRareWord[Word]);
	std::printf("bytes         %llu in packages, %llu in text files\n", static_cast<unsigned long long>(Totals.PackageBytes),
		static_cast<unsigned long long>(Totals.TextBytes));
	std::printf("seconds       %.1f\n", Seconds);
}
}

int main(int NumArguments, char** Arguments)
{
	const auto Start = std::chrono::steady_clock::now();
	std::string Error;
	const auto Options = ReadOptions(NumArguments, Arguments, Error);
	if (!Options)
		return Refuse(Error);
	if (Options->bHelp)
		return std::fputs(GetUsage(), stdout) < 0 ? ExitNotWritten : ExitWritten;
	if (const int ExitCode = PrepareFolder(*Options); ExitCode != ExitWritten)
		return ExitCode;

	const FFolderHandle Folder = OpenProjectFolder(Options->Folder);
	if (!Folder.IsOpen())
		return GiveUp("cannot make " + Options->Folder + ": " + std::strerror(errno));
	const FProjectPlan Plan(*Options);
	FProjectWriter Writer(Plan);
	if (!Writer.Write(Folder))
		return GiveUp(Options->Folder + ": " + Writer.GetError());

	const std::chrono::duration<double> Taken = std::chrono::steady_clock::now() - Start;
	PrintSummary(Plan, Writer, Taken.count());
	return ExitWritten;
}
