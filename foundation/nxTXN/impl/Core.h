// The state of a manager: open transactions and the steps on both sides of the present.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/impl/Lifetimes.h"
#include "foundation/nxTXN/impl/RecordStore.h"
#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/nxTXN/impl/Steps.h"
#include "foundation/nxTXN/impl/passes.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// A transaction that is open.
struct Level {
    ur::Reference<SharedName> name;  // of the step that it may become
    void const* coalesceKey;
    RecordStore::Place begin;
    std::uint32_t records;
    std::uint32_t outerRecords;  // those of the transactions around it
    std::uint32_t stamp;
    std::uint32_t birthsBegin;
    TransactionKind kind;
    bool keeps;  // it records, for the history or for abort alone
};

/// Steps in the order in which they were made, up to the present the ones that are done, then those undone; their
/// records, in the same order, and on top those of open transactions. Undo and redo exchange what records hold with
/// what their objects are. What commit and abort need is at hand before a change is made: they never fail for want of
/// memory.
class Core {
public:
    Core(Manager& manager, Sizes const& sizes) noexcept
        : manager_(manager), sizes_(sizes), lifetimes_(sizes.mostPins), records_(*this, sizes), steps_(sizes) {}
    Core(Core const&) = delete;
    Core& operator=(Core const&) = delete;
    ~Core();

    [[nodiscard]] Manager& manager() noexcept { return manager_; }
    [[nodiscard]] Lifetimes& lifetimes() noexcept { return lifetimes_; }
    /// Throws when the fields of an object are too large for a record.
    void expectStorable(std::size_t dataBytes, std::size_t words) const {
        if (Content::bytes(dataBytes, words) > sizes_.mostRecordBytes) refuseRecord();
    }

    std::uint32_t enter(Object& object, bool counted, bool makingIsChange);
    void transact(Object& object);
    /// Takes the object out of all records that may name it.
    static void forgetEverywhere(Object const& object) noexcept;
    /// A record of this manager keeps the object, which may be another manager's. Throws, and does not, for want of
    /// memory. False when nothing can keep it.
    [[nodiscard]] bool pin(Object& object) {
        if (object.core_ != this) return pinForeign(object);
        lifetimes_.addPin(object);
        return true;
    }
    /// Has the object read its fields.
    void putBack(Object& object, Content const& content) {
        RestoringPass pass(content.reader());
        visitRestoring(object, pass);
    }

    void begin(urString::CString const& name, TransactionKind kind, void const* coalesceKey);
    bool commit();
    bool abort();
    [[nodiscard]] std::size_t depth() const noexcept { return levels_.size(); }

    bool undo() { return undoCount() > 0 && replay(present_ - 1, Lifetimes::Birth::undone); }
    bool redo() { return redoCount() > 0 && replay(present_, Lifetimes::Birth::done); }
    [[nodiscard]] bool ready() const noexcept {
        return levels_.empty() && !busy_ && !lifetimes_.busy() && (acquaintances_.empty() || !nearIsBusy());
    }
    [[nodiscard]] std::size_t undoCount() const noexcept { return present_; }
    [[nodiscard]] std::size_t redoCount() const noexcept { return steps_.size() - present_; }
    /// Requires: there are more steps than that.
    [[nodiscard]] urString::CString const& nameOf(std::size_t step) const noexcept { return steps_[step].name->text; }

    void seal() noexcept { sealed_ = true; }
    bool clear();
    void setLimits(std::size_t steps, std::size_t bytes);
    [[nodiscard]] std::size_t stepLimit() const noexcept { return stepLimit_; }
    [[nodiscard]] std::size_t byteLimit() const noexcept { return byteLimit_; }
    [[nodiscard]] std::size_t bytes() const noexcept;
    [[nodiscard]] urRTB::Signal<>& changed() noexcept { return changed_; }

private:
    /// While one lives, nothing is recorded and no step moves.
    class Busy {
    public:
        explicit Busy(Core& core) noexcept : core_(core), before_(std::exchange(core.busy_, true)) {}
        Busy(Busy const&) = delete;
        Busy& operator=(Busy const&) = delete;
        ~Busy() { core_.busy_ = before_; }

    private:
        Core& core_;
        bool before_;
    };

