#pragma once

#include <gtest/gtest.h>
#include <optional>
#include <source_location>
#include <span>
#include <string>

/** A row of a table. */
template <class TGiven = const char*, class TExpected = const char*>
struct TCase
{
	const char* Why;
	TGiven Given;
	TExpected Expected;
};

/** Walks the rows of a table; failures name the row that is looked at. */
template <class TRow>
class TTracedIterator
{
public:
	TTracedIterator(const TRow* InRow, const std::source_location& InPlace) : Row(InRow), Place(InPlace) {}
	const TRow& operator*()
	{
		Trace.emplace(Place.file_name(), static_cast<int>(Place.line()), std::string(Row->Why));
		return *Row;
	}
	void operator++()
	{
		Trace.reset();
		++Row;
	}
	bool operator!=(const TRow* End) const { return Row != End; }

private:
	const TRow* Row;
	std::source_location Place;
	std::optional<testing::ScopedTrace> Trace;
};

/** For `for (const auto& Case : Traced(Cases))`: what fails inside the loop is told with the Why of its row. The table must
 * outlive the loop. */
template <class TRow>
class Traced
{
public:
	explicit Traced(std::span<const TRow> InRows, const std::source_location& InPlace = std::source_location::current())
		: Rows(InRows)
		, Place(InPlace)
	{
	}
	TTracedIterator<TRow> begin() const { return {Rows.data(), Place}; }
	const TRow* end() const { return Rows.data() + Rows.size(); }

private:
	std::span<const TRow> Rows;
	std::source_location Place;
};
template <class TTable>
Traced(const TTable&, const std::source_location& = {}) -> Traced<std::ranges::range_value_t<TTable>>;
