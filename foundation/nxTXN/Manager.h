// Owns transactions and the history of their changes.
#pragma once

#include <cstddef>
#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urString/CString.h"

namespace nxTXN {

class Object;

namespace impl {
class History;
struct Sizes;
}  // namespace impl

/// How the changes of a transaction are recorded. The values are those of the contexts' transaction types, except the
/// undecided one, for which no transaction begins.
enum class TransactionKind {
    recorded = 0,   ///< the changes become a step of the history
    transient = 1,  ///< never recorded, but abort reverts them
    none = 2,       ///< never recorded, and abort does not revert them
    constant = 3,   ///< no changes are expected: `UnrecordedChange` decides
};

/// How a change outside any transaction, or in a constant one, is treated. Transactions of kind `none` leave changes
/// unrecorded on purpose.
enum class UnrecordedChange {
    apply,   ///< makes the change
    report,  ///< makes the change and reports it on `debugChannel`, once per class of object
    refuse,  ///< `Object::transact` throws `std::logic_error`, so the change is not made
};

/// Owns the transaction objects of one document and the history of its changes.
///
/// Between `begin` and `commit`, objects record their state before they change; a committed transaction that changed or
/// created anything is one step. Transactions nest: an inner one adds to the outer one when it commits, and reverts
/// only its own changes when it aborts. Inside a transaction that is not recorded, nothing is. Nothing is recorded
/// during undo, redo or abort: changes by hooks are simply applied. One thread uses a manager and its objects. Hooks
/// and listeners may call anything, but `undo`, `redo` and `clear` return false while one of them runs or a transaction
/// is open.
class NX_API Manager {
public:
    Manager();
    /// Uses other sizes for its memory blocks, for tests.
    explicit Manager(impl::Sizes const& sizes);
    Manager(Manager const&) = delete;
    Manager& operator=(Manager const&) = delete;
    /// Releases the history, then clears and deletes all objects that the manager owns. If a hook or listener of the
    /// manager does this, it happens after the current operation; until then the objects have no manager.
    ~Manager();

    /// `name` is the menu text, such as "Move" or "Paint".
    void begin(urString::CString const& name = {}, TransactionKind kind = TransactionKind::recorded);
    /// Begins a recorded transaction that joins the newest step instead of making a new one, if that step has the same
    /// `key` and the history has not changed since: the moves of one drag become one step.
    void beginCoalescing(urString::CString const& name, void const* key);
    /// Ends the newest step: the next coalescing transaction makes a new one.
    void endCoalescing() noexcept;
    /// Ends the innermost transaction. False when none is open.
    bool commit();
    /// Ends the innermost transaction and restores exactly what it changed: objects created in it are gone, objects
    /// that it removed are back. False when none is open. Throws `HookError` after all is restored.
    bool abort();
    /// The number of nested open transactions.
    [[nodiscard]] std::size_t depth() const noexcept;

    /// Undoes the newest step. False when there is none, a transaction is open or the history is busy. Throws
    /// `HookError`, which says whether all or nothing was done.
    bool undo();
    /// Redoes the step undone last; otherwise as `undo`.
    bool redo();
    [[nodiscard]] bool canUndo() const noexcept;
    [[nodiscard]] bool canRedo() const noexcept;
    /// Empty when there is no such step.
    [[nodiscard]] urString::CString const& undoName() const noexcept;
    [[nodiscard]] urString::CString const& redoName() const noexcept;
    /// The number of steps that can be undone or redone. Names count from the next step on: 0 is `undoName`.
    [[nodiscard]] std::size_t undoCount() const noexcept;
    [[nodiscard]] std::size_t redoCount() const noexcept;
    [[nodiscard]] urString::CString const& undoName(std::size_t position) const noexcept;
    [[nodiscard]] urString::CString const& redoName(std::size_t position) const noexcept;

    /// Marks the present state as clean, usually because it was saved. Undo and redo may leave it and come back; once
    /// the history cannot come back to it any more, no state is clean until the next mark. A new manager is clean.
    /// Changes that are not recorded do not count.
    void setClean() noexcept;
    [[nodiscard]] bool isClean() const noexcept;

    /// Forgets all steps; objects keep their state. False when a transaction is open or the history is busy.
    bool clear();
    /// Limits the number of steps, or the bytes of all steps; the oldest go first, the newest always stays. 0, the
    /// default, sets no limit.
    void setStepLimit(std::size_t steps);
    void setByteLimit(std::size_t bytes);
    /// The bytes of the history: its records and the objects that only it keeps.
    [[nodiscard]] std::size_t historyBytes() const noexcept;

    /// The default is `report`.
    void setUnrecordedChange(UnrecordedChange policy) noexcept;

    /// Emitted after the list of steps has changed and everything is in place.
    [[nodiscard]] urRTB::Signal<>& changedSignal() noexcept;

private:
    friend class Object;

    struct End {
        void operator()(impl::History* history) const noexcept;
    };
    std::unique_ptr<impl::History, End> history_;
};

}  // namespace nxTXN
