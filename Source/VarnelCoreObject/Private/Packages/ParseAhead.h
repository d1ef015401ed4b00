#pragma once

#include "Packages/PackageText.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/**
 * A window over the packages that will be asked for next: their files are read and parsed by threads of its own while the game
 * thread makes objects. The window is bounded in packages and in bytes. Threads start with the first package that is taken.
 */
class FParseAhead
{
public:
	/** Gives the files to come, in order, with PackageName set; empty at the end. Called on the game thread. */
	using FNextFile = std::function<TOptional<FPackageFile>()>;
	/** Whether the package is not needed any more because it has been loaded another way. Called on the game thread. */
	using FIsSettled = std::function<bool(FName PackageName)>;

	FParseAhead(FNextFile InNextFile, FIsSettled InIsSettled) : NextFile(std::move(InNextFile)), IsSettled(std::move(InIsSettled))
	{
	}
	~FParseAhead();

	/** The parsed file of a package, waiting for it if need be; null for a package that is not in the window. Game thread. */
	TUniquePtr<FPackageText> Take(FName PackageName);
	/** Gives back what Take gave, so that its buffers are used again. Game thread. */
	void Recycle(TUniquePtr<FPackageText> Text);

private:
	enum class EState : uint8
	{
		Waiting,
		Working,
		Ready,
		Dropped,
	};
	struct FSlot
	{
		FName PackageName;
		TUniquePtr<FPackageText> Text;
		EState State = EState::Waiting;
		std::exception_ptr Failure; // of parsing, for the thread that takes the slot
	};
	using FSlotPtr = std::shared_ptr<FSlot>; // a thread may work on a slot that is in the window no more

	void Fill();
	std::size_t DropSettled();
	FSlotPtr MakeSlot(FPackageFile File);
	void StartThreads();
	void RunWorker(std::stop_token Stop);
	/** A waiting slot, as long as what is ready leaves room; null otherwise. */
	FSlotPtr FindWork() const;
	void Work(std::unique_lock<std::mutex>& Guard, FSlot& Slot);
	void Drop(FSlot& Slot);

	const FNextFile NextFile;
	const FIsSettled IsSettled;
	bool bAtEnd = false;
	std::vector<TUniquePtr<FPackageText>> Spare;
	std::mutex Lock;					   // guards what follows, down to the threads
	std::condition_variable_any WorkAdded; // for the threads
	std::condition_variable SlotReady;	   // for the game thread
	std::deque<FSlotPtr> Window;		   // in the order in which they will be asked for
	std::size_t ReadyMemory = 0;
	std::vector<std::jthread> Threads; // last: they stop before the rest goes
};
