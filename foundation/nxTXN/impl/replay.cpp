// Undo, redo and abort: putting back what records hold.
#include <algorithm>
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
        if (state_ != State::waiting || !object || object != subject_) return;
        state_ = State::broken;
        core_.putBack(*object, content_);
        state_ = State::done;
    }
    /// Reading a field failed: the object is neither what it was nor what it should be.
    [[nodiscard]] bool broken() const noexcept { return state_ == State::broken; }

private:
    enum class State { waiting, broken, done };

    Core& core_;
    Object const* subject_;
    Content const& content_;
    State state_ = State::waiting;
};

}  // namespace

bool Core::replay(std::size_t step, Lifetimes::Birth birth) {
    if (!ready()) return false;
    Failures failures;
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        turn(step, birth, failures);
    }
    sealed_ = true;
    changed_.emit();
    if (failures.any()) throw HookError(failures.first(), HookError::Outcome::completed);
    return true;
}

// What can fail for want of memory comes first. From the first restored field on the step either gets through,
// whatever hooks throw, or is turned back because a field could not be read.
void Core::turn(std::size_t step, Lifetimes::Birth birth, Failures& failures) {
    bool const undoes = birth == Lifetimes::Birth::undone;
    Order const order = undoes ? Order::backward : Order::forward;
    failures.run([this, step] { capture(steps_[step]); });
    if (failures.any()) throw HookError(failures.first(), HookError::Outcome::unchanged);
    if (!restoreAll(order, failures)) {
        lifetimes_.settle(failures);
        RecordStore::release(writer_.mutableWords());
        throw HookError(failures.first(), HookError::Outcome::unchanged);
    }
    present_ = undoes ? step : step + 1;
    lifetimes_.setBirths(steps_[step].birthsBegin, steps_[step].birthsEnd, birth);
    lifetimes_.settle(failures);
    tellModified(order, failures);
    exchange();
}

void Core::capture(Step const& step) {
    work_.clear();
    writer_.clear();
    records_.visit(step.begin, step.records, [this](Record& record) { work_.push_back(captured(record)); });
    records_.keep(writer_.mutableWords());
}

Core::Restoration Core::captured(Record& record) {
    std::size_t const dataBefore = writer_.data().size();
    std::size_t const wordsBefore = writer_.words().size();
    RestoreHook const hook = record.subject ? save(*record.subject) : nullptr;
    std::size_t const data = writer_.data().size() - dataBefore;
    std::size_t const words = writer_.words().size() - wordsBefore;
    std::size_t const bytes = Content::bytes(data, words);
    return {&record, hook, static_cast<std::uint32_t>(data), static_cast<std::uint32_t>(words),
            bytes > record.room ? std::make_unique_for_overwrite<std::byte[]>(bytes) : nullptr};
}

void Core::exchange() noexcept {
    auto data = writer_.data();
    auto words = writer_.mutableWords();
    for (Restoration& item : work_) {
        records_.replace(*item.record, {data.first(item.dataBytes), words.first(item.words)},
                         std::move(item.elsewhere));
        data = data.subspan(item.dataBytes);
        words = words.subspan(item.words);
    }
    writer_.clear();
}

// False when a field could not be read: then all is back as it was.
bool Core::restoreAll(Order order, Failures& failures) {
    for (std::size_t i = 0; i < work_.size(); ++i) {
        Restoration const& item = itemAt(i, order);
        if (restore(item, item.record->content(), failures)) continue;
        turnBack(order, i + 1);
        return false;
    }
    return true;
}

void Core::turnBack(Order order, std::size_t restored) noexcept {
    auto data = writer_.data();
    auto words = writer_.mutableWords();
    ur::vector<Content> before;
    for (Restoration const& item : work_) {
        before.push_back({data.first(item.dataBytes), words.first(item.words)});
        data = data.subspan(item.dataBytes);
        words = words.subspan(item.words);
    }
    Failures ignored;
    while (restored-- > 0) {
        Restoration const& item = itemAt(restored, order);
        restore(item, before[static_cast<std::size_t>(&item - work_.data())], ignored);
    }
}

// The record may lose its subject while a hook runs.
bool Core::restore(Restoration const& item, Content const& content, Failures& failures) {
    Record const& record = *item.record;
    if (!record.subject) return true;
    ContentRestorer restorer(*this, record.subject, content);
    if (item.hook) failures.run([&] { item.hook(record.subject, restorer); });
    failures.run([&] { restorer.restore(record.subject); });
    if (restorer.broken()) return false;
    if (record.subject) failures.run([&] { record.subject->onTxnRestored(); });
    return true;
}

void Core::putBack(Object& object, Content const& content) {
    Lifetimes::Restoring const restoring(lifetimes_);
    RestoringPass pass(content.reader());
    object.onTransact(pass);
}

void Core::tellModified(Order order, Failures& failures) noexcept {
    for (std::size_t i = 0; i < work_.size(); ++i) {
        Object* const subject = itemAt(i, order).record->subject;
        if (subject && lifetimes_.entryOf(*subject).exists()) failures.run([subject] { subject->onTxnModified(); });
    }
}

bool Core::abort() {
    if (!mayEnd()) return false;
    Level const level = levels_.back();
    Failures failures;
    {
        Lifetimes::Deferral const deferral(lifetimes_);
        Busy const busy(*this);
        if (level.keeps) collect(level, failures);
        levels_.pop_back();
        if (level.keeps) takeBack(level, failures);
    }
    if (failures.any()) throw HookError(failures.first(), HookError::Outcome::completed);
    return true;
}

void Core::collect(Level const& level, Failures& failures) {
    work_.clear();
    records_.visit(level.begin, level.records, [&](Record& record) {
        HookPass pass;
        if (record.subject) failures.run([&] { record.subject->onTransact(pass); });
        work_.push_back({&record, pass.restoreHook(), 0, 0, nullptr});
    });
}

// Goes on whatever fails: an abort must end with as much restored as can be.
void Core::takeBack(Level const& level, Failures& failures) {
    for (std::size_t i = 0; i < work_.size(); ++i) {
        Restoration const& item = itemAt(i, Order::backward);
        restore(item, item.record->content(), failures);
    }
    std::uint32_t const birthsEnd = lifetimes_.roster().size();
    lifetimes_.setBirths(level.birthsBegin, birthsEnd, Lifetimes::Birth::undone);
    lifetimes_.settle(failures);
    restoreStamps(level);
    tellModified(Order::backward, failures);
    lifetimes_.abandonUnborn(level.birthsBegin, birthsEnd);
    records_.pop(level.begin, level.records);
}

}  // namespace nxTXN::impl
