// Tracks the existence of transaction objects and deletes them.
#include "foundation/nxTXN/impl/Lifetimes.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "foundation/nxTXN/impl/History.h"
#include "foundation/nxTXN/impl/passes.h"
#include "foundation/urOS/reportException.h"

namespace nxTXN::impl {
namespace {

/// Runs a hook where no caller can receive its exception.
template <class Hook>
void runReporting(char const* name, Hook&& hook) noexcept {
    try {
        hook();
    } catch (...) {
        urOS::reportException(name, std::current_exception());
    }
}

// A counted object without a manager stores the number of records that need it in place of its index.
constexpr std::uint32_t uncounted = ~0U;

// An object's destructor may create another reference to it without a second destruction.
constexpr std::uint32_t referencesOfTheDeleted = 1U << 30;

}  // namespace

std::uint32_t Lifetimes::enter(Object& object, bool counted, bool born) {
    Entry entry{};
    entry.object = &object;
    entry.counted = counted;
    entry.born = born;
    return objects_.add(entry);
}

void Lifetimes::leave(Object& object) noexcept {
    if (entryOf(object).pins > 0) History::forgetEverywhere(object);
    Entry const& entry = entryOf(object);
    if (entry.dead) bytes_ -= entry.stamp;
    objects_.remove(object.index_);
    object.history_ = nullptr;
    object.index_ = entry.counted ? 0 : uncounted;
}

void Lifetimes::compact(std::span<std::uint32_t* const> bounds) {
    objects_.compact(bounds, [](Object& object, std::uint32_t index) { object.index_ = index; });
}

bool Lifetimes::pin(Object& object) noexcept {
    if (object.history_) {
        object.history_->lifetimes().addPin(object);
    } else if (object.index_ != uncounted) {
        ++object.index_;
    } else {
        return false;
    }
    return true;
}

void Lifetimes::unpin(Object& object) noexcept {
    if (!object.history_) {
        --object.index_;
        return removeOrphan(static_cast<RefCountedObject&>(object));
    }
    Lifetimes& lifetimes = object.history_->lifetimes();
    Entry& entry = lifetimes.entryOf(object);
    if (entry.pins != lifetimes.mostPins_) --entry.pins;
    if (entry.pins > 0 || !entry.dead) return;
    auto& counted = static_cast<RefCountedObject&>(object);
    if (counted.references_ == 0) lifetimes.wait(counted);
}

void Lifetimes::count(Object const& object, std::ptrdiff_t bytes) noexcept {
    if (object.history_) object.history_->lifetimes().bytes_ += static_cast<std::size_t>(bytes);
}

void Lifetimes::removeOrphan(RefCountedObject& object) noexcept {
    if (object.index_ > 0 || object.references_ > 0) return;
    object.references_ = referencesOfTheDeleted;
    object.txnDelete();
}

bool Lifetimes::mayReturn(Object const& object) const noexcept {
    return settling_ == Settling::none && object.history_->restoring();
}

void Lifetimes::lastReferenceGone(RefCountedObject& object) noexcept {
    if (closing_) return;
    Entry& entry = entryOf(object);
    if (entry.queued) return;
    if (!mayReturn(object)) return wait(object);
    note(object);
    if (!entry.dead) die(entry);
}

void Lifetimes::wait(RefCountedObject& object) noexcept {
    Entry& entry = entryOf(object);
    if (entry.queued || closing_) return;
    entry.queued = true;
    if (deferrals_ > 0) return waiting_.push(object.index_);
    History::Hold const hold(*object.history_);
    Deferral const deferral(*this);
    retire(object);
}

void Lifetimes::retireWaiting() noexcept {
    while (!waiting_.empty()) {
        if (Object* const object = waiting_.pop()) retire(static_cast<RefCountedObject&>(*object));
    }
}

// Entries may move while hooks run, since hooks may create objects: hold no entry across a hook.
void Lifetimes::retire(RefCountedObject& object) noexcept {
    if (object.references_ == 0 && entryOf(object).exists()) cease(object);
    if (object.references_ == 0) {
        if (entryOf(object).unborn) droppedUnborn_ = true;
        die(entryOf(object));
        if (!needed(object)) notifyDestroyed(object);
        if (!needed(object)) clearFields(object);
        if (!needed(object)) return remove(object);
        measure(object);
    }
    entryOf(object).queued = false;
}

void Lifetimes::cease(RefCountedObject& object) noexcept {
    notifyDestroyed(object);
    die(entryOf(object));
    runReporting("onTxnExtant", [&] { object.onTxnExtant(); });
}

void Lifetimes::notifyDestroyed(RefCountedObject& object) noexcept {
    if (entryOf(object).notified) return;
    entryOf(object).notified = true;
    runReporting("onTxnDestroyed", [&] { object.onTxnDestroyed(); });
}

void Lifetimes::clearFields(RefCountedObject& object) noexcept {
    ClearingPass pass;
    runReporting("onTransact", [&] { object.onTransact(pass); });
}

bool Lifetimes::needed(RefCountedObject const& object) noexcept {
    return object.references_ > 0 || entryOf(object).pins > 0;
}

void Lifetimes::remove(RefCountedObject& object) noexcept {
    entryOf(object).queued = false;
    object.references_ = referencesOfTheDeleted;
    leave(object);
    object.txnDelete();
}

void Lifetimes::measure(RefCountedObject const& object) noexcept {
    ObjectSize size;
    runReporting("onTxnGetSize", [&] { object.onTxnGetSize(size); });
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    Entry& entry = entryOf(object);
    bytes_ -= entry.stamp;
    entry.stamp = static_cast<std::uint32_t>(std::min(size.total(), most));
    bytes_ += entry.stamp;
}

void Lifetimes::die(Entry& entry) noexcept {
    if (entry.dead) return;
    entry.dead = true;
    entry.stamp = 0;
}

void Lifetimes::revive(Entry& entry) noexcept {
    bytes_ -= entry.stamp;
    entry.dead = false;
    entry.notified = false;
    entry.stamp = 0;
}

void Lifetimes::abandonUnborn(std::uint32_t begin, std::uint32_t end) noexcept {
    Deferral const deferral(*this);
    for (std::uint32_t i = begin; i < end; ++i) {
        Entry& entry = objects_[i];
        if (!entry.object || !entry.unborn) continue;
        entry.born = false;  // no step around this one may redo its creation
        if (!entry.counted) continue;
        auto& object = static_cast<RefCountedObject&>(*entry.object);
        if (object.references_ > 0) continue;
        die(entry);
        if (entry.pins == 0) wait(object);
    }
}

void Lifetimes::note(Object& object) noexcept {
    Entry& entry = entryOf(object);
    if (entry.queued) return;
    entry.queued = true;
    entry.existed = entry.exists();
    changed_.push(object.index_);
}

void Lifetimes::returned(Object& object) noexcept {
    if (!object.history_) return;
    Lifetimes& lifetimes = object.history_->lifetimes();
    Entry& entry = lifetimes.entryOf(object);
    if (!entry.dead || !lifetimes.mayReturn(object)) return;
    // The owner of a field that is not a counted reference is notified as well when the object goes.
    entry.notified = false;
    lifetimes.note(object);
}

void Lifetimes::setBirths(std::uint32_t begin, std::uint32_t end, Birth birth) noexcept {
    for (std::uint32_t i = begin; i < end; ++i) {
        Entry& entry = objects_[i];
        if (!entry.object || !entry.born) continue;
        note(*entry.object);
        entry.unborn = birth == Birth::undone;
    }
}

void Lifetimes::forgetBirths(std::uint32_t begin) noexcept {
    for (std::uint32_t i = begin; i < objects_.size(); ++i) objects_[i].born = false;
}

Lifetimes::Made Lifetimes::made(std::uint32_t begin) noexcept {
    Made made = Made::nothing;
    for (std::uint32_t i = begin; i < objects_.size(); ++i) {
        if (!objects_[i].born) continue;
        if (objects_[i].extant()) return Made::lasting;
        made = Made::passing;
    }
    return made;
}

void Lifetimes::beginSettling() noexcept {
    ++deferrals_;
    settling_ = Settling::begun;
    changed_.forEach([this](Object& object) {
        Entry& entry = entryOf(object);
        if (entry.dead && static_cast<RefCountedObject&>(object).references_ > 0) revive(entry);
        entry.queued = false;  // hooks may queue it again
        addPin(object);
    });
}

// Nothing is queued while hooks run, since nothing is restored then.
void Lifetimes::notifyChanges(urOS::FirstError& errors) noexcept {
    settling_ = Settling::notifying;
    changed_.forEach([this, &errors](Object& object) {
        Entry const& entry = entryOf(object);
        if (entry.exists() != entry.existed) errors.guard([&object] { object.onTxnExtant(); });
    });
    settling_ = Settling::notified;
}

void Lifetimes::endSettling() noexcept {
    {
        Deferral const deferral(*this);
        --deferrals_;
        changed_.forEach([this](Object& object) { keepOrDrop(object); });
        changed_.clear();
        settling_ = Settling::none;
    }
}

void Lifetimes::keepOrDrop(Object& object) noexcept {
    unpin(object);
    Entry const& entry = entryOf(object);
    if (!entry.dead || entry.pins == 0) return;
    auto const& counted = static_cast<RefCountedObject const&>(object);
    if (counted.references_ == 0) measure(counted);
}

// First all objects are notified, while everything is still in place. Then references between objects are released, and
// with them the objects that only those kept.
void Lifetimes::close() noexcept {
    changed_.forEach([this](Object& object) { entryOf(object).queued = false; });  // another manager has touched them
    closing_ = true;
    forEachOwned([this](RefCountedObject& object) { notifyDestroyed(object); });
    forEachOwned([this](RefCountedObject& object) {
        die(entryOf(object));
        clearFields(object);
    });
    closing_ = false;
    {
        Deferral const deferral(*this);
        forEachOwned([this](RefCountedObject& object) {
            if (entryOf(object).pins > 0) History::forgetEverywhere(object);  // records of other managers
            entryOf(object).pins = 0;
            if (object.references_ == 0) wait(object);
        });
    }
    for (std::uint32_t i = 0; i < objects_.size(); ++i) {
        if (objects_[i].object) leave(*objects_[i].object);
    }
}

template <class Visit>
void Lifetimes::forEachOwned(Visit visit) noexcept {
    for (std::uint32_t i = 0; i < objects_.size(); ++i) {
        if (objects_[i].object && objects_[i].counted) visit(static_cast<RefCountedObject&>(*objects_[i].object));
    }
}

}  // namespace nxTXN::impl
