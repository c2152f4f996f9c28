// The bus that delivers life-cycle messages.
#pragma once

#include <concepts>
#include <memory>
#include <set>
#include <type_traits>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urString/CString.h"
#include "support/messaging/Priority.h"

namespace nxSupport {

/// Delivers life-cycle messages to the functions subscribed to their class, lowest priority first.
///
/// The host creates one and stores it in its call information; modules find it through `ci()`. Subscribers of equal
/// priority share one signal and run in the order in which they connected. Main thread only. A subscriber may connect,
/// disconnect, broadcast or destroy the broadcaster while it runs. A subscriber connected meanwhile is called by the
/// same broadcast if its priority is the current one or comes later. So a broadcast never ends if its subscribers each
/// connect another one at their own priority.
class NX_API Broadcaster {
public:
    using Priority = nxSupport::Priority;
    using UnitID = nxSupport::UnitID;
    using ModuleID = nxSupport::ModuleID;

    /// Base class of messages. The sender creates a message and destroys it after the broadcast.
    class NX_API Message {
    public:
        Message() noexcept = default;
        Message(Message const&) noexcept = default;
        Message& operator=(Message const&) noexcept = default;
        virtual ~Message();
    };

    /// The subscribers of one message class at one priority.
    class NX_API SigBase {
    public:
        explicit SigBase(Priority const& priority) noexcept : priority_(priority) {}
        SigBase(SigBase const&) noexcept = default;
        SigBase& operator=(SigBase const&) = delete;
        virtual ~SigBase();

        [[nodiscard]] Priority const& priority() const noexcept { return priority_; }

    private:
        Priority priority_;
    };
    /// The same with the signal that calls them.
    template <class T>
    class Sig final : public SigBase {
    public:
        using SigBase::SigBase;

        urRTB::Signal<T&> signal;
    };

    /// A subscriber, as reported by `listeners`.
    struct Listener {
        ur::TypeInfo message;
        Priority priority;
        urString::CString name;  ///< the function's symbol or the callable's class, if known
        bool blocked = false;
    };

    Broadcaster() noexcept = default;
    Broadcaster(Broadcaster const&) = delete;
    Broadcaster& operator=(Broadcaster const&) = delete;
    /// Disconnects every subscriber, then sets the first-time flags to true.
    virtual ~Broadcaster();

    /// Subscribes a plain function to messages of class T until it is disconnected. A null function is ignored.
    template <class T>
    urRTB::Connection connect(Priority const& priority, void (*function)(T&)) {
        return sigFor<T>(priority).addCallback(function);
    }
    /// Subscribes any callable that takes a T&, for as long as the result lives.
    template <class T, class F>
    [[nodiscard]] urRTB::ScopedConnection subscribe(Priority const& priority, F&& callable) {
        return sigFor<T>(priority).addCallback(std::forward<F>(callable));
    }
    /// Calls every subscriber of T. An exception from a subscriber is passed on at once; later ones are not called.
    template <class T>
    void broadcast(T& message);
    template <class T>
    requires(!std::is_lvalue_reference_v<T>) void broadcast(T&& message) { broadcast(static_cast<T&>(message)); }
    /// The signal of T at that priority, created if necessary. It lives as long as the broadcaster.
    template <class T>
    urRTB::Signal<T&>& sigFor(Priority const& priority);

    /// Sets `*flag` to true when the broadcaster is destroyed. Adding an address again has no effect.
    void addFirstTimeFlag(bool* flag) { firstTimeFlags_.insert(flag); }

    /// All subscribers, grouped by message class and in the order of delivery. For diagnosis.
    [[nodiscard]] ur::vector<Listener> listeners() const;

private:
    using Sigs = ur::list<std::unique_ptr<SigBase>>;

    /// The data of one message class. It stays at its address until the broadcaster is destroyed.
    struct Channel {
        Sigs sigs;  ///< of this class, by ascending priority, one for each
        urRTB::SignalBase const& (*signal)(SigBase const&) = nullptr;
    };

    /// A running broadcast. It is notified when the broadcaster is destroyed.
    class Delivery {
    public:
        explicit Delivery(Broadcaster& broadcaster) noexcept
            : broadcaster_(&broadcaster), outer_(std::exchange(broadcaster.delivery_, this)) {}
        Delivery(Delivery const&) = delete;
        Delivery& operator=(Delivery const&) = delete;
        ~Delivery() {
            if (broadcaster_) broadcaster_->delivery_ = outer_;
        }
        [[nodiscard]] bool cancelled() const noexcept { return !broadcaster_; }
        /// Cancels this broadcast and those around it.
        void cancel() noexcept {
            for (Delivery* delivery = this; delivery; delivery = delivery->outer_) delivery->broadcaster_ = nullptr;
        }

    private:
        Broadcaster* broadcaster_;
        Delivery* outer_;
    };

    Channel& channel(ur::TypeInfo message);
    template <class T>
    Channel& channelOf();

    ur::map<ur::TypeInfo, std::unique_ptr<Channel>> channels_;
    std::set<bool*> firstTimeFlags_;
    Delivery* delivery_ = nullptr;  ///< the innermost broadcast
};

template <class T>
Broadcaster::Channel& Broadcaster::channelOf() {
    static_assert(!std::is_const_v<T>, "messages are not constant: take a T& and broadcast one");
    static_assert(std::derived_from<T, Message>, "messages derive from nxSupport::Broadcaster::Message");
    Channel& result = channel(ur::TypeInfo::of<T>());
    result.signal = [](SigBase const& sig) -> urRTB::SignalBase const& {
        return static_cast<Sig<T> const&>(sig).signal;
    };
    return result;
}

template <class T>
urRTB::Signal<T&>& Broadcaster::sigFor(Priority const& priority) {
    Sigs& sigs = channelOf<T>().sigs;
    auto place = sigs.begin();
    while (place != sigs.end() && (*place)->priority() < priority) ++place;
    if (place == sigs.end() || (*place)->priority() != priority)
        place = sigs.insert(place, std::make_unique<Sig<T>>(priority));
    return static_cast<Sig<T>&>(**place).signal;
}

template <class T>
void Broadcaster::broadcast(T& message) {
    Delivery const delivery(*this);
    for (auto const& sig : channelOf<T>().sigs) {
        static_cast<Sig<T>&>(*sig).signal.emitOpenly(message);
        if (delivery.cancelled()) return;
    }
}

}  // namespace nxSupport
