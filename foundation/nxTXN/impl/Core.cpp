// Recording, and the steps that committed transactions become.
#include "foundation/nxTXN/impl/Core.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "foundation/nxTXN/impl/diagnostics.h"
#include "foundation/nxTXN/impl/passes.h"

namespace nxTXN::impl {

Core::~Core() {
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        records_.clear();
    }
    busy_ = true;
    lifetimes_.close();
    for (Core* other : acquaintances_) std::erase(other->acquaintances_, this);
}

std::uint32_t Core::enter(Object& object, bool counted, bool makingIsChange) {
    if (lifetimes_.roster().worthCompacting() && !busy_ && !lifetimes_.busy()) compact();
    bool const recorded = !levels_.empty() && levels_.back().keeps && !busy_;
    return lifetimes_.enter(object, counted, makingIsChange && recorded);
}

void Core::compact() {
    ur::vector<std::uint32_t*> bounds;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        bounds.insert(bounds.end(), {&steps_[i].birthsBegin, &steps_[i].birthsEnd});
    }
    for (Level& level : levels_) bounds.push_back(&level.birthsBegin);
    lifetimes_.compact(bounds);
}

void Core::refuseRecord() { throw std::length_error("the fields of an object are too large for a record"); }

bool Core::pinForeign(Object& object) {
    if (object.core_) meet(*object.core_);
    return Lifetimes::pin(object);
}

void Core::meet(Core& other) {
    if (std::find(acquaintances_.begin(), acquaintances_.end(), &other) != acquaintances_.end()) return;
    other.acquaintances_.reserve(other.acquaintances_.size() + 1);
    acquaintances_.push_back(&other);
    other.acquaintances_.push_back(this);
    if (lifetimes_.restoring()) other.lifetimes_.setRestoring(true);
}

bool Core::nearIsBusy() const noexcept {
    return std::any_of(acquaintances_.begin(), acquaintances_.end(), [](Core const* other) { return other->busy_; });
}

void Core::setRestoring(bool restoring) noexcept {
    lifetimes_.setRestoring(restoring);
    for (Core* other : acquaintances_) other->lifetimes_.setRestoring(restoring);
}

void Core::forgetEverywhere(Object const& object) noexcept {
    auto const forget = [&object](Core& core) {
        core.records_.forget(object);
        RecordStore::forget(object, core.writer_.mutableWords());
    };
    forget(*object.core_);
    for (Core* other : object.core_->acquaintances_) forget(*other);
}

void Core::transact(Object& object) {
    Entry const& entry = lifetimes_.entryOf(object);
    if (levels_.empty() || !levels_.back().keeps || busy_ || !entry.exists()) return missed(object);
    if (entry.stamp != levels_.back().stamp) record(object, entry);
}

void Core::record(Object& object, Entry const& entry) {
    std::uint32_t const formerStamp = entry.stamp;
    makeRoomForAbort();
    RecordStore::Hook hook;
    {
        Busy const busy(*this);
        writer_.clear();
        hook = save(object) ? RecordStore::Hook::given : RecordStore::Hook::none;
    }
    records_.push(object, {writer_.data(), writer_.mutableWords()}, hook, formerStamp);
    writer_.clear();
    Level& level = levels_.back();
    ++level.records;
    lifetimes_.entryOf(object).stamp = level.stamp;
}

void Core::makeRoomForAbort() {
    std::size_t const records = std::size_t(levels_.back().outerRecords) + levels_.back().records + 1;
    if (records > work_.capacity()) work_.reserve(2 * records);
}

void Core::missed(Object const& object) {
    if (busy_ || lifetimes_.busy()) return;
    if (levels_.empty()) {
        reportUnrecorded(object, Unrecorded::outside);
    } else if (levels_.back().kind == TransactionKind::constant) {
        reportUnrecorded(object, Unrecorded::constant);
    }
}

void Core::begin(urString::CString const& name, TransactionKind kind, void const* coalesceKey) {
    bool const keeps = (kind == TransactionKind::recorded || kind == TransactionKind::transient) && !busy_;
    ur::Reference<SharedName> stepName;
    if (keeps && kind == TransactionKind::recorded && levels_.empty()) {
        lifetimes_.forgetDropped();
        steps_.makeRoom();
        stepName = shared(name);
    }
    std::uint32_t const outerRecords = levels_.empty() ? 0 : levels_.back().outerRecords + levels_.back().records;
    levels_.push_back({std::move(stepName), coalesceKey, records_.top(), 0, outerRecords, ++stamp_,
                       lifetimes_.roster().size(), kind, keeps});
}

// Hooks end only transactions that they began themselves.
bool Core::mayEnd() const noexcept { return !levels_.empty() && !(busy_ && levels_.back().keeps); }

bool Core::commit() {
    if (!mayEnd()) return false;
    Level level = std::move(levels_.back());
    levels_.pop_back();
    if (!level.keeps) return true;
    bool const recorded = level.kind == TransactionKind::recorded;
    if (recorded && levels_.empty()) {
        changedAnything(level) ? addStep(level) : drop(level);
    } else if (recorded && levels_.back().keeps) {
        Lifetimes::Deferral const deferral(lifetimes_);
        levels_.back().records += merge(level, levels_.back().stamp);
    } else {
        drop(level);
    }
    return true;
}

