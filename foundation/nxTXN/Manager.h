// Transactions and the history of what they changed.
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

/// What becomes of the changes made in a transaction. The values are those of the contexts' transaction types, of which
/// the undecided one is no kind: no transaction is begun for it.
enum class TransactionKind {
    recorded = 0,   ///< they become a step of the history
    transient = 1,  ///< never recorded, but abort still takes them back
    none = 2,       ///< never recorded, and abort leaves them
    constant = 3,   ///< none are expected: `UnrecordedChange` says what becomes of them
};

/// What becomes of a change that no transaction records, outside of all or in a constant one. Those of kind `none`
/// record nothing on purpose.
enum class UnrecordedChange {
    apply,   ///< it is made
    report,  ///< it is made, and `debugChannel` tells of it once for each class of object
    refuse,  ///< `Object::transact` throws `std::logic_error`, so that it is not made
};

/// Owns the transaction objects of one document and the history of its changes.
///
/// Between `begin` and `commit` objects record what they were before they changed; a committed transaction that
/// changed or created anything is one step. Transactions nest: an inner one adds to the outer one when it commits,
/// and takes back only its own changes when it aborts. Inside a transaction that is not recorded nothing is.
/// Nothing is recorded while undo, redo or abort runs: changes that hooks make then are simply applied.
/// Everything is used on one thread. Hooks and listeners may call anything, except that `undo`, `redo` and `clear`
/// refuse to work while they are under way or a transaction is open.
class NX_API Manager {
public:
    Manager();
    /// With other sizes of the blocks in which it takes memory, for tests.
    explicit Manager(impl::Sizes const& sizes);
    Manager(Manager const&) = delete;
    Manager& operator=(Manager const&) = delete;
    /// Lets go of the history, then takes apart and deletes all objects that the manager owns. In a hook or listener
    /// that the manager runs this happens when the operation under way has ended; its objects have no manager until
    /// then.
    ~Manager();

    /// `name` is for menus: "Move", "Paint".
    void begin(urString::CString const& name = {}, TransactionKind kind = TransactionKind::recorded);
    /// A recorded transaction that joins the newest step instead of making one, if that step was made with the same
    /// `key` and nothing else happened to the history since: the moves of one drag become one step.
    void beginCoalescing(urString::CString const& name, void const* key);
    /// The step in hand is complete: the next coalescing transaction makes a new one.
    void endCoalescing() noexcept;
    /// Ends the innermost transaction. False when none is open.
    bool commit();
    /// Ends the innermost transaction and restores exactly what it changed: objects created in it are gone, objects
    /// that ceased to exist in it are back. False when none is open. Throws `HookError` after all is restored.
    bool abort();
    /// The number of transactions open inside each other.
    [[nodiscard]] std::size_t depth() const noexcept;

    /// Takes the newest step back. False when there is none, a transaction is open or the history is busy.
    /// Throws `HookError`, which says whether all or nothing was done.
    bool undo();
    /// Does the step again that was taken back last; otherwise as `undo`.
    bool redo();
    [[nodiscard]] bool canUndo() const noexcept;
    [[nodiscard]] bool canRedo() const noexcept;
    /// Empty when there is no such step.
    [[nodiscard]] urString::CString const& undoName() const noexcept;
    [[nodiscard]] urString::CString const& redoName() const noexcept;
    /// The steps that can be taken back and done again. Names count from the next step on: 0 is `undoName`.
    [[nodiscard]] std::size_t undoCount() const noexcept;
    [[nodiscard]] std::size_t redoCount() const noexcept;
    [[nodiscard]] urString::CString const& undoName(std::size_t position) const noexcept;
    [[nodiscard]] urString::CString const& redoName(std::size_t position) const noexcept;

    /// Forgets all steps; the present state stays. False when a transaction is open or the history is busy.
    bool clear();
    /// At most so many steps, or steps of so many bytes, are kept; the oldest go first, the newest always stays.
    /// 0 sets no limit, which is the start.
    void setStepLimit(std::size_t steps);
    void setByteLimit(std::size_t bytes);
    /// What the history occupies: its records and the objects that only it keeps.
    [[nodiscard]] std::size_t historyBytes() const noexcept;

    /// Reported at first.
    void setUnrecordedChange(UnrecordedChange policy) noexcept;

    /// Emitted after the list of steps has changed, when everything is in place.
    [[nodiscard]] urRTB::Signal<>& changedSignal() noexcept;

private:
    friend class Object;

    struct End {
        void operator()(impl::History* history) const noexcept;
    };
    std::unique_ptr<impl::History, End> history_;
};

}  // namespace nxTXN