    /// While one lives, fields are being put back: objects, also those of acquaintances, come and go without being
    /// destroyed.
    class Restoring {
    public:
        explicit Restoring(Core& core) noexcept : core_(core) { core_.setRestoring(true); }
        Restoring(Restoring const&) = delete;
        Restoring& operator=(Restoring const&) = delete;
        ~Restoring() { core_.setRestoring(false); }

    private:
        Core& core_;
    };

    /// A record on its way back into its object, and where in the writer lies what the object is now.
    struct Restoration {
        Record* record;
        RestoreHook hook;
        std::size_t dataBegin;
        std::size_t wordsBegin;
        std::uint32_t dataBytes;
        std::uint32_t words;
        std::byte* elsewhere;  // room for it, if it does not fit into the record
    };

    [[noreturn]] static void refuseRecord();
    [[nodiscard]] bool pinForeign(Object& object);
    void meet(Core& other);
    void setRestoring(bool restoring) noexcept;
    void settle(urOS::FirstError& errors) noexcept;
    [[nodiscard]] Core* borrowed(Lifetimes::Settling stage) const noexcept;
    [[nodiscard]] ur::Reference<SharedName> shared(urString::CString const& name) const;
    void compact();
    void record(Object& object, Entry const& entry);
    void makeRoomForAbort();
    /// Adds what the object is to the writer. Requires: the manager is busy.
    RestoreHook save(Object& object) {
        SavingPass pass(writer_);
        object.onTransact(pass);
        return pass.restoreHook();
    }
    void missed(Object const& object);

    [[nodiscard]] bool mayEnd() const noexcept;
    [[nodiscard]] bool changedAnything(Level const& level) noexcept;
    [[nodiscard, gnu::noinline]] bool anyIsDifferent(Level const& level) noexcept;
    [[nodiscard]] bool isDifferent(Record& record, Level const& level) noexcept;
    [[nodiscard]] bool nearIsBusy() const noexcept;
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

    bool replay(std::size_t step, Lifetimes::Birth birth);
    void turn(std::size_t step, Lifetimes::Birth birth, urOS::FirstError& errors);
    void turnHooked(Step const& step, Lifetimes::Birth birth, urOS::FirstError& errors);
    void turnPlain(Record& record, urOS::FirstError& errors);
    void swap(Record& record, Serializer& pass);
    void visitRestoring(Object& object, Serializer& pass) {
        Restoring const restoring(*this);
        object.onTransact(pass);
    }
    [[nodiscard]] Record* onlyPlainRecord(Step const& step) noexcept;
    [[noreturn]] void giveUp(std::size_t keptWords, urOS::FirstError& errors);
    void beginCapture() noexcept;
    void capture(Step const& step);
    void capture(Record& record);
    void plan(Record& record, RestoreHook hook, std::size_t dataBegin, std::size_t wordsBegin);
    void findRoom(Restoration& item);
    [[nodiscard]] Content captured(Restoration const& item) noexcept;
    void exchange() noexcept;
    bool restoreAll(urOS::FirstError& errors);
    void turnBack(std::size_t restored) noexcept;
    bool restore(Restoration const& item, Content const& content, urOS::FirstError& errors);
    bool restoreHooked(Restoration const& item, Content const& content, urOS::FirstError& errors);
    void tellModified(urOS::FirstError& errors) noexcept;

    void collect(Level const& level, urOS::FirstError& errors) noexcept;
    void takeBack(Level const& level, urOS::FirstError& errors) noexcept;

    Manager& manager_;
    Sizes const sizes_;
    Lifetimes lifetimes_;
    RecordStore records_;
    Steps steps_;
    std::size_t present_ = 0;                       // the steps before it are done
    ur::vector<Level> levels_;                      // innermost last
    Writer writer_;                                 // for one record, or for all that a replay captures
    ur::vector<Restoration> work_;                  // of the replay under way; has room for aborting what is open
    ur::vector<RecordStore::Elsewhere> elsewhere_;  // owns the room that it asked for
    ur::vector<Core*> acquaintances_;               // managers whose records and objects are mixed with ours
    Core* settledBy_ = nullptr;                     // the one among them whose undo, redo or abort settles our objects
    std::uint32_t stamp_ = 0;                       // of the newest transaction
    void const* coalesceKey_ = nullptr;             // of the newest step
    bool sealed_ = false;                           // the newest step takes no more
    bool busy_ = false;
    std::size_t stepLimit_ = 0;
    std::size_t byteLimit_ = 0;
    urRTB::Signal<> changed_;
};

}  // namespace nxTXN::impl
