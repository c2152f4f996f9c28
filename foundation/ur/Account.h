// Counting the memory that scripts cause, in their own state and natively, against one limit.
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
/// Native objects hold a `Charge` for what they own; the allocators of the states count what scripts allocate. A call
/// of a script sets the limit for that time, and a collector that frees what scripts no longer use. Charges may be
/// given back on any thread; everything else belongs to the thread of the scripts.
class NX_API Account {
public:
    /// Frees native objects that only garbage of scripts holds.
    class NX_API Collector {
    public:
        virtual void collect() noexcept = 0;

    protected:
        ~Collector() = default;
    };
    /// What holds while a script runs.
    struct Bounds {
        std::size_t allowed = unlimited;    ///< bytes in use
        std::size_t collectAt = unlimited;  ///< from here on garbage is looked for
        std::size_t step = unlimited;       ///< after a collection, it is looked for again so much later
        Collector* collector = nullptr;
    };

    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
    /// So many native bytes are always allocated before the next collection.
    static constexpr std::size_t leastPace = std::size_t(1) << 20U;

    Account() = default;
    Account(Account const&) = delete;
    Account& operator=(Account const&) = delete;

    [[nodiscard]] std::size_t native() const noexcept { return native_.load(std::memory_order_relaxed); }
    [[nodiscard]] std::size_t used() const noexcept { return script_ + native(); }
    /// `bytes` more are within the limit.
    [[nodiscard]] bool allows(std::size_t bytes) const noexcept {
        return bytes <= bounds_.allowed - std::min(used(), bounds_.allowed);
    }

    /// Counts native bytes. Throws `BudgetSpent`, with nothing counted, when they are too many even after a collection.
    void take(std::size_t bytes);
    /// Counts bytes that are there already, whatever the limit.
    void takeAnyway(std::size_t bytes) noexcept { native_.fetch_add(bytes, std::memory_order_relaxed); }
    void giveBack(std::size_t bytes) noexcept { native_.fetch_sub(bytes, std::memory_order_relaxed); }
    /// Counts bytes of a script state, which may become fewer.
    void changeScript(std::size_t more) noexcept { script_ += more; }

    [[nodiscard]] Bounds const& bounds() const noexcept { return bounds_; }
    void setBounds(Bounds const& bounds) noexcept { bounds_ = bounds; }

    /// The collector of scripts does not see native bytes: so many have come, or so near is the limit, that it is to
    /// run.
    [[nodiscard]] bool wantsCollection() const noexcept {
        std::size_t const native = this->native();
        return native > nextNative_ || script_ + native > bounds_.collectAt;
    }
    /// A collection has run: the next one is due when the native bytes have doubled, or when it costs little beside
    /// what was allocated meanwhile.
    void noteCollection() noexcept;

private:
    std::atomic<std::size_t> native_ = 0;
    std::size_t script_ = 0;
    std::size_t nextNative_ = leastPace;
    Bounds bounds_;
};

/// What one object owns, on an account or on none. A copy is charged as well, or refused.
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
