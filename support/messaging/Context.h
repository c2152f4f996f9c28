// The scope in which an operation runs, and its modes.
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
    TxnUndecided = 4,  ///< no transaction is begun here; contexts inside begin theirs
};

/// A scoped object: the context begins on its domain when it is constructed and ends when it is destroyed.
///
/// Contexts nest and end in the reverse order of their beginning; contexts of several domains may be interleaved. If
/// the constructor throws, because a hook of the domain's owner did, no context has begun.
///
/// A context always ends completely, even if the owner's hooks, the domain's signals or the post functions throw. The
/// first of their exceptions leaves the destructor; during stack unwinding it is printed on the application output
/// instead, as are all later ones. So keep contexts where a destructor may throw, such as in a block: an exception that
/// reaches a `noexcept` owner ends the program. Main thread only.
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
        Bootstrap = 10,  ///< like any other, but the domain owner's hooks are not called
        Bare = 11,       ///< not in the mode stack, without call information of its own, and the owner's hooks are not
                         ///< called
    };
    using PostFunction = std::function<void(Domain*)>;

    /// Requires: `domain` is not null.
    [[nodiscard]] Context(Domain* domain, Mode mode);
    Context(Context const&) = delete;
    Context& operator=(Context const&) = delete;
    ~Context() noexcept(false);

    [[nodiscard]] Mode mode() const noexcept { return mode_; }
    /// The type that belongs to the mode.
    [[nodiscard]] TransactionType transactionType() const noexcept;
    /// Null if the domain has been destroyed.
    [[nodiscard]] Domain* domain() const noexcept { return domain_; }
    [[nodiscard]] bool constMode() const noexcept { return isConst(mode_); }
    [[nodiscard]] bool interactiveMode() const noexcept { return mode_ <= InteractionEnd; }

    /// Runs `function` after this context has ended, after those added before. A post function may add more, which also
    /// run. An empty one raises `std::bad_function_call`. After one throws or destroys the domain, the rest is skipped.
    void addPostFunction(PostFunction function) const;

    /// Whether `context` has begun and not ended. `context` may point to a destroyed object.
    [[nodiscard]] static bool isActive(Context const* context) noexcept;

    /// The name of a mode; empty for a value that is not a mode.
    [[nodiscard]] static urString::CString const& modeToString(Mode mode) noexcept;
    /// Returns false and leaves `mode` unchanged if no mode has that name.
    [[nodiscard]] static bool modeFromString(Mode& mode, urString::CString const& name) noexcept;

private:
    friend class Domain;
    friend struct DomainImpl;

    [[nodiscard]] static bool isConst(Mode mode) noexcept { return mode == Const || mode == ConstWithRedraw; }
    void runPostFunctions();

    Mode const mode_;
    mutable Domain* domain_;
    mutable ur::vector<PostFunction> postFunctions_;
    mutable std::chrono::steady_clock::time_point begun_;  ///< set only if an observer was called then
};

/// Returns `TxnUndecided` for a value that is not a mode.
[[nodiscard]] NX_API TransactionType mapTransactionType(Context::Mode mode) noexcept;

inline TransactionType Context::transactionType() const noexcept { return mapTransactionType(mode_); }

}  // namespace nxSupport
