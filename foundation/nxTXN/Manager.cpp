// The public interface of the history.
#include "foundation/nxTXN/Manager.h"

#include "foundation/nxTXN/impl/History.h"

namespace nxTXN {
namespace {

urString::CString const noName;

}  // namespace

Manager::Manager() : Manager(impl::Sizes{}) {}
Manager::Manager(impl::Sizes const& sizes) : history_(new impl::History(*this, sizes)) {}
Manager::~Manager() = default;
void Manager::End::operator()(impl::History* history) const noexcept { history->end(); }

void Manager::begin(urString::CString const& name, TransactionKind kind) { history_->begin(name, kind, nullptr); }
void Manager::beginCoalescing(urString::CString const& name, void const* key) {
    history_->begin(name, TransactionKind::recorded, key);
}
void Manager::endCoalescing() noexcept { history_->seal(); }
bool Manager::commit() { return history_->commit(); }
bool Manager::abort() { return history_->abort(); }
std::size_t Manager::depth() const noexcept { return history_->depth(); }

bool Manager::undo() { return history_->undo(); }
bool Manager::redo() { return history_->redo(); }
bool Manager::canUndo() const noexcept { return history_->ready() && history_->undoCount() > 0; }
bool Manager::canRedo() const noexcept { return history_->ready() && history_->redoCount() > 0; }
std::size_t Manager::undoCount() const noexcept { return history_->undoCount(); }
std::size_t Manager::redoCount() const noexcept { return history_->redoCount(); }
urString::CString const& Manager::undoName() const noexcept { return undoName(0); }
urString::CString const& Manager::redoName() const noexcept { return redoName(0); }
urString::CString const& Manager::undoName(std::size_t position) const noexcept {
    return position < undoCount() ? history_->nameOf(undoCount() - 1 - position) : noName;
}
urString::CString const& Manager::redoName(std::size_t position) const noexcept {
    return position < redoCount() ? history_->nameOf(undoCount() + position) : noName;
}

void Manager::setClean() noexcept { history_->setClean(); }
bool Manager::isClean() const noexcept { return history_->isClean(); }
bool Manager::clear() { return history_->clear(); }
void Manager::setStepLimit(std::size_t steps) { history_->setLimits(steps, history_->byteLimit()); }
void Manager::setByteLimit(std::size_t bytes) { history_->setLimits(history_->stepLimit(), bytes); }
std::size_t Manager::historyBytes() const noexcept { return history_->bytes(); }
void Manager::setUnrecordedChange(UnrecordedChange policy) noexcept { history_->setUnrecordedChange(policy); }
urRTB::Signal<>& Manager::changedSignal() noexcept { return history_->changed(); }

}  // namespace nxTXN
