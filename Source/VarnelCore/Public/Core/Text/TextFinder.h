#pragma once

#include "Core/Base/Types.h"

#include <memory>
#include <string_view>

class FPreparedNeedle;

/** Vector instructions that a search may use; the processor's own limit always holds. */
enum class EVectorWidth : uint8
{
	None,
	Bits128,
	Bits256,
	Bits512,
};

/**
 * One needle, prepared once, looked for in many texts. Texts are searched as they lie, without a folded copy.
 * Immutable after construction; copies are cheap; may be shared by threads. The time of a search grows with the length of the
 * text and not with that of the needle.
 */
class FTextFinder
{
public:
	/**
	 * Needle is copied. An empty one is found everywhere, an ill-formed one nowhere when case is ignored. Widest is there to
	 * compare implementations.
	 */
	FTextFinder(std::string_view Needle, ESearchCase Case, EVectorWidth Widest = EVectorWidth::Bits512);

	bool IsFoundIn(std::string_view Text) const { return Find(Text) != std::string_view::npos; }
	/**
	 * Byte offset of the first occurrence at or after byte From, or npos. Text may hold ill-formed UTF-8, which matches nothing
	 * unless case matters and the same bytes were asked for.
	 */
	std::size_t Find(std::string_view Text, std::size_t From = 0) const;

private:
	std::shared_ptr<const FPreparedNeedle> Prepared;
};
