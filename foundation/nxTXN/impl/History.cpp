// Implements transactions and steps.
#include "foundation/nxTXN/impl/History.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/debugChannel.h"
#include "foundation/nxTXN/impl/diagnostics.h"
#include "foundation/nxTXN/impl/passes.h"
#include "foundation/ur/TypeInfo.h"

namespace nxTXN::impl {

History::~History() {
    ++holds_;  // never released
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        records_.clear();
    }
    busy_ = true;
    lifetimes_.close();
    for (History* other : peers_) std::erase(other->peers_, this);
}

std::uint32_t History::enter(Object& object, bool counted, bool makingIsChange) {
    if (lifetimes_.objects().worthCompacting() && !busy_ && !lifetimes_.busy()) compact();
    bool const recorded = !levels_.empty() && levels_.back().keeps && !busy_;
    return lifetimes_.enter(object, counted, makingIsChange && recorded);
}

void History::compact() {
    ur::vector<std::uint32_t*> bounds;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        bounds.insert(bounds.end(), {&steps_[i].birthsBegin, &steps_[i].birthsEnd});
    }
    for (Level& level : levels_) bounds.push_back(&level.birthsBegin);
    lifetimes_.compact(bounds);
}

void History::refuseRecord() { throw std::length_error("the fields of an object are too large for a record"); }

bool History::pinForeign(Object& object) {
    if (object.history_) addPeer(*object.history_);
    return Lifetimes::pin(object);
}

void History::addPeer(History& other) {
    if (std::find(peers_.begin(), peers_.end(), &other) != peers_.end()) return;
    other.peers_.reserve(other.peers_.size() + 1);
    peers_.push_back(&other);
    other.peers_.push_back(this);
}

bool History::peerIsBusy() const noexcept {
    return std::any_of(peers_.begin(), peers_.end(), [](History const* other) { return other->busy_; });
}

bool History::restoring() const noexcept {
    return restorings_ > 0 ||
           std::any_of(peers_.begin(), peers_.end(), [](History const* other) { return other->restorings_ > 0; });
}

void History::forgetEverywhere(Object const& object) noexcept {
    auto const forget = [&object](History& history) {
        history.records_.forget(object);
        RecordStore::forget(object, history.writer_.mutableWords());
        history.replay_.forget(object);
    };
    forget(*object.history_);
    for (History* other : object.history_->peers_) forget(*other);
}

bool History::transactSilently(Object& object) {
    Entry const& entry = lifetimes_.entryOf(object);
    if (levels_.empty() || !levels_.back().keeps || busy_ || !entry.exists()) return false;
    if (entry.stamp != levels_.back().stamp) record(object, entry);
    return true;
}

// What the innermost transaction records is restored together with the records of those that it merges into. Older
// records must not name the object: they would be restored without the change.
bool History::allowsChange(Object const& object) noexcept {
    Level const* const scope = busy_ ? nullptr : mergedScope();
    if (scope && scope == levels_.data() && scope->kind == TransactionKind::recorded) return true;
    if (scope && object.index_ >= scope->birthsBegin) return true;
    if (mayUndoMaking(object)) return false;
    bool const hasOlder = !steps_.empty() || !scope || scope->outerRecords > 0;
    return !hasOlder || lifetimes_.entryOf(object).pins == 0;
}

/// The outermost transaction that keeps what the innermost one records, or null.
Level const* History::mergedScope() const noexcept {
    if (levels_.empty() || !levels_.back().keeps) return nullptr;
    std::size_t i = levels_.size() - 1;
    while (i > 0 && levels_[i].kind == TransactionKind::recorded && levels_[i - 1].keeps) --i;
    return &levels_[i];
}

/// Whether the end of a transaction, or a step, may undo the making of the object.
bool History::mayUndoMaking(Object const& object) noexcept {
    if (!lifetimes_.entryOf(object).born) return false;
    if (!levels_.empty() && object.index_ >= levels_.front().birthsBegin) return true;
    return !steps_.empty() && object.index_ >= steps_[0].birthsBegin && object.index_ < steps_.back().birthsEnd;
}

void History::record(Object& object, Entry const& entry) {
    Hold const hold(*this);
    std::uint32_t const formerStamp = entry.stamp;
    makeRoomForAbort();
    RecordStore::Hook hook;
    {
        Busy const busy(*this);
        writer_.clear();
        hook = Replay::save(object, writer_) ? RecordStore::Hook::given : RecordStore::Hook::none;
    }
    records_.push(object, {writer_.data(), writer_.mutableWords()}, hook, formerStamp);
    writer_.clear();
    Level& level = levels_.back();
    ++level.records;
    lifetimes_.entryOf(object).stamp = level.stamp;
}

void History::makeRoomForAbort() {
    replay_.reserve(std::size_t(levels_.back().outerRecords) + levels_.back().records + 1);
}

