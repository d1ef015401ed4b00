#pragma once

#include "Core/Base/Assert.h"
#include "Core/Base/Types.h"

#include <algorithm>
#include <memory>
#include <tsl/ordered_map.h>
#include <tsl/ordered_set.h>
#include <utility>
#include <vector>

/** Contiguous, growing list. Counts and indices are int32, as everywhere in the engine. */
template <class T>
class TArray
{
public:
	TArray() = default;
	TArray(std::initializer_list<T> Items) : Data(Items) {}
	explicit TArray(std::vector<T> Items) : Data(std::move(Items)) {}

	int32 Num() const { return static_cast<int32>(Data.size()); }
	bool IsEmpty() const { return Data.empty(); }
	bool IsValidIndex(int32 Index) const { return Index >= 0 && Index < Num(); }

	decltype(auto) operator[](int32 Index)
	{
		checkf(IsValidIndex(Index), "array index out of range");
		return Data[static_cast<std::size_t>(Index)];
	}
	decltype(auto) operator[](int32 Index) const
	{
		checkf(IsValidIndex(Index), "array index out of range");
		return Data[static_cast<std::size_t>(Index)];
	}
	T& Last() { return (*this)[Num() - 1]; }
	const T& Last() const { return (*this)[Num() - 1]; }
	T* GetData() { return Data.data(); }
	const T* GetData() const { return Data.data(); }

	int32 Add(T Item)
	{
		Data.push_back(std::move(Item));
		return Num() - 1;
	}
	template <class... TArgs>
	T& Emplace_GetRef(TArgs&&... Args)
	{
		return Data.emplace_back(std::forward<TArgs>(Args)...);
	}
	void Append(const TArray& Other) { Data.insert(Data.end(), Other.Data.begin(), Other.Data.end()); }
	void RemoveAt(int32 Index) { Data.erase(Data.begin() + Index); }
	template <class TPredicate>
	void RemoveAll(TPredicate Predicate)
	{
		std::erase_if(Data, Predicate);
	}
	T Pop()
	{
		T Item = std::move(Last());
		Data.pop_back();
		return Item;
	}

	void Reserve(int32 Count) { Data.reserve(static_cast<std::size_t>(Count)); }
	void SetNum(int32 Count) { Data.resize(static_cast<std::size_t>(Count)); }
	/** Empties the list and frees its storage. */
	void Empty() { std::vector<T>().swap(Data); }
	/** Empties the list and keeps its storage. */
	void Reset() { Data.clear(); }

	bool Contains(const T& Item) const { return std::find(Data.begin(), Data.end(), Item) != Data.end(); }
	template <class TPredicate>
	bool ContainsByPredicate(TPredicate Predicate) const
	{
		return std::any_of(Data.begin(), Data.end(), Predicate);
	}
	template <class TPredicate>
	const T* FindByPredicate(TPredicate Predicate) const
	{
		const auto Found = std::find_if(Data.begin(), Data.end(), Predicate);
		return Found == Data.end() ? nullptr : &*Found;
	}
	template <class TPredicate>
	T* FindByPredicate(TPredicate Predicate)
	{
		const auto Found = std::find_if(Data.begin(), Data.end(), Predicate);
		return Found == Data.end() ? nullptr : &*Found;
	}
	template <class TLess>
	void Sort(TLess Less)
	{
		std::sort(Data.begin(), Data.end(), Less);
	}
	template <class TLess>
	void StableSort(TLess Less)
	{
		std::stable_sort(Data.begin(), Data.end(), Less);
	}

	auto begin() { return Data.begin(); }
	auto end() { return Data.end(); }
	auto begin() const { return Data.begin(); }
	auto end() const { return Data.end(); }
	friend bool operator==(const TArray& A, const TArray& B) { return A.Data == B.Data; }

private:
	std::vector<T> Data;
};

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

/** Thread-safe reference count. */
template <class T>
using TSharedPtr = std::shared_ptr<T>;
template <class T>
using TWeakPtr = std::weak_ptr<T>;
template <class T>
using TUniquePtr = std::unique_ptr<T>;

template <class T, class... TArgs>
TSharedPtr<T> MakeShared(TArgs&&... Args)
{
	return std::make_shared<T>(std::forward<TArgs>(Args)...);
}
template <class T, class... TArgs>
TUniquePtr<T> MakeUnique(TArgs&&... Args)
{
	return std::make_unique<T>(std::forward<TArgs>(Args)...);
}
