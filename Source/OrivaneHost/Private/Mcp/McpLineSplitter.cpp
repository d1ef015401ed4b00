#include "Mcp/McpLineSplitter.h"

#include "Mcp/McpStdio.h"

#include <utility>

void FMcpLineSplitter::Append(std::string_view Bytes, IMcpLineHandler& Handler)
{
	for (std::size_t End = Bytes.find('\n'); End != std::string_view::npos; End = Bytes.find('\n'))
	{
		AppendToLine(Bytes.substr(0, End), Handler);
		Finish(Handler);
		Bytes.remove_prefix(End + 1);
	}
	AppendToLine(Bytes, Handler);
}

void FMcpLineSplitter::AppendToLine(std::string_view Bytes, IMcpLineHandler& Handler)
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

void FMcpLineSplitter::Finish(IMcpLineHandler& Handler)
{
	constexpr std::size_t MaxKeptCapacity = 1 << 20; // the memory of longer lines is given back
	if (!std::exchange(bSkipping, false) && !Line.empty())
		Handler.HandleLine(Line);
	Line.clear();
	if (Line.capacity() > MaxKeptCapacity)
		Line.shrink_to_fit();
}
