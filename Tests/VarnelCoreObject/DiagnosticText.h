#pragma once

#include "Core/Program/Diagnostics.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

/** One fault a line: "2:5 error bad-name"; faults of a whole file as "~ error too-large". */
inline std::string RenderFaults(const FDiagnosticSink& Sink)
{
	std::string Out;
	for (const FDiagnostic& Fault : Sink.GetSorted())
	{
		Out += Out.empty() ? "" : "\n";
		Out += Fault.Line > 0 ? std::to_string(Fault.Line) + ":" + std::to_string(Fault.Column) : "~";
		Out += std::string(Fault.Severity == EDiagnosticSeverity::Error ? " error " : " warning ") + *Fault.Rule;
	}
	return Out;
}

/** The text of a file in which a "^" stands before every place where a fault is expected. */
class FMarkedText
{
public:
	explicit FMarkedText(const std::string& Marked)
	{
		for (const char Character : Marked)
		{
			if (Character == '^')
				Places.push_back(PlaceOfEnd());
			else
				Text += Character;
		}
	}

	const std::string& GetText() const { return Text; }
	/** Faults such as "error bad-name", one a line, with their places: the marks in order. Faults without a place begin with "~"
	 * and take none. */
	std::string Place(const std::string& Faults) const
	{
		std::string Out;
		std::istringstream Lines(Faults);
		auto Next = Places.begin();
		for (std::string Line; std::getline(Lines, Line);)
		{
			Out += Out.empty() ? "" : "\n";
			if (Line.starts_with("error") || Line.starts_with("warning"))
				Out += (Next == Places.end() ? "no mark left for" : *Next++) + " ";
			Out += Line;
		}
		return Next == Places.end() ? Out : Out + "\na mark too many at " + *Next;
	}

private:
	std::string PlaceOfEnd() const
	{
		const std::string Line = Text.substr(Text.rfind('\n') + 1); // npos + 1 is the start
		const auto Column = 1 + std::count_if(Line.begin(), Line.end(), [](char Byte) { return (Byte & 0xC0) != 0x80; });
		return std::to_string(1 + std::count(Text.begin(), Text.end(), '\n')) + ":" + std::to_string(Column);
	}

	std::string Text;
	std::vector<std::string> Places;
};
