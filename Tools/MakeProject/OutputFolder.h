#pragma once

#include <optional>
#include <string>
#include <string_view>

/** A folder on disk that is being written to. Closed when it goes. */
class FFolderHandle
{
public:
	FFolderHandle() = default;
	explicit FFolderHandle(int InDescriptor) : Descriptor(InDescriptor) {}
	FFolderHandle(FFolderHandle&& Other) noexcept;
	FFolderHandle& operator=(FFolderHandle&& Other) noexcept;
	~FFolderHandle();

	bool IsOpen() const { return Descriptor >= 0; }

	/** Writes a file that must not exist yet. False with errno set when that fails. */
	bool WriteFile(const char* Name, std::string_view Content) const;

	/** Opens the folder at a relative path below this one, and makes it first where needed. Not open, with errno set, on failure.
	 */
	FFolderHandle OpenBelow(const std::string& Path) const;

private:
	int Descriptor = -1;
};

/** What stands where a project is to be written. */
enum class EFolderState
{
	Absent,
	Empty,
	Project,
	Other,
	Unreadable
};

/** Looks at the folder. Project: it holds a .uproject file, so it may be replaced. Unreadable sets errno. */
EFolderState LookAtFolder(const std::string& Path);

/** Deletes what projects consist of from the folder, and leaves everything else. False, with the reason in OutError, on failure.
 */
bool RemoveProject(const std::string& Path, std::string& OutError);

/** Makes the folder and those above it, and opens it. Not open, with errno set, on failure. */
FFolderHandle OpenProjectFolder(const std::string& Path);
