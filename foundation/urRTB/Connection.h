// Handles to the connections of signals.
#pragma once

#include <string>
#include <utility>

#include "foundation/ur/Reference.h"
#include "foundation/urRTB/FunctionBase.h"

namespace urRTB {

/// Names one connection of a signal; destroying the handle does not end the connection.
///
/// Copies name the same connection. A handle may outlive the signal: the connection has then ended, and every
/// operation does nothing. Used on the thread that uses the signal.
class NX_API Connection {
public:
    /// Names no connection.
    Connection() noexcept = default;

    [[nodiscard]] bool connected() const noexcept { return function_ && function_->connected(); }
    /// The callback is not called again, not even by an emission under way.
    void disconnect() const noexcept {
        if (function_) function_->disconnect();
    }

    /// Emissions skip the callback until each block has been lifted by its own `unblock`.
    void block() const noexcept {
        if (connected()) ++function_->silence_;
    }
    void unblock() const noexcept {
        if (blocked()) --function_->silence_;
    }
    [[nodiscard]] bool blocked() const noexcept { return connected() && function_->blocked(); }

    /// Describes the callback for diagnosis: the name of a plain function if known, the class of a callable (for a
    /// lambda this names its enclosing function); empty without a connection.
    [[nodiscard]] std::string describe() const { return function_ ? function_->onDescribe() : std::string(); }

private:
    friend class SignalBase;

    explicit Connection(FunctionBase* function) noexcept : function_(function) {}

    ur::Reference<FunctionBase> function_;
};

/// Owns one connection: ends it when the owner is destroyed or takes another.
class NX_API ScopedConnection {
public:
    ScopedConnection() noexcept = default;
    ScopedConnection(Connection connection) noexcept : connection_(std::move(connection)) {}
    ScopedConnection(ScopedConnection&& other) noexcept : connection_(other.release()) {}
    ScopedConnection& operator=(ScopedConnection&& other) noexcept {
        std::exchange(connection_, other.release()).disconnect();
        return *this;
    }
    ~ScopedConnection() { connection_.disconnect(); }

    [[nodiscard]] Connection const& get() const noexcept { return connection_; }
    /// Gives up the connection, which continues.
    Connection release() noexcept { return std::exchange(connection_, Connection()); }
    void disconnect() noexcept { release().disconnect(); }

private:
    Connection connection_;
};

/// Blocks one connection while this object lives.
class NX_API ScopedBlock {
public:
    [[nodiscard]] explicit ScopedBlock(Connection connection) noexcept : connection_(std::move(connection)) {
        connection_.block();
    }
    ScopedBlock(ScopedBlock const&) = delete;
    ScopedBlock& operator=(ScopedBlock const&) = delete;
    ~ScopedBlock() { connection_.unblock(); }

private:
    Connection connection_;
};

}  // namespace urRTB
