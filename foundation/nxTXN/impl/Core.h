// The state of a manager: open transactions and the steps on both sides of the present.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/impl/Lifetimes.h"
#include "foundation/nxTXN/impl/RecordStore.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// The name of one or more steps.
struct SharedName final : ur::ReferenceCount {
    explicit SharedName(urString::CString const& name) : text(name) {}
    urString::CString const text;
};

/// A committed transaction.
struct Step {
    ur::Reference<SharedName> name;
    RecordStore::Place begin;  // of its records
    std::uint32_t records;
    std::uint32_t stamp;  // of the objects that it recorded
    std::uint32_t birthsBegin;
    std::uint32_t birthsEnd;
};

/// A transaction that is open.
struct Level {
    urString::CString name;
    void const* coalesceKey;
    RecordStore::Place begin;
    std::uint32_t records;
    std::uint32_t stamp;
    std::uint32_t birthsBegin;
    TransactionKind kind;
    bool keeps;  // it records, for the history or for abort alone
};

/// Steps in the order in which they were made, up to the present the ones that are done, then those undone; their
/// records, in the same order, and on top those of open transactions. Undo and redo exchange what records hold with
/// what their objects are.
class Core {
public:
    Core(Manager& manager) : manager_(manager) {}
    Core(Core const&) = delete;
    Core& operator=(Core const&) = delete;
    ~Core();

    [[nodiscard]] Manager& manager() noexcept { return manager_; }
    [[nodiscard]] Lifetimes& lifetimes() noexcept { return lifetimes_; }

    std::uint32_t enter(Object& object, bool counted);
    void transact(Object& object);
    /// Takes the object out of all records that may name it.
    static void forgetEverywhere(Object const& object) noexcept;
    /// A record of this manager keeps the object, which may be another manager's.
    void pin(Object& object);
    /// Has the object read its fields.
    void putBack(Object& object, Content const& content);

    void begin(urString::CString const& name, TransactionKind kind, void const* coalesceKey);
    bool commit();
    bool abort();
    [[nodiscard]] std::size_t depth() const noexcept { return levels_.size(); }

    bool undo() { return undoCount() > 0 && replay(present_ - 1, Lifetimes::Birth::undone); }
    bool redo() { return redoCount() > 0 && replay(present_, Lifetimes::Birth::done); }
    [[nodiscard]] bool ready() const noexcept { return levels_.empty() && !busy_ && !lifetimes_.busy(); }
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

    /// A record on its way back into its object, and the size of what the object is now. That lies in the writer, for
    /// one record behind the other, until it takes the record's place.
    struct Restoration {
        Record* record;
        RestoreHook hook;
        std::uint32_t dataBytes;
        std::uint32_t words;
        RecordStore::Elsewhere elsewhere;  // room for it, if it does not fit into the record
    };
    enum class Order { forward, backward };

    void meet(Core& other);
    [[nodiscard]] ur::Reference<SharedName> shared(urString::CString const& name) const;
    void compact();
    void record(Object& object, Entry const& entry);
    RestoreHook save(Object& object);
    void missed(Object const& object);

    [[nodiscard]] bool mayEnd() const noexcept;
    void addStep(Level const& level);
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
    void turn(std::size_t step, Lifetimes::Birth birth, Failures& failures);
    [[nodiscard]] Restoration captured(Record& record);
    void capture(Step const& step);
    void exchange() noexcept;
    bool restoreAll(Order order, Failures& failures);
    void turnBack(Order order, std::size_t restored) noexcept;
    bool restore(Restoration const& item, Content const& content, Failures& failures);
    void tellModified(Order order, Failures& failures) noexcept;
    [[nodiscard]] Restoration& itemAt(std::size_t position, Order order) noexcept {
        return work_[order == Order::forward ? position : work_.size() - 1 - position];
    }

    void collect(Level const& level, Failures& failures);
    void takeBack(Level const& level, Failures& failures);

    Manager& manager_;
    Lifetimes lifetimes_;
    RecordStore records_{*this};
    std::deque<Step> steps_;
    std::size_t present_ = 0;            // the steps before it are done
    ur::vector<Level> levels_;           // innermost last
    Writer writer_;                      // for one record, or for all that a replay captures
    ur::vector<Restoration> work_;       // of the replay under way
    ur::vector<Core*> acquaintances_;    // managers whose records and objects are mixed with ours
    std::uint32_t stamp_ = 0;            // of the newest transaction
    void const* coalesceKey_ = nullptr;  // of the newest step
    bool sealed_ = false;                // the newest step takes no more
    bool busy_ = false;
    std::size_t stepLimit_ = 0;
    std::size_t byteLimit_ = 0;
    urRTB::Signal<> changed_;
};

}  // namespace nxTXN::impl
