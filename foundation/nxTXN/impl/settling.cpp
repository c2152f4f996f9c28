// What exists after fields have been put back.
#include <algorithm>

#include "foundation/nxTXN/impl/Core.h"
#include "foundation/nxTXN/impl/Lifetimes.h"

namespace nxTXN::impl {

void Lifetimes::note(Object& object) noexcept {
    Entry& entry = entryOf(object);
    if (entry.queued) return;
    entry.queued = true;
    entry.existed = entry.exists();
    changed_.push(object.index_);
}

void Lifetimes::returned(Object& object) noexcept {
    if (!object.core_) return;
    Lifetimes& lifetimes = object.core_->lifetimes();
    Entry& entry = lifetimes.entryOf(object);
    if (!entry.dead || !lifetimes.restoring_) return;
    // The owner of a field that does not count as a reference is notified as well when the object goes.
    entry.told = false;
    lifetimes.note(object);
}

void Lifetimes::setBirths(std::uint32_t begin, std::uint32_t end, Birth birth) noexcept {
    for (std::uint32_t i = begin; i < end; ++i) {
        Entry& entry = roster_[i];
        if (!entry.object || !entry.born) continue;
        note(*entry.object);
        entry.unborn = birth == Birth::undone;
    }
}

void Lifetimes::forgetBirths(std::uint32_t begin) noexcept {
    for (std::uint32_t i = begin; i < roster_.size(); ++i) roster_[i].born = false;
}

Lifetimes::Made Lifetimes::made(std::uint32_t begin) noexcept {
    Made made = Made::nothing;
    for (std::uint32_t i = begin; i < roster_.size(); ++i) {
        if (!roster_[i].born) continue;
        if (roster_[i].extant()) return Made::lasting;
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
        entry.queued = false;  // what the hooks bring about may queue it again
        addPin(object);
    });
}

// Nothing is noted while hooks run, since nothing is restored then.
void Lifetimes::tellChanges(urOS::FirstError& errors) noexcept {
    settling_ = Settling::telling;
    changed_.forEach([this, &errors](Object& object) {
        Entry const& entry = entryOf(object);
        if (entry.exists() != entry.existed) errors.guard([&object] { object.onTxnExtant(); });
    });
    settling_ = Settling::told;
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

// The manager goes while another one has touched its objects.
void Lifetimes::abandonSettling() noexcept {
    changed_.forEach([this](Object& object) { entryOf(object).queued = false; });
    changed_.clear();
    settling_ = Settling::none;
    deferrals_ = 0;
}

// Records of several managers may name the objects of one: all of them are settled together, with no history of theirs
// moving meanwhile. A hook may take a manager away.
void Core::settle(urOS::FirstError& errors) noexcept {
    if (acquaintances_.empty()) return lifetimes_.settle(errors);
    lifetimes_.beginSettling();
    for (Core* other : acquaintances_) {
        if (other->busy_ || !other->lifetimes_.busy()) continue;
        other->busy_ = true;
        other->settledBy_ = this;
        other->lifetimes_.beginSettling();
    }
    lifetimes_.tellChanges(errors);
    while (Core* other = borrowed(Lifetimes::Settling::begun)) other->lifetimes_.tellChanges(errors);
    lifetimes_.endSettling();
    while (Core* other = borrowed(Lifetimes::Settling::told)) {
        other->lifetimes_.endSettling();
        other->settledBy_ = nullptr;
        other->busy_ = false;
    }
}

Core* Core::borrowed(Lifetimes::Settling stage) const noexcept {
    auto const found = std::find_if(acquaintances_.begin(), acquaintances_.end(), [&](Core* other) {
        return other->settledBy_ == this && other->lifetimes_.settling() == stage;
    });
    return found == acquaintances_.end() ? nullptr : *found;
}

void Lifetimes::keepOrDrop(Object& object) noexcept {
    unpin(object);
    Entry const& entry = entryOf(object);
    if (!entry.dead || entry.pins == 0) return;
    auto const& counted = static_cast<RefCountedObject const&>(object);
    if (counted.references_ == 0) measure(counted);
}

}  // namespace nxTXN::impl
