// A signal that calls its connected callbacks.
#pragma once

#include <concepts>
#include <functional>
#include <type_traits>
#include <utility>

#include "foundation/urRTB/Function.h"
#include "foundation/urRTB/SignalBase.h"
#include "foundation/urRTB/SignalClient.h"

namespace urRTB {

/// Calls its callbacks with the given arguments, in the order in which they were connected.
///
/// `Signal<>` takes none, `Signal<A>` one, `Signal<A, B>` two. A callback may do anything while it runs: connect,
/// disconnect, block, emit again, destroy the signal or its own client, throw. An emission calls only callbacks
/// that were connected when it began, and skips those removed or blocked when their turn comes.
template <class... Args>
class Signal : public SignalBase {
public:
    /// An exception from a callback passes to the caller at once; later callbacks are not called.
    void emit(Passed<Args>... args) const { callAll<Walk>(args...); }

    /// As `emit`, but also calls the callbacks that are connected meanwhile. Ends when no more are.
    void emitOpenly(Passed<Args>... args) const { callAll<OpenWalk>(args...); }

    /// Takes over a callback made with `new`. Null connects nothing.
    Connection addCallback(Function<Args...>* function) noexcept { return add(function); }
    /// Null connects nothing.
    Connection addCallback(void (*function)(Args...)) {
        return function ? add(new FunctionGlobal<Args...>(function)) : Connection();
    }
    /// Keeps a copy of `callable` until the connection ends.
    template <Callback<Args...> F>
    Connection addCallback(F&& callable) {
        return add(new FunctionCallable<std::decay_t<F>, Args...>(std::forward<F>(callable)));
    }

    template <class F>
    requires(!Callback<F, Args...> && !std::convertible_to<F, Function<Args...>*> &&
             !std::convertible_to<F, void (*)(Args...)>) Connection addCallback(F&& /*callable*/) {
        static_assert(Callback<F, Args...>,
                      "a callback of this signal can be called with its arguments: Signal<A, B> calls callback(a, b)");
        return {};
    }

    /// As above, at most until `client` is destroyed.
    template <Callback<Args...> F>
    Connection addCallback(SignalClient& client, F&& callable) {
        return client.own(addCallback(std::forward<F>(callable)));
    }
    /// Calls a member function of `object`, at most until `client` is destroyed.
    template <class C, class Method>
    Connection addCallback(SignalClient& client, C* object, Method method) {
        return addCallback(client, [object, method](Passed<Args>... args) { std::invoke(method, object, args...); });
    }

private:
    template <class Walk>
    void callAll(Passed<Args>... args) const {
        if (idle()) return;
        Walk walk(*this);
        do {
            if (walk.enter()) static_cast<Function<Args...>&>(walk.function()).call(args...);
        } while (walk.advance());
    }
};

}  // namespace urRTB
