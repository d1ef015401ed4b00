#include "Packages/ParseAhead.h"

#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"

#include <algorithm>
#include <system_error>

namespace
{
constexpr std::size_t MaxSlots = 128;
constexpr std::size_t MinSlots = MaxSlots / 2;	 // fewer are filled up; threads then find many at once and seldom sleep
constexpr std::size_t MaxReadyMemory = 64 << 20; // of files that are parsed and wait; beyond it threads pause
constexpr std::size_t MaxSpareMemory = 1 << 20;	 // larger buffers are not kept for reuse
constexpr int32 MaxThreads = 15;
}

FParseAhead::~FParseAhead()
{
	for (std::jthread& Thread : Threads)
		Thread.request_stop();
}

TUniquePtr<FPackageText> FParseAhead::Take(FName PackageName)
{
	Fill();
	std::unique_lock Guard(Lock);
	const auto Found = std::find_if(
		Window.begin(), Window.end(), [PackageName](const FSlotPtr& Slot) { return Slot->PackageName == PackageName; });
	if (Found == Window.end())
		return nullptr;
	const FSlotPtr Slot = *Found;
	Window.erase(Found);
	if (Slot->State == EState::Waiting)
		Work(Guard, *Slot);
	while (Slot->State != EState::Ready)
	{
		const FSlotPtr Other = IsStopRequested() ? nullptr : FindWork();
		if (Other) // rather than stand by
			Work(Guard, *Other);
		else
			SlotReady.wait(Guard, [&Slot] { return Slot->State == EState::Ready; });
	}
	Drop(*Slot);
	if (Slot->Failure)
		std::rethrow_exception(Slot->Failure);
	return std::move(Slot->Text);
}

void FParseAhead::Recycle(TUniquePtr<FPackageText> Text)
{
	if (Text && Spare.size() < MaxSlots && Text->GetMemory() <= MaxSpareMemory)
		Spare.push_back(std::move(Text));
}

/** Makes room for packages to come, finds their files, and lets the threads know. */
void FParseAhead::Fill()
{
	const std::size_t NumInWindow = DropSettled();
	if (bAtEnd || NumInWindow > MinSlots)
		return;
	std::vector<FSlotPtr> Added;
	while (NumInWindow + Added.size() < MaxSlots)
	{
		TOptional<FPackageFile> File = NextFile();
		bAtEnd = !File;
		if (!File)
			break;
		Added.push_back(MakeSlot(std::move(*File)));
	}
	{
		const std::lock_guard Guard(Lock);
		Window.insert(Window.end(), Added.begin(), Added.end());
	}
	StartThreads();
	WorkAdded.notify_all();
}

/** Returns how many are left. */
std::size_t FParseAhead::DropSettled()
{
	const std::lock_guard Guard(Lock);
	while (!Window.empty() && IsSettled(Window.front()->PackageName))
	{
		Drop(*Window.front());
		Window.pop_front();
	}
	return Window.size();
}

FParseAhead::FSlotPtr FParseAhead::MakeSlot(FPackageFile File)
{
	const auto Slot = std::make_shared<FSlot>();
	Slot->PackageName = File.PackageName;
	if (Spare.empty())
	{
		Slot->Text = MakeUnique<FPackageText>(std::move(File));
		return Slot;
	}
	Slot->Text = std::move(Spare.back());
	Spare.pop_back();
	Slot->Text->SetFile(std::move(File));
	return Slot;
}

void FParseAhead::StartThreads()
{
	if (!Threads.empty())
		return;
	try
	{
		for (int32 Left = std::min(GetNumWorkers() - 1, MaxThreads); Left > 0; --Left)
			Threads.emplace_back([this](std::stop_token Stop) { RunWorker(Stop); });
	}
	catch (const std::system_error&) // does with fewer
	{
	}
}

void FParseAhead::RunWorker(std::stop_token Stop)
{
	std::unique_lock Guard(Lock);
	while (!Stop.stop_requested())
	{
		if (const FSlotPtr Slot = FindWork())
			Work(Guard, *Slot);
		else
			WorkAdded.wait(Guard, Stop, [this] { return FindWork() != nullptr; });
	}
}

FParseAhead::FSlotPtr FParseAhead::FindWork() const
{
	if (ReadyMemory >= MaxReadyMemory)
		return nullptr;
	const auto Found =
		std::find_if(Window.begin(), Window.end(), [](const FSlotPtr& Slot) { return Slot->State == EState::Waiting; });
	return Found == Window.end() ? nullptr : *Found;
}

/** Parses a waiting slot's file, without the lock meanwhile. */
void FParseAhead::Work(std::unique_lock<std::mutex>& Guard, FSlot& Slot)
{
	Slot.State = EState::Working;
	Guard.unlock();
	try
	{
		Slot.Text->ParseUnlessLarge();
	}
	catch (...)
	{
		Slot.Failure = std::current_exception();
	}
	Guard.lock();
	if (Slot.State == EState::Dropped)
		return;
	Slot.State = EState::Ready;
	ReadyMemory += Slot.Text->GetMemory();
	SlotReady.notify_one();
}

void FParseAhead::Drop(FSlot& Slot)
{
	const bool bHadRoom = ReadyMemory < MaxReadyMemory;
	if (Slot.State == EState::Ready)
		ReadyMemory -= Slot.Text->GetMemory();
	Slot.State = EState::Dropped;
	if (!bHadRoom && ReadyMemory < MaxReadyMemory)
		WorkAdded.notify_all();
}
