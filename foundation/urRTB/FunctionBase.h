// The callback object of a signal, and its node in the signal's connections.
#pragma once

#include <cstdint>
#include <string>

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"

namespace urRTB {

class SignalBase;

/// One callback of one signal: created with `new`, passed to the signal's `addCallback`, owned by the signal.
///
/// Connected callbacks form a ring in connection order. An emission locks the callback that it runs: a callback removed
/// meanwhile is never called again but keeps its place until its last lock is released, so the emission can continue
/// from it. Handles (`Connection`) keep the object alive, not the connection. Belongs to the thread that uses its
/// signal.
class NX_API FunctionBase : public ur::ReferenceCount {
public:
    FunctionBase(FunctionBase const&) = delete;
    FunctionBase& operator=(FunctionBase const&) = delete;
    ~FunctionBase() override;

protected:
    FunctionBase() noexcept = default;

private:
    friend class SignalBase;
    friend class Connection;

    /// A description of the callback: see `Connection::describe`.
    [[nodiscard]] virtual std::string onDescribe() const;
    /// The connection has ended and the callback is not running: frees its captures. Called once.
    virtual void onDisconnected() noexcept;

    [[nodiscard]] bool connected() const noexcept { return (silence_ & removed) == 0; }
    [[nodiscard]] bool blocked() const noexcept { return (silence_ & ~removed) != 0; }
    [[nodiscard]] bool callable() const noexcept { return silence_ == 0; }
    void lock() noexcept { ++locks_; }
    /// Releases a lock. True when it was the last, so that the callback must leave.
    [[nodiscard]] bool unlock() noexcept { return --locks_ == 0; }

    void join(SignalBase& signal) noexcept;
    void disconnect() noexcept;
    void leave() noexcept;
    FunctionBase* leaveForNext() noexcept;
    void unlink() noexcept;
    void end() noexcept;

    static constexpr std::uint32_t removed = 1U << 31;

    std::uint32_t silence_ = removed;  ///< number of active blocks; `removed` before and after the connection
    std::uint32_t locks_ = 0;          ///< one for the connection, one per emission that needs the place
    SignalBase* signal_ = nullptr;     ///< null once the signal has released all its connections
    FunctionBase* next_ = this;
    FunctionBase* previous_ = this;
};

}  // namespace urRTB
