#pragma once

#include "Core/Base/Assert.h"
#include "Core/Base/Types.h"

#include <algorithm>
#include <memory>
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

/** Thread-safe reference count. */
template <class T>
using TSharedPtr = std::shared_ptr<T>;
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
