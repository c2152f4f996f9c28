// Restores objects from records.
#include "foundation/nxTXN/impl/Replay.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "foundation/nxTXN/impl/History.h"
#include "foundation/nxTXN/impl/passes.h"

namespace nxTXN::impl {
namespace {

/// Restores one object when its hook asks for it.
class ContentRestorer final : public Restorer {
public:
    ContentRestorer(History& history, Object const* subject, Content const& content) noexcept
        : history_(history), subject_(subject), content_(content) {}

    void restore(Object* object) override {
        if (done_ || !object || object != subject_) return;
        done_ = true;
        try {
            history_.putBack(*object, content_);
        } catch (...) {
            failure_ = std::current_exception();
            throw;
        }
    }
    /// Not null when reading a field failed: the object is in neither the old nor the new state.
    [[nodiscard]] std::exception_ptr const& failure() const noexcept { return failure_; }

private:
    History& history_;
    Object const* subject_;
    Content const& content_;
    bool done_ = false;
    std::exception_ptr failure_;
};

}  // namespace

// The usual step is one object without a hook, so no other code runs between saving and restoring a field.
bool Replay::restore(Step const& step, Order order, urOS::FirstError& errors) {
    beginCapture();
    Record* const only = onlyPlainRecord(step);
    return only ? restorePlain(*only, errors) : restoreHooked(step, order, errors);
}

// Operations that need memory come first. From the first restored field on, the step either completes, whatever hooks
// throw, or is reverted because a field could not be read.
bool Replay::restoreHooked(Step const& step, Order order, urOS::FirstError& errors) {
    if (!errors.guard([&] { capture(step); })) return false;
    kept_ = writer_.words().size();
    if (order == Order::backwards) std::reverse(work_.begin(), work_.end());
    return restoreAll(errors);
}

bool Replay::restorePlain(Record& record, urOS::FirstError& errors) {
    SwappingPass pass(writer_, record.content().reader(), [this] {
        std::size_t const words = writer_.words().size();
        if (words > kept_) records_.keep(writer_.mutableWords().subspan(kept_));
        kept_ = words;
    });
    if (!errors.guard([&] { swap(record, pass); })) {
        RestoringPass back(Reader(writer_), pass.saved());
        urOS::FirstError ignored;
        ignored.guard([&] { history_.visitRestoring(*record.subject, back); });
        return false;
    }
    errors.guard([&] { record.subject->onTxnRestored(); });
    return true;
}

void Replay::discard() noexcept {
    RecordStore::release(writer_.mutableWords().first(kept_));
    writer_.clear();
}

void Replay::swap(Record& record, Serializer& pass) {
    history_.visitRestoring(*record.subject, pass);
    plan(record, nullptr, 0, 0);
}

Record* Replay::onlyPlainRecord(Step const& step) noexcept {
    if (step.records != 1) return nullptr;
    Record* only = nullptr;
    records_.visit(step.begin, 1, [&only](Record& record) { only = &record; });
    return only->subject && !only->hooked ? only : nullptr;
}

void Replay::beginCapture() noexcept {
    work_.clear();
    elsewhere_.clear();
    kept_ = 0;
}

void Replay::capture(Step const& step) {
    records_.visit(step.begin, step.records, [this](Record& record) { capture(record); });
    if (!writer_.words().empty()) records_.keep(writer_.mutableWords());
}

void Replay::capture(Record& record) {
    std::size_t const dataBegin = writer_.data().size();
    std::size_t const wordsBegin = writer_.words().size();
    plan(record, record.subject ? save(*record.subject, writer_) : nullptr, dataBegin, wordsBegin);
}

// The object's present fields lie in the writer, from there to its end.
void Replay::plan(Record& record, RestoreHook hook, std::size_t dataBegin, std::size_t wordsBegin) {
    std::size_t const dataBytes = writer_.data().size() - dataBegin;
    std::size_t const words = writer_.words().size() - wordsBegin;
    history_.expectStorable(dataBytes, words);
    Restoration item{
        &record, hook, dataBegin, wordsBegin, static_cast<std::uint32_t>(dataBytes), static_cast<std::uint32_t>(words),
        nullptr};
    if (!record.isAlike(dataBytes, words)) findRoom(item);
    work_.push_back(item);
}

void Replay::findRoom(Restoration& item) {
    std::size_t const bytes = Content::bytes(item.dataBytes, item.words);
    if (bytes <= item.record->room) return;
    elsewhere_.push_back(std::make_unique_for_overwrite<std::byte[]>(bytes));
    item.elsewhere = elsewhere_.back().get();
}

Content Replay::captured(Restoration const& item) noexcept {
    return {writer_.data().subspan(item.dataBegin, item.dataBytes),
            writer_.mutableWords().subspan(item.wordsBegin, item.words)};
}

void Replay::exchange() noexcept {
    for (Restoration const& item : work_) records_.replace(*item.record, captured(item), item.elsewhere);
    for (RecordStore::Elsewhere& room : elsewhere_) static_cast<void>(room.release());  // the records own it now
    elsewhere_.clear();
    writer_.clear();
}

// False when a field could not be read: then everything is reverted.
bool Replay::restoreAll(urOS::FirstError& errors) {
    for (Restoration const& item : work_) {
        if (restoreOne(item, item.record->content(), errors)) continue;
        putAllBack(static_cast<std::size_t>(&item - work_.data()) + 1);
        return false;
    }
    return true;
}

void Replay::putAllBack(std::size_t restored) noexcept {
    urOS::FirstError ignored;
    while (restored-- > 0) restoreOne(work_[restored], captured(work_[restored]), ignored);
}

// The record may lose its subject while a hook runs.
bool Replay::restoreOne(Restoration const& item, Content const& content, urOS::FirstError& errors) {
    Record const& record = *item.record;
    if (!record.subject) return true;
    if (item.hook) {
        if (!restoreByHook(item, content, errors)) return false;
    } else if (!errors.guard([&] { history_.putBack(*record.subject, content); })) {
        return false;
    }
    if (record.subject) errors.guard([&] { record.subject->onTxnRestored(); });
    return true;
}

bool Replay::restoreByHook(Restoration const& item, Content const& content, urOS::FirstError& errors) {
    Record const& record = *item.record;
    ContentRestorer restorer(history_, record.subject, content);
    errors.guard([&] { item.hook(record.subject, restorer); });
    errors.guard([&] { restorer.restore(record.subject); });
    if (restorer.failure()) errors.add(restorer.failure());  // the hook may have caught it
    return !restorer.failure();
}

void Replay::notifyModified(urOS::FirstError& errors) noexcept {
    for (Restoration const& item : work_) {
        Object* const subject = item.record->subject;
        if (subject && subject->isTxnExtant()) errors.guard([subject] { subject->onTxnModified(); });
    }
}

// Uses memory reserved with the records. Continues after any failure: an abort must restore as much as possible.
void Replay::takeBack(RecordStore::Place begin, std::uint32_t records, urOS::FirstError& errors) noexcept {
    work_.clear();
    records_.visit(begin, records, [&](Record& record) {
        HookPass pass;
        if (record.subject && record.hooked) errors.guard([&] { record.subject->onTransact(pass); });
        work_.push_back({&record, pass.restoreHook()});
    });
    std::reverse(work_.begin(), work_.end());
    for (Restoration const& item : work_) restoreOne(item, item.record->content(), errors);
}

RestoreHook Replay::save(Object& object, Writer& writer) {
    SavingPass pass(writer);
    object.onTransact(pass);
    return pass.restoreHook();
}

}  // namespace nxTXN::impl
