// The history of a manager: open transactions and steps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/impl/Lifetimes.h"
#include "foundation/nxTXN/impl/RecordStore.h"
#include "foundation/nxTXN/impl/Replay.h"
#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/nxTXN/impl/Steps.h"
#include "foundation/nxTXN/impl/passes.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// An open transaction.
struct Level {
    ur::Reference<SharedName> name;  // of the step that it may become
    void const* coalesceKey;
    RecordStore::Place begin;
    std::uint32_t records;
    std::uint32_t outerRecords;  // the number of records of the enclosing transactions
    std::uint32_t stamp;
    std::uint32_t birthsBegin;
    TransactionKind kind;
    bool keeps;  // whether it records, for the history or only for abort
};

/// The open transactions of a manager and its steps, in the order in which they were made: the done steps, up to the
/// present, then the undone ones.
///
/// Records lie in the same order, those of open transactions on top. Memory for commit and abort is reserved before a
/// change is made, so they never fail for lack of memory.
class History {
public:
    History(Manager& manager, Sizes const& sizes) noexcept
        : manager_(&manager),
          sizes_(sizes),
          lifetimes_(sizes.mostPins),
          records_(*this, sizes),
          steps_(sizes),
          replay_(*this, records_) {}
    History(History const&) = delete;
    History& operator=(History const&) = delete;

    /// Keeps the history alive: hooks may destroy the manager.
    class Hold {
    public:
        explicit Hold(History& history) noexcept : history_(history) { ++history_.holds_; }
        Hold(Hold const&) = delete;
        Hold& operator=(Hold const&) = delete;
        ~Hold() { history_.release(); }

    private:
        History& history_;
    };

    /// The manager is destroyed; the history is deleted when no `Hold` is left.
    void end() noexcept {
        manager_ = nullptr;
        if (holds_ == 0) delete this;
    }
    /// Null once the manager is destroyed.
    [[nodiscard]] Manager* manager() noexcept { return manager_; }
    [[nodiscard]] Lifetimes& lifetimes() noexcept { return lifetimes_; }
    /// Throws when the fields of an object are too large for a record.
    void expectStorable(std::size_t dataBytes, std::size_t words) const {
        if (Content::bytes(dataBytes, words) > sizes_.mostRecordBytes) refuseRecord();
    }

    std::uint32_t enter(Object& object, bool counted, bool makingIsChange);
    void transact(Object& object) {
        if (!transactSilently(object)) missed(object);
    }
    /// False when no transaction records the object.
    bool transactSilently(Object& object);
    /// Whether a change of the object is recorded, or no step names or made the object.
    [[nodiscard]] bool allowsChange(Object const& object) noexcept;
    /// Removes the object from all records that may name it.
    static void forgetEverywhere(Object const& object) noexcept;
    /// A record of this manager keeps the object, which may belong to another manager. Throws, without an effect, when
    /// memory is exhausted. False when nothing can keep it.
    [[nodiscard]] bool pin(Object& object) {
        if (object.history_ != this) return pinForeign(object);
        lifetimes_.addPin(object);
        return true;
    }
    /// Visits the fields of an object that is being restored.
    void visitRestoring(Object& object, Serializer& pass) {
        Restoring const restoring(*this);
        object.onTransact(pass);
    }
    /// Makes the object read its fields.
    void putBack(Object& object, Content const& content) {
        RestoringPass pass(content.reader());
        visitRestoring(object, pass);
    }

    /// Whether this manager or a peer is restoring fields.
    [[nodiscard]] bool restoring() const noexcept;

    void begin(urString::CString const& name, TransactionKind kind, void const* coalesceKey);
    bool commit();
    bool abort();
    [[nodiscard]] std::size_t depth() const noexcept { return levels_.size(); }

    bool undo() { return undoCount() > 0 && turn(present_ - 1, Lifetimes::Birth::undone); }
    bool redo() { return redoCount() > 0 && turn(present_, Lifetimes::Birth::done); }
    [[nodiscard]] bool ready() const noexcept {
        return levels_.empty() && !busy_ && !lifetimes_.busy() && (peers_.empty() || !peerIsBusy());
    }
    [[nodiscard]] std::size_t undoCount() const noexcept { return present_; }
    [[nodiscard]] std::size_t redoCount() const noexcept { return steps_.size() - present_; }
    /// Requires: `step` is below the number of steps.
    [[nodiscard]] urString::CString const& nameOf(std::size_t step) const noexcept { return steps_[step].name->text; }

