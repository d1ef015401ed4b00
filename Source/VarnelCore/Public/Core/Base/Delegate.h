#pragma once

#include "Core/Base/Assert.h"

#include <memory>
#include <type_traits>
#include <utility>

template <class TSignature>
class TDelegate;

/**
 * Single-cast callback. Copies share the bound callable, which may itself be move-only. The delegate may be copied and destroyed
 * on any thread; what Execute needs is the callable's affair.
 */
template <class TResult, class... TArgs>
class TDelegate<TResult(TArgs...)>
{
public:
	TDelegate() = default;
	template <class TCallable>
	requires(!std::is_same_v<std::remove_cvref_t<TCallable>, TDelegate> && std::is_invocable_r_v<TResult, TCallable&, TArgs...>)
		TDelegate(TCallable&& Callable)
		: Bound(std::make_shared<TBound<std::decay_t<TCallable>>>(std::forward<TCallable>(Callable)))
	{
	}

	bool IsBound() const { return Bound != nullptr; }
	void Unbind() { Bound.reset(); }
	TResult Execute(TArgs... Args) const
	{
		checkf(IsBound(), "executing a delegate that is not bound");
		return Bound->Call(std::forward<TArgs>(Args)...);
	}
	bool ExecuteIfBound(TArgs... Args) const
	{
		if (!Bound)
			return false;
		Bound->Call(std::forward<TArgs>(Args)...);
		return true;
	}

private:
	struct IBound
	{
		virtual ~IBound() = default;
		virtual TResult Call(TArgs... Args) = 0;
	};
	template <class TCallable>
	struct TBound final : IBound
	{
		template <class TFrom>
		explicit TBound(TFrom&& From) : Callable(std::forward<TFrom>(From))
		{
		}
		TResult Call(TArgs... Args) override { return Callable(std::forward<TArgs>(Args)...); }
		TCallable Callable;
	};
	std::shared_ptr<IBound> Bound;
};