void History::missed(Object const& object) {
    if (busy_ || lifetimes_.busy() || unrecordedChange_ == UnrecordedChange::apply) return;
    bool const isOutside = levels_.empty();
    if (!isOutside && levels_.back().kind != TransactionKind::constant) return;
    if (unrecordedChange_ == UnrecordedChange::report && !debugChannel().isEnabled()) return;
    char const* const where = isOutside ? "outside a transaction" : "in a constant transaction";
    urString::CString const name = object.onTxnName();
    if (unrecordedChange_ == UnrecordedChange::report) return reportUnrecorded(object, name, where);
    throw std::logic_error(unrecordedText(object, name, where));
}

void History::begin(urString::CString const& name, TransactionKind kind, void const* coalesceKey) {
    bool const keeps = (kind == TransactionKind::recorded || kind == TransactionKind::transient) && !busy_;
    ur::Reference<SharedName> stepName;
    if (keeps && kind == TransactionKind::recorded && levels_.empty()) {
        lifetimes_.forgetDropped();
        steps_.makeRoom();
        stepName = shared(name);
    }
    std::uint32_t const outerRecords = levels_.empty() ? 0 : levels_.back().outerRecords + levels_.back().records;
    levels_.push_back({std::move(stepName), coalesceKey, records_.top(), 0, outerRecords, ++stamp_,
                       lifetimes_.objects().size(), kind, keeps});
}

// Hooks end only transactions that they began themselves.
bool History::mayEnd() const noexcept { return !levels_.empty() && !(busy_ && levels_.back().keeps); }

