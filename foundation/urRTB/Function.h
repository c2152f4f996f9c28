// Callbacks of signals: plain functions and other callables.
#pragma once

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/functionName.h"
#include "foundation/urRTB/FunctionBase.h"

namespace urRTB {

/// The type that passes an argument of type A: A itself if a reference or a scalar, otherwise a const reference.
template <class A>
using Passed = std::conditional_t<std::is_reference_v<A> || std::is_scalar_v<A>, A, A const&>;

/// A callable that accepts the signal's arguments.
template <class F, class... Args>
concept Callback = std::invocable < std::decay_t<F>
&, Passed<Args>... > ;

/// A callback with the given arguments.
template <class... Args>
class Function : public FunctionBase {
public:
    virtual void call(Passed<Args>... args) = 0;
};

/// Calls a plain function.
template <class... Args>
class FunctionGlobal final : public Function<Args...> {
public:
    /// Requires: `function` is not null.
    explicit FunctionGlobal(void (*function)(Args...)) noexcept : function_(function) {}

    void call(Passed<Args>... args) override { function_(args...); }

private:
    [[nodiscard]] std::string onDescribe() const override {
        return ur::functionName(reinterpret_cast<void (*)()>(function_));
    }

    void (*function_)(Args...);
};

/// Calls a copy of any callable; the copy is destroyed as soon as the connection ends.
template <class F, class... Args>
class FunctionCallable final : public Function<Args...> {
public:
    explicit FunctionCallable(F callable) : callable_(std::move(callable)) {}

    void call(Passed<Args>... args) override { static_cast<void>(std::invoke(*callable_, args...)); }

private:
    [[nodiscard]] std::string onDescribe() const override { return ur::TypeInfo::of<F>().readableName(); }
    void onDisconnected() noexcept override { callable_.reset(); }

    std::optional<F> callable_;
};

template <class A>
using FunctionArg = Function<A>;
template <class A>
using FunctionArgGlobal = FunctionGlobal<A>;
template <class A, class B>
using Function2Args = Function<A, B>;
template <class A, class B>
using Function2ArgsGlobal = FunctionGlobal<A, B>;

}  // namespace urRTB