    void setUnrecordedChange(UnrecordedChange policy) noexcept { unrecordedChange_ = policy; }
    void seal() noexcept { sealed_ = true; }
    /// The newest step accepts no more changes, so that the marked state does not change.
    void setClean() noexcept {
        clean_ = present_;
        seal();
    }
    [[nodiscard]] bool isClean() const noexcept { return clean_ == present_; }
    bool clear();
    void setLimits(std::size_t steps, std::size_t bytes);
    [[nodiscard]] std::size_t stepLimit() const noexcept { return stepLimit_; }
    [[nodiscard]] std::size_t byteLimit() const noexcept { return byteLimit_; }
    [[nodiscard]] std::size_t bytes() const noexcept;
    [[nodiscard]] urRTB::Signal<>& changed() noexcept { return changed_; }

private:
    static constexpr std::size_t noState = ~std::size_t(0);

    /// While one lives, nothing is recorded and no step moves.
    class Busy {
    public:
        explicit Busy(History& history) noexcept : history_(history), before_(std::exchange(history.busy_, true)) {}
        Busy(Busy const&) = delete;
        Busy& operator=(Busy const&) = delete;
        ~Busy() { history_.busy_ = before_; }

    private:
        History& history_;
        bool before_;
    };

    /// While one lives, fields are being restored.
    class Restoring {
    public:
        explicit Restoring(History& history) noexcept : history_(history) { ++history_.restorings_; }
        Restoring(Restoring const&) = delete;
        Restoring& operator=(Restoring const&) = delete;
        ~Restoring() { --history_.restorings_; }

    private:
        History& history_;
    };

    ~History();
    void release() noexcept {
        if (--holds_ == 0 && !manager_) delete this;
    }
    [[noreturn]] static void refuseRecord();
    [[nodiscard]] bool pinForeign(Object& object);
    void addPeer(History& other);
    void settle(urOS::FirstError& errors) noexcept;
    [[nodiscard]] History* borrowed(Lifetimes::Settling stage) const noexcept;
    [[nodiscard]] ur::Reference<SharedName> shared(urString::CString const& name) const;
    void compact();
    void record(Object& object, Entry const& entry);
    [[nodiscard]] Level const* mergedScope() const noexcept;
    [[nodiscard]] bool mayUndoMaking(Object const& object) noexcept;
    void makeRoomForAbort();
    void missed(Object const& object);

    [[nodiscard]] bool mayEnd() const noexcept;
    [[nodiscard]] bool changedAnything(Level const& level) noexcept;
    [[nodiscard, gnu::noinline]] bool anyIsDifferent(Level const& level) noexcept;
    [[nodiscard]] bool isDifferent(Record& record, Level const& level) noexcept;
    [[nodiscard]] bool peerIsBusy() const noexcept;
    void addStep(Level& level);
    void discardUndone();
    void discardOldest();
    void discardFarthest();
    [[nodiscard]] bool joinsNewestStep(Level const& level) const noexcept;
    [[nodiscard]] std::uint32_t merge(Level const& level, std::uint32_t stamp);
    void drop(Level const& level);
    void restoreStamps(Level const& level);
    void enforceLimits();
    [[nodiscard]] bool overLimit() const noexcept;

    bool turn(std::size_t step, Lifetimes::Birth birth);
    void putBack(std::size_t index, Lifetimes::Birth birth, urOS::FirstError& errors);
    void takeBack(Level const& level, urOS::FirstError& errors) noexcept;

    Manager* manager_;
    unsigned holds_ = 0;
    Sizes const sizes_;
    Lifetimes lifetimes_;
    RecordStore records_;
    Steps steps_;
    std::size_t present_ = 0;            // the number of done steps
    ur::vector<Level> levels_;           // innermost last
    Writer writer_;                      // for one record
    Replay replay_;                      // has room for aborting the open transactions
    ur::vector<History*> peers_;         // managers whose records and objects refer to ours or are referred to by ours
    History* settledBy_ = nullptr;       // the peer whose undo, redo or abort settles our objects
    std::uint32_t stamp_ = 0;            // of the newest transaction
    void const* coalesceKey_ = nullptr;  // of the newest step
    std::size_t clean_ = 0;              // the number of steps before the clean state, or `noState`
    bool sealed_ = false;                // the newest step accepts no more changes
    unsigned restorings_ = 0;
    bool busy_ = false;
    UnrecordedChange unrecordedChange_ = UnrecordedChange::report;
    std::size_t stepLimit_ = 0;
    std::size_t byteLimit_ = 0;
    urRTB::Signal<> changed_;
};

}  // namespace nxTXN::impl
