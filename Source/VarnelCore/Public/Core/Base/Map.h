#pragma once

#include "Core/Base/KeyHash.h"
#include "Core/Base/Types.h"

#include <initializer_list>
#include <tsl/ordered_map.h>
#include <tsl/ordered_set.h>
#include <utility>

/** Map that lists its entries in the order in which their keys were first added. */
template <class TKey, class TValue>
class TMap
{
public:
	int32 Num() const { return static_cast<int32>(Data.size()); }
	bool IsEmpty() const { return Data.empty(); }
	/** Adds or replaces; a replaced value keeps its place. */
	TValue& Add(TKey Key, TValue Value) { return Data.insert_or_assign(std::move(Key), std::move(Value)).first.value(); }
	TValue& FindOrAdd(const TKey& Key) { return Data[Key]; }
	TValue* Find(const TKey& Key)
	{
		auto Found = Data.find(Key);
		return Found == Data.end() ? nullptr : &Found.value();
	}
	const TValue* Find(const TKey& Key) const
	{
		const auto Found = Data.find(Key);
		return Found == Data.end() ? nullptr : &Found->second;
	}
	bool Contains(const TKey& Key) const { return Data.find(Key) != Data.end(); }
	/** Keeps the order of the others; linear in their number. */
	bool Remove(const TKey& Key) { return Data.erase(Key) != 0; }
	void Empty() { Data.clear(); }
	void Reserve(int32 Count) { Data.reserve(static_cast<std::size_t>(Count)); }

	/** Pairs {first: key, second: value}. */
	auto begin() const { return Data.begin(); }
	auto end() const { return Data.end(); }

private:
	tsl::ordered_map<TKey, TValue, FKeyHash> Data;
};

/** Set that lists its elements in the order in which they were first added. */
template <class TKey>
class TSet
{
public:
	TSet() = default;
	TSet(std::initializer_list<TKey> Items) : Data(Items) {}
	int32 Num() const { return static_cast<int32>(Data.size()); }
	bool IsEmpty() const { return Data.empty(); }
	/** True when the element is new. */
	bool Add(TKey Key) { return Data.insert(std::move(Key)).second; }
	bool Contains(const TKey& Key) const { return Data.find(Key) != Data.end(); }
	void Empty() { Data.clear(); }
	auto begin() const { return Data.begin(); }
	auto end() const { return Data.end(); }

private:
	tsl::ordered_set<TKey, FKeyHash> Data;
};
