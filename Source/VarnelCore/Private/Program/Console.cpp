#include "Core/Program/Console.h"

#include "Core/Threads/Tasks.h"

#include <map>
#include <mutex>
#include <shared_mutex>

namespace
{
class FConsoleManager final : public IConsoleManager
{
public:
	TSharedPtr<const FConsoleCommand> RegisterConsoleCommand(
		FString Name, FString Help, FConsoleCommandWithArgsDelegate Run) override
	{
		const auto Command = MakeShared<const FConsoleCommand>(FConsoleCommand{std::move(Name), std::move(Help), std::move(Run)});
		const std::unique_lock Guard(Lock);
		Commands.erase(Command->Name); // the name may be spelt differently
		Commands.emplace(Command->Name, Command);
		return Command;
	}

	void UnregisterConsoleCommand(const TSharedPtr<const FConsoleCommand>& Command) override
	{
		if (!Command)
			return;
		const std::unique_lock Guard(Lock);
		const auto Found = Commands.find(Command->Name);
		if (Found != Commands.end() && Found->second == Command)
			Commands.erase(Found);
	}

	TSharedPtr<const FConsoleCommand> FindConsoleCommand(const FString& Name) const override
	{
		const std::shared_lock Guard(Lock);
		const auto Found = Commands.find(Name);
		return Found == Commands.end() ? nullptr : Found->second;
	}

	TArray<TSharedPtr<const FConsoleCommand>> GetConsoleCommands() const override
	{
		TArray<TSharedPtr<const FConsoleCommand>> InOrder;
		const std::shared_lock Guard(Lock);
		for (const auto& [Name, Command] : Commands)
			InOrder.Add(Command);
		return InOrder;
	}

private:
	mutable std::shared_mutex Lock;
	std::map<FString, TSharedPtr<const FConsoleCommand>> Commands; // order and equality of texts ignore case
};

bool IsBlank(char Character)
{
	return Character == ' ' || ('\t' <= Character && Character <= '\r');
}

/** Position after the word that starts at Start. */
std::size_t FindWordEnd(FStringView Line, std::size_t Start)
{
	bool bQuoted = false;
	std::size_t End = Start;
	for (; End < Line.size() && (bQuoted || !IsBlank(Line[End])); ++End)
		bQuoted ^= Line[End] == '"';
	return End;
}
}

IConsoleManager& IConsoleManager::Get()
{
	// Made at the first registration, before main too, and never destroyed: commands unregister themselves after main.
	static FConsoleManager& Manager = *new FConsoleManager;
	return Manager;
}

bool IConsoleManager::ProcessUserConsoleInput(FStringView Line) const
{
	checkGameThread();
	TArray<FString> Words = SplitWords(Line);
	const TSharedPtr<const FConsoleCommand> Command = Words.IsEmpty() ? nullptr : FindConsoleCommand(Words[0]);
	if (!Command)
		return false;
	Words.RemoveAt(0);
	Command->Run.ExecuteIfBound(Words);
	return true;
}

TArray<FString> IConsoleManager::SplitWords(FStringView Line)
{
	TArray<FString> Words;
	for (std::size_t At = 0; At < Line.size();)
	{
		if (IsBlank(Line[At]))
		{
			++At;
			continue;
		}
		const bool bQuoted = Line[At] == '"';
		const std::size_t Start = bQuoted ? At + 1 : At;
		const std::size_t End = bQuoted ? std::min(Line.find('"', Start), Line.size()) : FindWordEnd(Line, Start);
		Words.Add(Line.substr(Start, End - Start));
		At = bQuoted ? End + 1 : End;
	}
	return Words;
}
