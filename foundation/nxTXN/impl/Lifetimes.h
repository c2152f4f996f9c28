// Tracks which objects exist, and deletes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/impl/EntryQueue.h"
#include "foundation/nxTXN/impl/ObjectTable.h"
#include "foundation/urOS/FirstError.h"

namespace nxTXN::impl {

/// Tracks the objects of one manager from creation to deletion.
///
/// An object is *dead* when its last reference is gone, and *unborn* when its creation is undone; it exists when it is
/// neither. A dead object is deleted when no record pins it. Objects are retired one at a time: an object that loses
/// its last reference meanwhile waits for its turn, so that long chains need no stack. None of this allocates, because
/// it also runs where a lack of memory cannot be reported.
class Lifetimes {
public:
    explicit Lifetimes(std::uint32_t mostPins) noexcept : mostPins_(mostPins) {}

    enum class Birth : bool { done, undone };

    std::uint32_t enter(Object& object, bool counted, bool born);
    /// The object is being destroyed.
    void leave(Object& object) noexcept;
    [[nodiscard]] Entry& entryOf(Object const& object) noexcept { return objects_[object.index_]; }
    [[nodiscard]] ObjectTable& objects() noexcept { return objects_; }
    /// Requires: not busy.
    void compact(std::span<std::uint32_t* const> bounds);

    /// A record needs the object, or no longer needs it. An object whose manager is destroyed counts for itself; false
    /// for one that could be destroyed without notice to the record.
    [[nodiscard]] static bool pin(Object& object) noexcept;
    /// The same for an object of this manager.
    void addPin(Object const& object) noexcept {
        Entry& entry = entryOf(object);
        if (entry.pins != mostPins_) ++entry.pins;
    }
    static void unpin(Object& object) noexcept;
    /// The history holds `bytes` more, or fewer, because of the object.
    static void count(Object const& object, std::ptrdiff_t bytes) noexcept;

    void lastReferenceGone(RefCountedObject& object) noexcept;
    /// Deletes an object whose manager is destroyed, unless something needs it.
    static void removeOrphan(RefCountedObject& object) noexcept;

    /// While one lives, objects are not retired; the end of the outermost one retires them.
    class Deferral {
    public:
        explicit Deferral(Lifetimes& lifetimes) noexcept : lifetimes_(lifetimes) { ++lifetimes_.deferrals_; }
        Deferral(Deferral const&) = delete;
        Deferral& operator=(Deferral const&) = delete;
        ~Deferral() {
            if (lifetimes_.deferrals_ == 1 && !lifetimes_.waiting_.empty()) lifetimes_.retireWaiting();
            --lifetimes_.deferrals_;
        }

    private:
        Lifetimes& lifetimes_;
    };
    [[nodiscard]] bool busy() const noexcept { return deferrals_ > 0 || !changed_.empty(); }

    /// A record restored the object into a field.
    static void returned(Object& object) noexcept;
    /// Redoes or undoes the creation of the objects from `begin` to `end`.
    void setBirths(std::uint32_t begin, std::uint32_t end, Birth birth) noexcept;
    /// Settling decides which of the objects touched since the last settling exist, and notifies those whose existence
    /// changed. Objects are not retired meanwhile.
    enum class Settling : std::uint8_t { none, begun, notifying, notified };
    [[nodiscard]] Settling settling() const noexcept { return settling_; }
    void beginSettling() noexcept;
    void notifyChanges(urOS::FirstError& errors) noexcept;
    void endSettling() noexcept;
    /// The creation of the objects from `begin` to `end` stays undone for good.
    void abandonUnborn(std::uint32_t begin, std::uint32_t end) noexcept;
    /// The objects from `begin` on were created in a transaction that is not recorded.
    void forgetBirths(std::uint32_t begin) noexcept;
    /// The state of the objects created in recorded transactions from `begin` on.
    enum class Made : std::uint8_t { nothing, passing, lasting };
    [[nodiscard]] Made made(std::uint32_t begin) noexcept;
    /// Whether the object is one of those and no longer exists.
    [[nodiscard]] bool isPassing(Object const& object, std::uint32_t begin) noexcept {
        Entry const& entry = entryOf(object);
        return object.index_ >= begin && entry.born && !entry.exists();
    }
    /// Deletes the manager's objects, or releases them when references are left.
    void close() noexcept;

    /// Whether an unborn object was destroyed since the last call of `forgetDropped`.
    [[nodiscard]] bool droppedUnborn() const noexcept { return droppedUnborn_; }
    void forgetDropped() noexcept { droppedUnborn_ = false; }

    /// The bytes of objects that only records keep, and the bytes counted because of objects.
    [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

private:
    /// Whether the object survives the loss of its last reference, since fields are being restored.
    [[nodiscard]] bool mayReturn(Object const& object) const noexcept;
    void note(Object& object) noexcept;
    void keepOrDrop(Object& object) noexcept;
    void retireWaiting() noexcept;
    void retire(RefCountedObject& object) noexcept;
    void cease(RefCountedObject& object) noexcept;
    void notifyDestroyed(RefCountedObject& object) noexcept;
    void clearFields(RefCountedObject& object) noexcept;
    [[nodiscard]] bool needed(RefCountedObject const& object) noexcept;
    void remove(RefCountedObject& object) noexcept;
    void measure(RefCountedObject const& object) noexcept;
    void wait(RefCountedObject& object) noexcept;
    void die(Entry& entry) noexcept;
    void revive(Entry& entry) noexcept;
    template <class Visit>
    void forEachOwned(Visit visit) noexcept;

    std::uint32_t const mostPins_;
    ObjectTable objects_;
    EntryQueue<&Entry::nextWaiting> waiting_{objects_};  // counted objects to retire
    EntryQueue<&Entry::nextChanged> changed_{objects_};  // touched since the last settling
    std::size_t bytes_ = 0;
    unsigned deferrals_ = 0;
    Settling settling_ = Settling::none;
    bool droppedUnborn_ = false;
    bool closing_ = false;
};

}  // namespace nxTXN::impl
