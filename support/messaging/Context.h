// The scope in which an operation runs, and the modes that it can run in.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

namespace nxSupport {

class CallInfo;
class Domain;

/// What the transaction layer does with changes made in a context.
enum TransactionType : std::int32_t {
    TxnRecorded = 0,
    TxnTransient = 1,
    TxnNone = 2,
    TxnConst = 3,
    TxnUndecided = 4,  ///< nothing: no transaction is begun, the contexts inside have theirs
};

/// A scoped object: the context begins on its domain when it is made and ends when it is destroyed.
///
/// Contexts nest and end in the reverse order of their beginning; those of several domains may be interleaved.
/// When making one throws, because a hook of the domain's owner did, no context has begun.
///
/// A context always ends wholly, whatever the owner's hooks, the domain's signals and the post functions throw.
/// The first of their exceptions leaves the destructor, unless the stack is being unwound already; that one, and
/// any further one, is printed on the application output instead. So keep contexts in places whose own
/// destruction may throw, such as a block: an exception that meets a `noexcept` owner ends the program.
/// Main thread only.
class NX_API Context {
public:
    enum Mode : std::uint32_t {
        InteractionStart = 0,
        InteractionPerform = 1,
        InteractionEnd = 2,
        Momentary = 3,
        Transient = 4,
        Const = 5,
        ConstWithRedraw = 6,
        NoTxn = 7,
        Undecided = 8,
        AppOnly = 9,
        Bootstrap = 10,  ///< like any other, but the domain's owner is told nothing
        Bare = 11,       ///< in no mode stack, with no call information of its own, and the owner is told nothing
    };
    using PostFunction = std::function<void(Domain*)>;

    /// Requires: `domain` is not null.
    [[nodiscard]] Context(Domain* domain, Mode mode);
    Context(Context const&) = delete;
    Context& operator=(Context const&) = delete;
    ~Context() noexcept(false);

    [[nodiscard]] Mode mode() const noexcept { return mode_; }
    /// That of its mode.
    [[nodiscard]] TransactionType transactionType() const noexcept;
    /// Null when the domain has been destroyed.
    [[nodiscard]] Domain* domain() const noexcept { return domain_; }
    [[nodiscard]] bool constMode() const noexcept { return isConst(mode_); }
    [[nodiscard]] bool interactiveMode() const noexcept { return mode_ <= InteractionEnd; }

    /// Runs `function` when this context has ended, after those added before. What a post function adds runs too.
    /// An empty one raises `std::bad_function_call`. After one that throws or destroys the domain, no more are run.
    void addPostFunction(PostFunction function) const;

    /// Whether `context` is one that has begun and not ended. Asked by those who cannot know whether it still exists.
    [[nodiscard]] static bool isActive(Context const* context) noexcept;

    /// The name of a mode; empty for a value that is none.
    [[nodiscard]] static urString::CString const& modeToString(Mode mode) noexcept;
    /// False, and `mode` as before, when no mode has that name.
    [[nodiscard]] static bool modeFromString(Mode& mode, urString::CString const& name) noexcept;

private:
    friend class Domain;
    friend struct DomainImpl;

    [[nodiscard]] static bool isConst(Mode mode) noexcept { return mode == Const || mode == ConstWithRedraw; }
    void runPostFunctions();

    Mode const mode_;
    mutable Domain* domain_;
    mutable ur::vector<PostFunction> postFunctions_;
    mutable std::chrono::steady_clock::time_point begun_;  ///< if an observer was called then
};

/// `TxnUndecided` for a value that is no mode.
[[nodiscard]] NX_API TransactionType mapTransactionType(Context::Mode mode) noexcept;

inline TransactionType Context::transactionType() const noexcept { return mapTransactionType(mode_); }

}  // namespace nxSupport
