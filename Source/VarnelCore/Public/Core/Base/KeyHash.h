#pragma once

#include <cstddef>
#include <functional>

/** Hashes keys through the GetTypeHash found beside the key's type; texts therefore hash without regard to case. */
struct FKeyHash
{
	template <class TKey>
	std::size_t operator()(const TKey& Key) const
	{
		if constexpr (requires { GetTypeHash(Key); })
			return static_cast<std::size_t>(GetTypeHash(Key));
		else
			return std::hash<TKey>()(Key);
	}
};
