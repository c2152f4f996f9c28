// Undo, redo and abort: putting back what records hold.
#include <algorithm>
#include <exception>
#include <utility>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/impl/Core.h"
#include "foundation/nxTXN/impl/passes.h"

namespace nxTXN::impl {
namespace {

/// Puts one object back when its hook says so.
class ContentRestorer final : public Restorer {
public:
    ContentRestorer(Core& core, Object const* subject, Content const& content) noexcept
        : core_(core), subject_(subject), content_(content) {}

    void restore(Object* object) override {
        if (done_ || !object || object != subject_) return;
        done_ = true;
        try {
            core_.putBack(*object, content_);
        } catch (...) {
            failure_ = std::current_exception();
            throw;
        }
    }
    /// Not null when reading a field failed: the object is neither what it was nor what it should be.
    [[nodiscard]] std::exception_ptr const& failure() const noexcept { return failure_; }

private:
    Core& core_;
    Object const* subject_;
    Content const& content_;
    bool done_ = false;
    std::exception_ptr failure_;
};

}  // namespace

bool Core::replay(std::size_t step, Lifetimes::Birth birth) {
    if (!ready()) return false;
    urOS::FirstError errors;
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        turn(step, birth, errors);
    }
    sealed_ = true;
    enforceLimits();
    changed_.emit();
    if (errors.get()) throw HookError(errors.get(), HookError::Outcome::completed);
    return true;
}

void Core::turn(std::size_t step, Lifetimes::Birth birth, urOS::FirstError& errors) {
    if (Record* const only = onlyPlainRecord(steps_[step])) {
        turnPlain(*only, errors);
    } else {
        turnHooked(steps_[step], birth, errors);
    }
    present_ = birth == Lifetimes::Birth::undone ? step : step + 1;
    lifetimes_.setBirths(steps_[step].birthsBegin, steps_[step].birthsEnd, birth);
    settle(errors);
    tellModified(errors);
    exchange();
}

// What can fail for want of memory comes first. From the first restored field on the step either gets through,
// whatever hooks throw, or is turned back because a field could not be read.
void Core::turnHooked(Step const& step, Lifetimes::Birth birth, urOS::FirstError& errors) {
    beginCapture();
    if (!errors.guard([&] { capture(step); })) giveUp(0, errors);
    if (birth == Lifetimes::Birth::undone) std::reverse(work_.begin(), work_.end());
    if (!restoreAll(errors)) giveUp(writer_.words().size(), errors);
}

// The usual step: one object without a hook, so that no other code runs between saving a field and putting it back.
void Core::turnPlain(Record& record, urOS::FirstError& errors) {
    beginCapture();
    std::size_t kept = 0;
    SwappingPass pass(writer_, record.content().reader(), [this, &kept] {
        std::size_t const words = writer_.words().size();
        if (words > kept) records_.keep(writer_.mutableWords().subspan(kept));
        kept = words;
    });
    if (!errors.guard([&] { swap(record, pass); })) {
        RestoringPass back(Reader(writer_), pass.saved());
        urOS::FirstError ignored;
        ignored.guard([&] { visitRestoring(*record.subject, back); });
        giveUp(kept, errors);
    }
    errors.guard([&] { record.subject->onTxnRestored(); });
}

void Core::swap(Record& record, Serializer& pass) {
    visitRestoring(*record.subject, pass);
    plan(record, nullptr, 0, 0);
}

Record* Core::onlyPlainRecord(Step const& step) noexcept {
    if (step.records != 1) return nullptr;
    Record* only = nullptr;
    records_.visit(step.begin, 1, [&only](Record& record) { only = &record; });
    return only->subject && !only->hooked ? only : nullptr;
}

void Core::giveUp(std::size_t keptWords, urOS::FirstError& errors) {
    settle(errors);
    RecordStore::release(writer_.mutableWords().first(keptWords));
    writer_.clear();
    throw HookError(errors.get(), HookError::Outcome::unchanged);
}

void Core::beginCapture() noexcept {
    work_.clear();
    if (!elsewhere_.empty()) elsewhere_.clear();
    writer_.clear();
}

void Core::capture(Step const& step) {
    records_.visit(step.begin, step.records, [this](Record& record) { capture(record); });
    if (!writer_.words().empty()) records_.keep(writer_.mutableWords());
}

void Core::capture(Record& record) {
    std::size_t const dataBegin = writer_.data().size();
    std::size_t const wordsBegin = writer_.words().size();
    plan(record, record.subject ? save(*record.subject) : nullptr, dataBegin, wordsBegin);
}

