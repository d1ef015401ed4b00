#include "Core/Threads/RunnableThread.h"

#include <pthread.h>
#include <system_error>

namespace
{
constexpr std::size_t MaxSystemNameBytes = 15;

void NameThisThread(const FString& Name)
{
	const std::string Short(Name.View().substr(0, MaxSystemNameBytes));
	pthread_setname_np(pthread_self(), Short.c_str());
}
}

TSharedPtr<FRunnableThread> FRunnableThread::Create(FRunnable* Runnable, const FString& Name, uint32, int32, uint64, uint32)
{
	checkf(Runnable, "a thread needs something to run");
	try
	{
		return TSharedPtr<FRunnableThread>(new FRunnableThread(*Runnable, Name));
	}
	catch (const std::system_error&)
	{
		return nullptr;
	}
}

FRunnableThread::FRunnableThread(FRunnable& InRunnable, const FString& Name)
	: Runnable(InRunnable)
	, Thread(
		  [&InRunnable, Name]
		  {
			  NameThisThread(Name);
			  if (InRunnable.Init())
				  InRunnable.Run();
		  })
{
}

FRunnableThread::~FRunnableThread()
{
	if (!Thread.joinable())
		return;
	checkf(Thread.get_id() != std::this_thread::get_id(), "a thread cannot wait for its own end");
	Runnable.Stop();
	Thread.join();
}

void FRunnableThread::WaitForCompletion()
{
	if (Thread.joinable())
		Thread.join();
}
