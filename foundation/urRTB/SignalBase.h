// The common base of all signals: connections and the iteration over them.
#pragma once

#include <cstddef>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Connection.h"
#include "foundation/urRTB/FunctionBase.h"

namespace urRTB {

/// The connections of one signal, in the order in which they were made.
///
/// Connecting and disconnecting take constant time; a signal without connections is one null pointer. A copied
/// signal starts without connections, and assigning leaves both sides alone, so that classes with signals copy.
/// Not thread-safe: a signal, its connections and their handles are used by one thread at a time.
class NX_API SignalBase {
public:
    /// Blocked connections count, ended ones do not.
    [[nodiscard]] bool hasConnections() const noexcept;
    /// Takes time in proportion to the connections.
    [[nodiscard]] std::size_t connectionCount() const noexcept;
    /// Includes blocked connections, not ended ones; in the order in which they were made.
    [[nodiscard]] ur::vector<Connection> connections() const;
    /// No callback connected now is called again, not even by an emission under way.
    void disconnectAll() noexcept;

protected:
    SignalBase() noexcept = default;
    SignalBase(SignalBase const& /*other*/) noexcept {}
    SignalBase& operator=(SignalBase const&) noexcept { return *this; }  // NOLINT(bugprone-unhandled-self-assignment)
    ~SignalBase() {
        if (first_) detachAll();
    }

    /// Takes ownership of `function`, which no signal owns yet. Null returns an empty handle.
    Connection add(FunctionBase* function) noexcept;
    [[nodiscard]] bool idle() const noexcept { return first_ == nullptr; }

    /// The walk of one emission over the callbacks that are connected when it begins.
    ///
    /// Holds the locks of the callback it stands on and of the last one. Both thus stay in the ring whatever
    /// happens to their connections or to the signal, and callbacks added on the way come after the last.
    class Walk {
    public:
        /// Requires: the signal is not idle.
        explicit Walk(SignalBase const& signal) noexcept : current_(signal.first_), last_(current_->previous_) {
            last_->lock();
        }
        Walk(Walk const&) = delete;
        Walk& operator=(Walk const&) = delete;
        ~Walk() {
            if (entered_ && current_->unlock()) current_->leave();
            if (last_->unlock()) last_->leave();
        }

        /// Takes the lock of the callback come to. False when it is removed or blocked.
        bool enter() noexcept {
            entered_ = current_->callable();
            if (entered_) current_->lock();
            return entered_;
        }
        [[nodiscard]] FunctionBase& function() const noexcept { return *current_; }
        /// Drops that lock and goes on to the next callback. False after the last one.
        bool advance() noexcept {
            bool const more = current_ != last_;
            bool const leaves = std::exchange(entered_, false) && current_->unlock();
            current_ = leaves ? current_->leaveForNext() : current_->next_;
            return more;
        }

    private:
        FunctionBase* current_;
        FunctionBase* last_;
        bool entered_ = false;
    };

    /// The walk of one emission that reads the connections as it goes, to the end that they have by then.
    ///
    /// Holds the lock of the callback it stands on, which thus stays in the ring.
    class OpenWalk {
    public:
        /// Requires: the signal is not idle.
        explicit OpenWalk(SignalBase const& signal) noexcept : current_(signal.first_) { current_->lock(); }
        OpenWalk(OpenWalk const&) = delete;
        OpenWalk& operator=(OpenWalk const&) = delete;
        ~OpenWalk() { moveTo(nullptr); }

        /// False when the callback is removed or blocked.
        [[nodiscard]] bool enter() const noexcept { return current_->callable(); }
        [[nodiscard]] FunctionBase& function() const noexcept { return *current_; }
        /// False after the newest connection, and when the signal has gone.
        bool advance() noexcept {
            SignalBase const* const signal = current_->signal_;
            FunctionBase* const next = current_->next_;
            moveTo(signal && next != signal->first_ ? next : nullptr);
            return current_ != nullptr;
        }

    private:
        void moveTo(FunctionBase* next) noexcept {
            if (next) next->lock();
            FunctionBase* const left = std::exchange(current_, next);
            if (left && left->unlock()) left->leave();
        }

        FunctionBase* current_;
    };

private:
    friend class FunctionBase;

    FunctionBase* takeEnded() noexcept;
    void detachAll() noexcept;

    FunctionBase* first_ = nullptr;
};

}  // namespace urRTB
