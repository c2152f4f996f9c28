// Which objects exist, and when they are deleted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/impl/EntryQueue.h"
#include "foundation/nxTXN/impl/ObjectTable.h"
#include "foundation/urOS/FirstError.h"

namespace nxTXN::impl {

/// Follows the objects of one manager from their making to their deletion.
///
/// An object is *dead* when its last reference has gone and *unborn* when its making is undone; it exists when it is
/// neither. A dead object is deleted when no record pins it. Objects are retired one at a time: what loses its
/// last reference meanwhile waits for its turn, so that long chains need no stack. All of this works without memory:
/// it also happens where a lack of memory could not be reported.
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

    /// A record needs the object, or needs it no longer. An object whose manager has gone counts for itself; false for
    /// one that could go then without any record being notified.
    [[nodiscard]] static bool pin(Object& object) noexcept;
    /// The same for an object of this manager.
    void addPin(Object const& object) noexcept {
        Entry& entry = entryOf(object);
        if (entry.pins != mostPins_) ++entry.pins;
    }
    static void unpin(Object& object) noexcept;
    /// The history holds so many bytes more, or fewer, because of the object.
    static void count(Object const& object, std::ptrdiff_t bytes) noexcept;

    void lastReferenceGone(RefCountedObject& object) noexcept;
    /// Deletes an object whose manager has gone unless something needs it.
    static void removeOrphan(RefCountedObject& object) noexcept;

    /// While one lives, objects are not retired; the end of the outermost one makes up for it.
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

    /// A record gave the object back to a field.
    static void returned(Object& object) noexcept;
    /// Does or undoes the making of the objects from `begin` to `end`.
    void setBirths(std::uint32_t begin, std::uint32_t end, Birth birth) noexcept;
    /// Settling decides which of the objects touched since the last time exist, and notifies those for which that
    /// changed. Objects are not retired meanwhile.
    enum class Settling : std::uint8_t { none, begun, notifying, notified };
    [[nodiscard]] Settling settling() const noexcept { return settling_; }
    void beginSettling() noexcept;
    void notifyChanges(urOS::FirstError& errors) noexcept;
    void endSettling() noexcept;
    /// The undone making of the objects from `begin` to `end` is final.
    void abandonUnborn(std::uint32_t begin, std::uint32_t end) noexcept;
    /// The objects from `begin` on were made in a transaction that is not recorded.
    void forgetBirths(std::uint32_t begin) noexcept;
    /// What has become of the objects made in recorded transactions from `begin` on.
    enum class Made : std::uint8_t { nothing, passing, lasting };
    [[nodiscard]] Made made(std::uint32_t begin) noexcept;
    /// Whether the object was one of those, and exists no longer.
    [[nodiscard]] bool isPassing(Object const& object, std::uint32_t begin) noexcept {
        Entry const& entry = entryOf(object);
        return object.index_ >= begin && entry.born && !entry.exists();
    }
    /// Deletes what the manager owns, or lets go of it when references are left.
    void close() noexcept;

    /// Whether an object has gone whose making was undone, since the last call of `forgetDropped`.
    [[nodiscard]] bool droppedUnborn() const noexcept { return droppedUnborn_; }
    void forgetDropped() noexcept { droppedUnborn_ = false; }

    /// The bytes of the objects that only records keep, and those that were counted because of objects.
    [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

private:
    /// Whether the object may come and go without being destroyed, since fields are being put back.
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
    EntryQueue<&Entry::nextWaiting> waiting_{objects_};  // counted ones, to be retired
    EntryQueue<&Entry::nextChanged> changed_{objects_};  // touched since the last settling
    std::size_t bytes_ = 0;
    unsigned deferrals_ = 0;
    Settling settling_ = Settling::none;
    bool droppedUnborn_ = false;
    bool closing_ = false;
};

}  // namespace nxTXN::impl
