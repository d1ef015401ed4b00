#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/Delegate.h"
#include "Core/Text/String.h"

/** Body of a console command, given the words after the command's name. Game thread. */
using FConsoleCommandWithArgsDelegate = TDelegate<void(const TArray<FString>& Args)>;

/** A command that can be typed at the console. Immutable. */
struct FConsoleCommand
{
	FString Name; // "Orivane.AssetSearch"
	FString Help;
	FConsoleCommandWithArgsDelegate Run;
};

/** Registered commands by name, without regard to case. Commands run on the game thread; all else may be called from any thread.
 */
class IConsoleManager
{
public:
	static IConsoleManager& Get();
	virtual ~IConsoleManager() = default;

	/** Makes the command known; a name that is taken gets the new command. What it returns is for UnregisterConsoleCommand. */
	virtual TSharedPtr<const FConsoleCommand> RegisterConsoleCommand(
		FString Name, FString Help, FConsoleCommandWithArgsDelegate Run) = 0;
	/** Harmless for a command whose name has got another one since, or none. A command that runs goes on. */
	virtual void UnregisterConsoleCommand(const TSharedPtr<const FConsoleCommand>& Command) = 0;
	/** Null when there is none. */
	virtual TSharedPtr<const FConsoleCommand> FindConsoleCommand(const FString& Name) const = 0;
	/** All commands, in ascending order of their names. */
	virtual TArray<TSharedPtr<const FConsoleCommand>> GetConsoleCommands() const = 0;

	/** Runs the command that the line's first word names, with the other words. False when it names none. Game thread. */
	bool ProcessUserConsoleInput(FStringView Line) const;
	/**
	 * Words between blanks. Double quotes keep blanks together: a word that starts with one reaches to the next one; in
	 * any other place they stay part of the word, so that term="two words" is one word, for its reader to unquote. A quote that
	 * nothing closes reaches to the line's end.
	 */
	static TArray<FString> SplitWords(FStringView Line);
};

/**
 * A command that registers itself for as long as the object lives. Made for objects that live in a file's namespace: these
 * register before main, in any order.
 */
class FAutoConsoleCommand
{
public:
	FAutoConsoleCommand(const char* Name, const char* Help, FConsoleCommandWithArgsDelegate Run)
		: Command(IConsoleManager::Get().RegisterConsoleCommand(Name, Help, std::move(Run)))
	{
	}
	~FAutoConsoleCommand() { IConsoleManager::Get().UnregisterConsoleCommand(Command); }
	FAutoConsoleCommand(const FAutoConsoleCommand&) = delete;
	FAutoConsoleCommand& operator=(const FAutoConsoleCommand&) = delete;

private:
	const TSharedPtr<const FConsoleCommand> Command;
};
