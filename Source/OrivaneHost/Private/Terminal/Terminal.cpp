#include "Terminal/Terminal.h"

#include "Core/Text/Printable.h"
#include "Terminal/ExitCode.h"
#include "Terminal/WakePipe.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace
{
bool HasEnvironment(const char* Name)
{
	const char* Value = std::getenv(Name);
	return Value && *Value;
}

std::stop_source& GetStopSource()
{
	static std::stop_source& Source = *new std::stop_source; // outlives the thread that watches signals
	return Source;
}

FWakePipe* SignalPipe = nullptr; // signalled from the first request on
int OutputError = 0;
std::atomic<int> NumSignals = 0;

extern "C" void OnSignal(int)
{
	// A stop source takes a lock, which a signal handler must not; a thread behind a pipe does it.
	if (NumSignals.fetch_add(1) > 0)
		_exit(EExitCode::Interrupted);
	SignalPipe->Signal();
}

void WatchSignals()
{
	pollfd Poll{.fd = SignalPipe->GetDescriptor(), .events = POLLIN, .revents = 0};
	while (poll(&Poll, 1, -1) != 1)
	{
	}
	GetStopSource().request_stop();
}
}

bool Terminal::IsStdinTerminal()
{
	return isatty(STDIN_FILENO) != 0;
}

bool Terminal::IsStdoutTerminal()
{
	return isatty(STDOUT_FILENO) != 0;
}

bool Terminal::IsStderrTerminal()
{
	return isatty(STDERR_FILENO) != 0;
}

bool Terminal::UsesColor(EColor Color)
{
	if (Color != EColor::Auto)
		return Color == EColor::Always;
	if (HasEnvironment("NO_COLOR"))
		return false;
	const char* const Type = std::getenv("TERM");
	const bool bDumb = Type && std::string_view(Type) == "dumb";
	return HasEnvironment("CLICOLOR_FORCE") || (IsStdoutTerminal() && !bDumb);
}

int32 Terminal::GetWidth()
{
	winsize Size = {};
	return IsStdoutTerminal() && ioctl(STDOUT_FILENO, TIOCGWINSZ, &Size) == 0 ? int32{Size.ws_col} : 0;
}

void Terminal::FillClosedStreams()
{
	for (int Stream = STDIN_FILENO; Stream <= STDERR_FILENO; ++Stream)
	{
		if (fcntl(Stream, F_GETFD) >= 0)
			continue;
		const int Opened = open("/dev/null", Stream == STDERR_FILENO ? O_WRONLY : O_RDONLY); // the lowest number that is free
		if (Opened > Stream)
			close(Opened);
	}
}

bool Terminal::Print(FStringView Text)
{
	std::string Filtered;
	if (IsStdoutTerminal())
	{
		Filtered = Printable::FilterLaidOut(Text);
		Text = Filtered;
	}
	if (std::fwrite(Text.data(), 1, Text.size(), stdout) == Text.size() && std::fflush(stdout) == 0)
		return true;
	OutputError = OutputError == 0 ? errno : OutputError;
	return false;
}

int Terminal::GetOutputError()
{
	return OutputError;
}

int64 Terminal::ReadInput(char* Buffer, std::size_t MaxBytes)
{
	for (;;)
	{
		pollfd Polls[] = {{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
			{.fd = SignalPipe ? SignalPipe->GetDescriptor() : -1, .events = POLLIN, .revents = 0}};
		const int NumReady = poll(Polls, 2, -1);
		if (NumReady > 0 && Polls[1].revents != 0)
		{
			GetStopSource().request_stop(); // the thread that watches may come later
			errno = EINTR;
			return -1;
		}
		const ssize_t NumRead = NumReady > 0 ? read(STDIN_FILENO, Buffer, MaxBytes) : -1;
		if (NumRead >= 0 || (errno != EINTR && errno != EAGAIN))
			return NumRead;
	}
}

void Terminal::PrintError(FStringView Text)
{
	std::fwrite(Text.data(), 1, Text.size(), stderr);
}

FString Terminal::Sanitize(FStringView Text)
{
	std::string Out;
	Printable::Append(Out, Text);
	return FString(std::move(Out));
}

void Interrupt::Install()
{
	SignalPipe = new FWakePipe; // outlives the thread that watches it
	if (!SignalPipe->IsOpen())
		return;
	std::thread(WatchSignals).detach();
	std::signal(SIGINT, OnSignal);
	std::signal(SIGTERM, OnSignal);
	std::signal(SIGPIPE, SIG_IGN);
}

std::stop_token Interrupt::GetToken()
{
	return GetStopSource().get_token();
}

bool Interrupt::IsRequested()
{
	return GetStopSource().stop_requested();
}
