// What exists after fields have been put back.
#include "foundation/nxTXN/impl/Core.h"
#include "foundation/nxTXN/impl/Lifetimes.h"

namespace nxTXN::impl {

void Lifetimes::note(Object& object) {
    Entry& entry = entryOf(object);
    if (entry.queued) return;
    changes_.push_back({&object, entry.exists()});
    entry.queued = true;
}

void Lifetimes::returned(Object& object) {
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

// Nothing is noted while hooks run, since nothing is restored then; so the list stays as it is, except that objects
// which go meanwhile are taken out of it.
void Lifetimes::tellChanges(Failures& failures) {
    Deferral const deferral(*this);
    for (Change const& change : changes_) {
        if (!change.object) continue;
        Entry& entry = entryOf(*change.object);
        if (entry.dead && static_cast<RefCountedObject*>(change.object)->references_ > 0) revive(entry);
        entry.queued = false;  // what the hooks bring about may queue it again
        pin(*change.object);
    }
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        Object* const object = changes_[i].object;
        if (object && entryOf(*object).exists() != changes_[i].existed) {
            failures.run([object] { object->onTxnExtant(); });
        }
    }
    for (Change const& change : changes_) {
        if (change.object) keepOrDrop(*change.object);
    }
    changes_.clear();
}

void Lifetimes::keepOrDrop(Object& object) noexcept {
    unpin(object);
    Entry const& entry = entryOf(object);
    if (!entry.dead || entry.pins == 0) return;
    auto const& counted = static_cast<RefCountedObject const&>(object);
    if (counted.references_ == 0) measure(counted);
}

}  // namespace nxTXN::impl
