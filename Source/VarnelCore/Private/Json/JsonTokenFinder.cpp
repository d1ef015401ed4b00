#include "Json/JsonTokenFinder.h"

#include <algorithm>
#include <simdjson.h>

// Its first stage is internal to the library, which may change it in any release. Look at stage1 and structural_indexes before
// this is raised; JsonDifferentialTests compare what comes out with another parser.
static_assert(simdjson::SIMDJSON_VERSION_MAJOR == 3 && simdjson::SIMDJSON_VERSION_MINOR == 0, "made for simdjson 3.0");

/**
 * Of the library only the vector search for tokens is used: its result is a list of offsets that one loop turns into nodes. The
 * library's own tree walkers neither give offsets nor report every fault.
 */
struct FJsonTokenFinder::FLibrary
{
	std::unique_ptr<simdjson::internal::dom_parser_implementation> Parser;
};

FJsonTokenFinder::FJsonTokenFinder() : Library(std::make_unique<FLibrary>())
{
}

FJsonTokenFinder::~FJsonTokenFinder() = default;

std::size_t FJsonTokenFinder::GetPadding()
{
	return simdjson::SIMDJSON_PADDING;
}

bool FJsonTokenFinder::Find(std::string_view Text, const uint32*& OutStarts, uint32& OutNum)
{
	auto& Parser = Library->Parser;
	if (!Parser && simdjson::get_active_implementation()->create_dom_parser_implementation(0, 1, Parser) != simdjson::SUCCESS)
		return false;
	const std::size_t Size = Text.size();
	const std::size_t Capacity = std::min(std::max(Size + 1, Parser->capacity() * 3 / 2), simdjson::SIMDJSON_MAXSIZE_BYTES);
	if (Parser->capacity() <= Size && Parser->allocate(Capacity, 1) != simdjson::SUCCESS)
		return false;
	const auto* const Bytes = reinterpret_cast<const uint8_t*>(Text.data());
	if (Parser->stage1(Bytes, Size, simdjson::stage1_mode::regular) != simdjson::SUCCESS)
		return false;
	Parser->structural_indexes[Parser->n_structural_indexes] = static_cast<uint32>(Size);
	OutStarts = Parser->structural_indexes.get();
	OutNum = Parser->n_structural_indexes;
	return true;
}

std::size_t FJsonTokenFinder::GetNumBytes() const
{
	return Library->Parser ? Library->Parser->capacity() * sizeof(uint32) : 0;
}