// What the object is now lies in the writer, from there to its end.
void Core::plan(Record& record, RestoreHook hook, std::size_t dataBegin, std::size_t wordsBegin) {
    std::size_t const dataBytes = writer_.data().size() - dataBegin;
    std::size_t const words = writer_.words().size() - wordsBegin;
    expectStorable(dataBytes, words);
    Restoration item{
        &record, hook, dataBegin, wordsBegin, static_cast<std::uint32_t>(dataBytes), static_cast<std::uint32_t>(words),
        nullptr};
    if (!record.isAlike(dataBytes, words)) findRoom(item);
    work_.push_back(item);
}

void Core::findRoom(Restoration& item) {
    std::size_t const bytes = Content::bytes(item.dataBytes, item.words);
    if (bytes <= item.record->room) return;
    elsewhere_.push_back(std::make_unique_for_overwrite<std::byte[]>(bytes));
    item.elsewhere = elsewhere_.back().get();
}

Content Core::captured(Restoration const& item) noexcept {
    return {writer_.data().subspan(item.dataBegin, item.dataBytes),
            writer_.mutableWords().subspan(item.wordsBegin, item.words)};
}

void Core::exchange() noexcept {
    for (Restoration const& item : work_) records_.replace(*item.record, captured(item), item.elsewhere);
    for (RecordStore::Elsewhere& room : elsewhere_) static_cast<void>(room.release());  // the records own it now
    if (!elsewhere_.empty()) elsewhere_.clear();
    writer_.clear();
}

// False when a field could not be read: then all is back as it was.
bool Core::restoreAll(urOS::FirstError& errors) {
    for (Restoration const& item : work_) {
        if (restore(item, item.record->content(), errors)) continue;
        turnBack(static_cast<std::size_t>(&item - work_.data()) + 1);
        return false;
    }
    return true;
}

void Core::turnBack(std::size_t restored) noexcept {
    urOS::FirstError ignored;
    while (restored-- > 0) restore(work_[restored], captured(work_[restored]), ignored);
}

// The record may lose its subject while a hook runs.
bool Core::restore(Restoration const& item, Content const& content, urOS::FirstError& errors) {
    Record const& record = *item.record;
    if (!record.subject) return true;
    if (item.hook) {
        if (!restoreHooked(item, content, errors)) return false;
    } else if (!errors.guard([&] { putBack(*record.subject, content); })) {
        return false;
    }
    if (record.subject) errors.guard([&] { record.subject->onTxnRestored(); });
    return true;
}

bool Core::restoreHooked(Restoration const& item, Content const& content, urOS::FirstError& errors) {
    Record const& record = *item.record;
    ContentRestorer restorer(*this, record.subject, content);
    errors.guard([&] { item.hook(record.subject, restorer); });
    errors.guard([&] { restorer.restore(record.subject); });
    if (restorer.failure()) errors.add(restorer.failure());  // the hook may have kept it to itself
    return !restorer.failure();
}

void Core::tellModified(urOS::FirstError& errors) noexcept {
    for (Restoration const& item : work_) {
        Object* const subject = item.record->subject;
        if (subject && lifetimes_.entryOf(*subject).exists()) errors.guard([subject] { subject->onTxnModified(); });
    }
}

bool Core::abort() {
    if (!mayEnd()) return false;
    urOS::FirstError errors;
    {
        Busy const busy(*this);  // also while what the abort leaves behind is taken down
        Lifetimes::Deferral const deferral(lifetimes_);
        Level const level = std::move(levels_.back());
        levels_.pop_back();
        if (level.keeps) takeBack(level, errors);
    }
    if (errors.get()) throw HookError(errors.get(), HookError::Outcome::completed);
    return true;
}

// The room for this was made when the records were.
void Core::collect(Level const& level, urOS::FirstError& errors) noexcept {
    work_.clear();
    records_.visit(level.begin, level.records, [&](Record& record) {
        HookPass pass;
        if (record.subject && record.hooked) errors.guard([&] { record.subject->onTransact(pass); });
        work_.push_back({&record, pass.restoreHook(), 0, 0, 0, 0, nullptr});
    });
    std::reverse(work_.begin(), work_.end());
}

// Goes on whatever fails: an abort must end with as much restored as can be.
void Core::takeBack(Level const& level, urOS::FirstError& errors) noexcept {
    collect(level, errors);
    for (Restoration const& item : work_) restore(item, item.record->content(), errors);
    std::uint32_t const birthsEnd = lifetimes_.roster().size();
    lifetimes_.setBirths(level.birthsBegin, birthsEnd, Lifetimes::Birth::undone);
    settle(errors);
    restoreStamps(level);
    tellModified(errors);
    lifetimes_.abandonUnborn(level.birthsBegin, birthsEnd);
    records_.pop(level.begin, level.records);
}

}  // namespace nxTXN::impl
