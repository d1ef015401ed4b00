#pragma once

#include "Core/Base/Types.h"

#include <algorithm>
#include <string_view>

/** The bytes that a kind of name must not hold: the control characters of ASCII and those given. */
class FRefusedBytes
{
public:
	constexpr explicit FRefusedBytes(std::string_view Characters)
	{
		for (std::size_t Byte = 0; Byte < 0x20; ++Byte)
			bRefused[Byte] = true;
		bRefused[0x7F] = true;
		for (const char Character : Characters)
			bRefused[static_cast<uint8>(Character)] = true;
	}
	bool AreIn(std::string_view Text) const
	{
		return std::any_of(Text.begin(), Text.end(), [this](char Character) { return bRefused[static_cast<uint8>(Character)]; });
	}

private:
	bool bRefused[256] = {};
};
