// What exists after fields have been put back.
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
    // Even if the field does not count as a reference, whoever holds it must hear when the object goes.
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

bool Lifetimes::anyBorn(std::uint32_t begin) noexcept {
    for (std::uint32_t i = begin; i < roster_.size(); ++i) {
        if (roster_[i].object && roster_[i].born) return true;
    }
    return false;
}

// Nothing is noted while hooks run, since nothing is restored then.
void Lifetimes::tellChanges(Failures& failures) {
    Deferral const deferral(*this);
    changed_.forEach([this](Object& object) {
        Entry& entry = entryOf(object);
        if (entry.dead && static_cast<RefCountedObject&>(object).references_ > 0) revive(entry);
        entry.queued = false;  // what the hooks bring about may queue it again
        addPin(object);
    });
    changed_.forEach([this, &failures](Object& object) {
        Entry const& entry = entryOf(object);
        if (entry.exists() != entry.existed) failures.run([&object] { object.onTxnExtant(); });
    });
    changed_.forEach([this](Object& object) { keepOrDrop(object); });
    changed_.clear();
}

void Lifetimes::keepOrDrop(Object& object) noexcept {
    unpin(object);
    Entry const& entry = entryOf(object);
    if (!entry.dead || entry.pins == 0) return;
    auto const& counted = static_cast<RefCountedObject const&>(object);
    if (counted.references_ == 0) measure(counted);
}

}  // namespace nxTXN::impl
