#include "Terminal/InputLines.h"

#include "Terminal/Terminal.h"

#include <cerrno>
#include <cstring>

bool ReadInputLines(FStringView Command, std::size_t MaxLineBytes, ILineHandler& Handler, const std::function<bool()>& IsOver)
{
	FLineSplitter Lines(MaxLineBytes);
	char Buffer[65536];
	int64 NumRead = 0;
	while (!IsOver() && (NumRead = Terminal::ReadInput(Buffer, sizeof Buffer)) > 0)
		Lines.Append({Buffer, static_cast<std::size_t>(NumRead)}, Handler);
	const FString Error = NumRead < 0 ? FString(std::strerror(errno)) : FString();
	Lines.Finish(Handler);
	if (Error.IsEmpty() || Interrupt::IsRequested())
		return true;
	Terminal::PrintError(FString("orivane ") + Command + ": cannot read standard input: " + Error + "\n");
	return false;
}
