// Limits the memory that scripts cause, in their own state and natively.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "foundation/ur/Export.h"

namespace ur {

/// A charge was refused.
struct NX_API BudgetSpent : std::bad_alloc {
    [[nodiscard]] char const* what() const noexcept override;
};

/// The bytes that the objects of one reflection database own together with the script states that are bound to it.
///
/// Native objects hold a `Charge` for what they own; the states' allocators count what scripts allocate. A call into a
/// script sets the limit for its duration, and a collector that frees what scripts no longer use. Charges may be
/// released on any thread; everything else belongs to the scripts' thread.
class NX_API Account {
public:
    /// Frees native objects that only script garbage holds.
    class NX_API Collector {
    public:
        virtual void collect() noexcept = 0;

    protected:
        ~Collector() = default;
    };
    /// The limits while a script runs.
    struct Bounds {
        std::size_t allowed = unlimited;    ///< bytes that may be in use
        std::size_t collectAt = unlimited;  ///< bytes in use at which garbage is collected
        std::size_t step = unlimited;       ///< after a collection, the next follows this many bytes later
        Collector* collector = nullptr;
    };

    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
    /// The native bytes allocated at least between two collections.
    static constexpr std::size_t leastPace = std::size_t(1) << 20U;

    Account() = default;
    Account(Account const&) = delete;
    Account& operator=(Account const&) = delete;

    [[nodiscard]] std::size_t native() const noexcept { return native_.load(std::memory_order_relaxed); }
    [[nodiscard]] std::size_t used() const noexcept { return script_ + native(); }
    /// Whether `bytes` more are within the limit.
    [[nodiscard]] bool allows(std::size_t bytes) const noexcept {
        return bytes <= bounds_.allowed - std::min(used(), bounds_.allowed);
    }

    /// Counts native bytes. Throws `BudgetSpent`, without counting, when they exceed the limit even after a collection.
    void take(std::size_t bytes);
    /// Counts existing bytes, whatever the limit.
    void takeAnyway(std::size_t bytes) noexcept { native_.fetch_add(bytes, std::memory_order_relaxed); }
    void giveBack(std::size_t bytes) noexcept { native_.fetch_sub(bytes, std::memory_order_relaxed); }
    /// Counts bytes of a script state, which may also decrease.
    void changeScript(std::size_t more) noexcept { script_ += more; }

    [[nodiscard]] Bounds const& bounds() const noexcept { return bounds_; }
    void setBounds(Bounds const& bounds) noexcept { bounds_ = bounds; }

    /// The scripts' collector does not see native bytes. True when so many were allocated, or the limit is so near,
    /// that it should run.
    [[nodiscard]] bool wantsCollection() const noexcept {
        std::size_t const native = this->native();
        return native > nextNative_ || script_ + native > bounds_.collectAt;
    }
    /// A collection has run: the next is due when the native bytes have doubled, or when it costs little compared with
    /// what was allocated meanwhile.
    void noteCollection() noexcept;

private:
    std::atomic<std::size_t> native_ = 0;
    std::size_t script_ = 0;
    std::size_t nextNative_ = leastPace;
    Bounds bounds_;
};

/// The bytes that one object owns, charged to an account or to none. A copy is charged as well, or refused.
class NX_API Charge {
public:
    Charge() noexcept = default;
    Charge(std::shared_ptr<Account> account, std::size_t bytes) : account_(std::move(account)) { add(bytes); }
    Charge(Charge const& other) : account_(other.account_) { add(other.bytes_); }
    Charge(Charge&& other) noexcept : account_(std::move(other.account_)), bytes_(std::exchange(other.bytes_, 0)) {}
    Charge& operator=(Charge other) noexcept {
        std::swap(account_, other.account_);
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    ~Charge() {
        if (account_) account_->giveBack(bytes_);
    }

    [[nodiscard]] explicit operator bool() const noexcept { return account_ != nullptr; }
    [[nodiscard]] std::shared_ptr<Account> const& account() const noexcept { return account_; }
    [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

    /// Throws `BudgetSpent`, with nothing changed. Does nothing without an account.
    void add(std::size_t bytes) {
        if (!account_) return;
        account_->take(bytes);
        bytes_ += bytes;
    }
    /// Never refuses.
    void set(std::size_t bytes) noexcept {
        if (!account_) return;
        account_->takeAnyway(bytes);
        account_->giveBack(std::exchange(bytes_, bytes));
    }

private:
    std::shared_ptr<Account> account_;
    std::size_t bytes_ = 0;
};

}  // namespace ur
