#pragma once

#include "Core/Base/Containers.h"

class FProperty;

/** How an array's elements are held; lets one reader fill arrays of native classes and those that projects declare. Array points
 * to GetSize() raw bytes. */
class IArrayStorage
{
public:
	virtual ~IArrayStorage() = default;

	virtual int32 GetSize() const = 0;
	virtual int32 GetAlignment() const = 0;
	virtual void Initialize(void* Array) const = 0;
	virtual void Destroy(void* Array) const = 0;
	virtual void Copy(void* To, const void* From) const = 0;
	virtual int32 Num(const void* Array) const = 0;
	/** Valid until an element is added. */
	virtual const void* GetElement(const void* Array, int32 Index) const = 0;
	void* GetElement(void* Array, int32 Index) const
	{
		return const_cast<void*>(GetElement(static_cast<const void*>(Array), Index));
	}
	/** Empties the array and makes room for Capacity elements, the most that may be added until the next Reset. */
	virtual void Reset(void* Array, int32 Capacity) const = 0;
	/** Appends an element with its default value. */
	virtual void* AddDefaulted(void* Array) const = 0;
	virtual void RemoveLast(void* Array) const = 0;
};

/** TArray members of native classes and structures. */
template <class T>
class TNativeArrayStorage final : public IArrayStorage
{
	static_assert(!std::is_same_v<T, bool>, "arrays of bool have no addressable elements");

public:
	int32 GetSize() const override { return sizeof(TArray<T>); }
	int32 GetAlignment() const override { return alignof(TArray<T>); }
	void Initialize(void* Array) const override { new (Array) TArray<T>(); }
	void Destroy(void* Array) const override { Cast(Array).~TArray<T>(); }
	void Copy(void* To, const void* From) const override { Cast(To) = Cast(From); }
	int32 Num(const void* Array) const override { return Cast(Array).Num(); }
	using IArrayStorage::GetElement;
	const void* GetElement(const void* Array, int32 Index) const override { return &Cast(Array)[Index]; }
	void Reset(void* Array, int32 Capacity) const override
	{
		Cast(Array).Empty();
		Cast(Array).Reserve(Capacity);
	}
	void* AddDefaulted(void* Array) const override { return &Cast(Array).Emplace_GetRef(); }
	void RemoveLast(void* Array) const override { Cast(Array).RemoveAt(Cast(Array).Num() - 1); }

private:
	static TArray<T>& Cast(void* Array) { return *static_cast<TArray<T>*>(Array); }
	static const TArray<T>& Cast(const void* Array) { return *static_cast<const TArray<T>*>(Array); }
};

/** Array of elements whose type only a property knows; constructed and destroyed through FDynamicArrayStorage. */
struct FDynamicArray
{
	std::byte* Data = nullptr;
	int32 Num = 0;
	int32 Capacity = 0;
};

/** Arrays, sets and maps that projects declare. */
class FDynamicArrayStorage final : public IArrayStorage
{
public:
	/** Element must outlive the storage. */
	explicit FDynamicArrayStorage(const FProperty& InElement) : Element(InElement) {}

	int32 GetSize() const override { return sizeof(FDynamicArray); }
	int32 GetAlignment() const override { return alignof(FDynamicArray); }
	void Initialize(void* Array) const override;
	void Destroy(void* Array) const override;
	void Copy(void* To, const void* From) const override;
	int32 Num(const void* Array) const override;
	using IArrayStorage::GetElement;
	const void* GetElement(const void* Array, int32 Index) const override;
	void Reset(void* Array, int32 Capacity) const override;
	void* AddDefaulted(void* Array) const override;
	void RemoveLast(void* Array) const override;

private:
	const FProperty& Element;
};