bool History::commit() {
    if (!mayEnd()) return false;
    Hold const hold(*this);
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

// The outer transaction, or an earlier step, keeps its own records: they are older. Hooks must wait until the remaining
// records are counted.
std::uint32_t History::merge(Level const& level, std::uint32_t stamp) {
    Busy const busy(*this);
    return records_.filterTop(level.begin, level.records, [this, stamp](Record const& record) {
        if (!record.subject) return false;
        Entry& entry = lifetimes_.entryOf(*record.subject);
        if (!entry.dead) entry.stamp = stamp;
        return record.formerStamp != stamp;
    });
}

void History::drop(Level const& level) {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    restoreStamps(level);
    lifetimes_.forgetBirths(level.birthsBegin);
    records_.pop(level.begin, level.records);
}

void History::restoreStamps(Level const& level) {
    records_.visit(level.begin, level.records, [this](Record const& record) {
        if (!record.subject) return;
        Entry& entry = lifetimes_.entryOf(*record.subject);
        if (!entry.dead) entry.stamp = record.formerStamp;
    });
}

// An object is recorded before it changes, and comparing costs time: records are compared only where a step that
// changes nothing would do harm or is likely.
bool History::changedAnything(Level const& level) noexcept {
    bool const harmless = redoCount() == 0 && !lifetimes_.droppedUnborn();
    if (harmless && level.records > 0 && lifetimes_.objects().size() == level.birthsBegin)
        return true;  // the usual edit
    Lifetimes::Made const made = lifetimes_.made(level.birthsBegin);
    if (made == Lifetimes::Made::lasting) return true;
    if (level.records == 0) return false;
    return (harmless && made == Lifetimes::Made::nothing) || anyIsDifferent(level);
}

bool History::anyIsDifferent(Level const& level) noexcept {
    Busy const busy(*this);
    bool const changed = records_.any(level.begin, level.records, [&](Record& r) { return isDifferent(r, level); });
    writer_.clear();
    return changed;
}

// Objects created and destroyed in the transaction do not count, since undo would not restore them.
bool History::isDifferent(Record& record, Level const& level) noexcept {
    if (!record.subject) return false;
    if (lifetimes_.isPassing(*record.subject, level.birthsBegin)) return false;
    try {
        writer_.clear();
        Replay::save(*record.subject, writer_);
    } catch (...) {
        return true;  // the record shows it if it matters
    }
    Content const before = record.content();
    return !std::ranges::equal(before.data, writer_.data()) || !std::ranges::equal(before.words, writer_.words());
}

void History::addStep(Level& level) {
    std::uint32_t const birthsEnd = lifetimes_.objects().size();
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
ur::Reference<SharedName> History::shared(urString::CString const& name) const {
    if (present_ > 0 && nameOf(present_ - 1) == name) return steps_[present_ - 1].name;
    return ur::Reference<SharedName>(new SharedName(name));
}

// Undo and redo seal the newest step, so that a later transaction cannot join it and undo nothing.
bool History::joinsNewestStep(Level const& level) const noexcept {
    return level.coalesceKey && level.coalesceKey == coalesceKey_ && !sealed_ && present_ > 0;
}

// The newest step becomes the present; its records move down into the place of the discarded ones.
void History::discardUndone() {
    if (present_ + 1 == steps_.size()) {
        ++present_;
        return;
    }
    if (clean_ != noState && clean_ > present_) clean_ = noState;
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

// What a done step created stays.
void History::discardOldest() {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    Step const step = steps_.popFront();
    --present_;
    if (clean_ != noState) clean_ = clean_ > 0 ? clean_ - 1 : noState;
    records_.popBottom(step.records);
}

void History::discardFarthest() {
    Lifetimes::Deferral const deferral(lifetimes_);
    Busy const busy(*this);
    Step const step = steps_.popBack();
    if (clean_ != noState && clean_ > steps_.size()) clean_ = noState;
    lifetimes_.abandonUnborn(step.birthsBegin, step.birthsEnd);
    records_.pop(step.begin, step.records);
}

bool History::overLimit() const noexcept {
    std::size_t const steps = steps_.size();
    return steps > 1 && ((stepLimit_ > 0 && steps > stepLimit_) || (byteLimit_ > 0 && bytes() > byteLimit_));
}

void History::enforceLimits() {
    while (overLimit()) present_ > 0 ? discardOldest() : discardFarthest();
}

void History::setLimits(std::size_t steps, std::size_t bytes) {
    stepLimit_ = steps;
    byteLimit_ = bytes;
    if (!ready() || !overLimit()) return;
    Hold const hold(*this);
    enforceLimits();
    changed_.emit();
}

bool History::clear() {
    if (!ready()) return false;
    if (steps_.empty()) return true;
    Hold const hold(*this);
    while (redoCount() > 0) discardFarthest();
    while (undoCount() > 0) discardOldest();
    changed_.emit();
    return true;
}

bool History::turn(std::size_t step, Lifetimes::Birth birth) {
    if (!ready()) return false;
    Hold const hold(*this);
    urOS::FirstError errors;
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        putBack(step, birth, errors);
    }
    sealed_ = true;
    enforceLimits();
    changed_.emit();
    if (errors.get()) throw HookError(errors.get(), HookError::Outcome::completed);
    return true;
}

void History::putBack(std::size_t index, Lifetimes::Birth birth, urOS::FirstError& errors) {
    bool const isUndo = birth == Lifetimes::Birth::undone;
    Step const& step = steps_[index];
    if (!replay_.restore(step, isUndo ? Replay::Order::backwards : Replay::Order::forwards, errors)) {
        settle(errors);
        replay_.discard();
        throw HookError(errors.get(), HookError::Outcome::unchanged);
    }
    present_ = isUndo ? index : index + 1;
    lifetimes_.setBirths(step.birthsBegin, step.birthsEnd, birth);
    settle(errors);
    replay_.notifyModified(errors);
    replay_.exchange();
}

bool History::abort() {
    if (!mayEnd()) return false;
    Hold const hold(*this);
    urOS::FirstError errors;
    {
        Busy const busy(*this);  // also while the objects that the abort leaves are retired
        Lifetimes::Deferral const deferral(lifetimes_);
        Level const level = std::move(levels_.back());
        levels_.pop_back();
        if (level.keeps) takeBack(level, errors);
    }
    if (errors.get()) throw HookError(errors.get(), HookError::Outcome::completed);
    return true;
}

void History::takeBack(Level const& level, urOS::FirstError& errors) noexcept {
    replay_.takeBack(level.begin, level.records, errors);
    std::uint32_t const birthsEnd = lifetimes_.objects().size();
    lifetimes_.setBirths(level.birthsBegin, birthsEnd, Lifetimes::Birth::undone);
    settle(errors);
    restoreStamps(level);
    replay_.notifyModified(errors);
    lifetimes_.abandonUnborn(level.birthsBegin, birthsEnd);
    records_.pop(level.begin, level.records);
}

// Records of several managers may name one manager's objects: all of them are settled together, and no history of
// theirs moves meanwhile. A hook may destroy a manager.
void History::settle(urOS::FirstError& errors) noexcept {
    lifetimes_.beginSettling();
    for (History* other : peers_) {
        if (other->busy_ || !other->lifetimes_.busy()) continue;
        ++other->holds_;
        other->busy_ = true;
        other->settledBy_ = this;
        other->lifetimes_.beginSettling();
    }
    lifetimes_.notifyChanges(errors);
    while (History* other = borrowed(Lifetimes::Settling::begun)) other->lifetimes_.notifyChanges(errors);
    lifetimes_.endSettling();
    while (History* other = borrowed(Lifetimes::Settling::notified)) {
        other->lifetimes_.endSettling();
        other->settledBy_ = nullptr;
        other->busy_ = false;
        other->release();
    }
}

History* History::borrowed(Lifetimes::Settling stage) const noexcept {
    auto const found = std::find_if(peers_.begin(), peers_.end(), [&](History* other) {
        return other->settledBy_ == this && other->lifetimes_.settling() == stage;
    });
    return found == peers_.end() ? nullptr : *found;
}

std::size_t History::bytes() const noexcept {
    return steps_.size() * sizeof(Step) + records_.bytes() + lifetimes_.bytes();
}

}  // namespace nxTXN::impl