// The outer transaction, or an earlier step, keeps what it has recorded itself: that is older. Hooks must wait until
// the records that stay are counted.
std::uint32_t Core::merge(Level const& level, std::uint32_t stamp) {
    Busy const busy(*this);
    return records_.filterTop(level.begin, level.records, [this, stamp](Record const& record) {
        if (!record.subject) return false;
        Entry& entry = lifetimes_.entryOf(*record.subject);
        if (!entry.dead) entry.stamp = stamp;
        return record.formerStamp != stamp;
    });
}

void Core::drop(Level const& level) {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    restoreStamps(level);
    lifetimes_.forgetBirths(level.birthsBegin);
    records_.pop(level.begin, level.records);
}

void Core::restoreStamps(Level const& level) {
    records_.visit(level.begin, level.records, [this](Record const& record) {
        if (!record.subject) return;
        Entry& entry = lifetimes_.entryOf(*record.subject);
        if (!entry.dead) entry.stamp = record.formerStamp;
    });
}

// Whoever records is about to change, and looking costs time: what is recorded is compared only where a step that
// changes nothing would do harm or is likely.
bool Core::changedAnything(Level const& level) noexcept {
    bool const harmless = redoCount() == 0 && !lifetimes_.droppedUnborn();
    if (harmless && level.records > 0 && lifetimes_.roster().size() == level.birthsBegin)
        return true;  // the usual edit
    Lifetimes::Made const made = lifetimes_.made(level.birthsBegin);
    if (made == Lifetimes::Made::lasting) return true;
    if (level.records == 0) return false;
    return (harmless && made == Lifetimes::Made::nothing) || anyIsDifferent(level);
}

bool Core::anyIsDifferent(Level const& level) noexcept {
    Busy const busy(*this);
    bool const changed = records_.any(level.begin, level.records, [&](Record& r) { return isDifferent(r, level); });
    writer_.clear();
    return changed;
}

// What was made and has gone again does not count, since undo would bring back nothing of it.
bool Core::isDifferent(Record& record, Level const& level) noexcept {
    if (!record.subject) return false;
    if (lifetimes_.isPassing(*record.subject, level.birthsBegin)) return false;
    try {
        writer_.clear();
        save(*record.subject);
    } catch (...) {
        return true;  // the record shows it if it matters
    }
    Content const before = record.content();
    return !std::ranges::equal(before.data, writer_.data()) || !std::ranges::equal(before.words, writer_.words());
}

void Core::addStep(Level& level) {
    std::uint32_t const birthsEnd = lifetimes_.roster().size();
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        if (joinsNewestStep(level)) {
            Step& step = steps_.back();
            step.records += merge(level, step.stamp);
            step.birthsEnd = birthsEnd;
        } else {
            coalesceKey_ = level.coalesceKey;
            steps_.push({std::move(level.name), level.begin, level.records, level.stamp, level.birthsBegin, birthsEnd});
            discardUndone();
        }
        sealed_ = false;
    }
    enforceLimits();
    changed_.emit();
}

// Most steps of a session share their name with the one before.
ur::Reference<SharedName> Core::shared(urString::CString const& name) const {
    if (present_ > 0 && nameOf(present_ - 1) == name) return steps_[present_ - 1].name;
    return ur::Reference<SharedName>(new SharedName(name));
}

// Undo and redo seal the newest step, so that nothing is undone when it is joined.
bool Core::joinsNewestStep(Level const& level) const noexcept {
    return level.coalesceKey && level.coalesceKey == coalesceKey_ && !sealed_ && present_ > 0;
}

// The newest step is the new present; its records slide down into the place of those that go.
void Core::discardUndone() {
    if (present_ + 1 == steps_.size()) {
        ++present_;
        return;
    }
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    Step newest = steps_.popBack();
    newest.begin = steps_[present_].begin;
    std::uint32_t discarded = 0;
    while (redoCount() > 0) {
        Step const step = steps_.popBack();
        discarded += step.records;
        lifetimes_.abandonUnborn(step.birthsBegin, step.birthsEnd);
    }
    std::uint32_t position = 0;
    records_.filterTop(newest.begin, discarded + newest.records,
                       [&](Record const&) { return position++ >= discarded; });
    steps_.push(std::move(newest));
    ++present_;
}

// What a step made that is done stays.
void Core::discardOldest() {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    Step const step = steps_.popFront();
    --present_;
    records_.popBottom(step.records);
}

void Core::discardFarthest() {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    Step const step = steps_.popBack();
    lifetimes_.abandonUnborn(step.birthsBegin, step.birthsEnd);
    records_.pop(step.begin, step.records);
}

bool Core::overLimit() const noexcept {
    std::size_t const steps = steps_.size();
    return steps > 1 && ((stepLimit_ > 0 && steps > stepLimit_) || (byteLimit_ > 0 && bytes() > byteLimit_));
}

void Core::enforceLimits() {
    while (overLimit()) present_ > 0 ? discardOldest() : discardFarthest();
}

void Core::setLimits(std::size_t steps, std::size_t bytes) {
    stepLimit_ = steps;
    byteLimit_ = bytes;
    if (!ready() || !overLimit()) return;
    enforceLimits();
    changed_.emit();
}

bool Core::clear() {
    if (!ready()) return false;
    if (steps_.empty()) return true;
    while (redoCount() > 0) discardFarthest();
    while (undoCount() > 0) discardOldest();
    changed_.emit();
    return true;
}

std::size_t Core::bytes() const noexcept {
    return steps_.size() * sizeof(Step) + records_.bytes() + lifetimes_.bytes();
}

}  // namespace nxTXN::impl
