#include "Terminal/LineSplitter.h"

#include <utility>

void FLineSplitter::Append(std::string_view Bytes, ILineHandler& Handler)
{
	for (std::size_t End = Bytes.find('\n'); End != std::string_view::npos; End = Bytes.find('\n'))
	{
		AppendToLine(Bytes.substr(0, End), Handler);
		Finish(Handler);
		Bytes.remove_prefix(End + 1);
	}
	AppendToLine(Bytes, Handler);
}

void FLineSplitter::AppendToLine(std::string_view Bytes, ILineHandler& Handler)
{
	if (bSkipping)
		return;
	if (Bytes.size() <= MaxLineBytes - Line.size())
	{
		Line.append(Bytes);
		return;
	}
	bSkipping = true;
	std::string().swap(Line);
	Handler.HandleOverlongLine();
}

void FLineSplitter::Finish(ILineHandler& Handler)
{
	constexpr std::size_t MaxKeptCapacity = 1 << 20; // the memory of longer lines is given back
	if (!std::exchange(bSkipping, false) && !Line.empty())
		Handler.HandleLine(Line);
	Line.clear();
	if (Line.capacity() > MaxKeptCapacity)
		Line.shrink_to_fit();
}
