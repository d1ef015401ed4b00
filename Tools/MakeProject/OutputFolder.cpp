#include "OutputFolder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::string_view ProjectFolders[] = {
	"Config", "Content", "Docs", "Intermediate", "Localization", "Plugins", "Saved", "Script", "Templates", "Tools", "Web"};

int MakeAndOpen(int Above, const std::string& Name)
{
	if (mkdirat(Above, Name.c_str(), 0777) != 0 && errno != EEXIST)
		return -1;
	return openat(Above, Name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool WriteAll(int File, std::string_view Content)
{
	while (!Content.empty())
	{
		const ssize_t Written = write(File, Content.data(), Content.size());
		if (Written < 0 && errno == EINTR)
			continue;
		if (Written <= 0)
			return false;
		Content.remove_prefix(static_cast<std::size_t>(Written));
	}
	return true;
}
}

FFolderHandle::FFolderHandle(FFolderHandle&& Other) noexcept : Descriptor(std::exchange(Other.Descriptor, -1))
{
}

FFolderHandle& FFolderHandle::operator=(FFolderHandle&& Other) noexcept
{
	std::swap(Descriptor, Other.Descriptor);
	return *this;
}

FFolderHandle::~FFolderHandle()
{
	if (Descriptor >= 0)
		close(Descriptor);
}

bool FFolderHandle::WriteFile(const char* Name, std::string_view Content) const
{
	const int File = openat(Descriptor, Name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
	if (File < 0)
		return false;
	const bool bWritten = WriteAll(File, Content);
	const int Fault = errno;
	const bool bClosed = close(File) == 0;
	if (!bWritten)
		errno = Fault;
	return bWritten && bClosed;
}

FFolderHandle FFolderHandle::OpenBelow(const std::string& Path) const
{
	FFolderHandle Below(openat(Descriptor, Path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
	if (Below.IsOpen() || errno != ENOENT)
		return Below;

	Below = FFolderHandle(openat(Descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
	for (std::size_t Begin = 0; Below.IsOpen() && Begin < Path.size();)
	{
		const std::size_t End = std::min(Path.find('/', Begin), Path.size());
		Below = FFolderHandle(MakeAndOpen(Below.Descriptor, Path.substr(Begin, End - Begin)));
		Begin = End + 1;
	}
	return Below;
}

EFolderState LookAtFolder(const std::string& Path)
{
	std::error_code Fault;
	if (!std::filesystem::exists(Path, Fault) && !Fault)
		return EFolderState::Absent;

	bool bEmpty = true;
	std::filesystem::directory_iterator Entries(Path, Fault);
	for (; !Fault && Entries != std::filesystem::directory_iterator(); Entries.increment(Fault))
	{
		bEmpty = false;
		if (Entries->path().extension() == ".uproject")
			return EFolderState::Project;
	}
	if (Fault)
	{
		errno = Fault.value();
		return EFolderState::Unreadable;
	}
	return bEmpty ? EFolderState::Empty : EFolderState::Other;
}

bool RemoveProject(const std::string& Path, std::string& OutError)
{
	std::error_code Fault;
	const std::filesystem::path Project(Path);
	for (const std::string_view Folder : ProjectFolders)
	{
		std::filesystem::remove_all(Project / Folder, Fault);
		if (Fault)
		{
			OutError = "cannot remove " + (Project / Folder).string() + ": " + Fault.message();
			return false;
		}
	}
	// The descriptor goes last: as long as it stands the folder can be replaced again.
	for (const auto& Entry : std::filesystem::directory_iterator(Project, Fault))
	{
		if (Entry.path().extension() == ".uproject")
			std::filesystem::remove(Entry.path(), Fault);
	}
	if (Fault)
		OutError = "cannot remove the descriptor of " + Path + ": " + Fault.message();
	return !Fault;
}

FFolderHandle OpenProjectFolder(const std::string& Path)
{
	std::error_code Fault;
	std::filesystem::create_directories(Path, Fault);
	if (Fault)
		errno = Fault.value();
	return FFolderHandle(Fault ? -1 : open(Path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}
